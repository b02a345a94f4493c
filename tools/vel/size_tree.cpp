// How many bytes are where in cells and structs.
#include "size_tree.h"

#include "elements.h"
#include "paths.h"
#include "print.h"

#include <algorithm>
#include <cmath>

namespace vel {
namespace {

constexpr size_t most_inside = 12, most_levels = 40;
constexpr size_t band = 48, gap = 2; // dots
constexpr size_t bar_width = 20;

size_t own_bytes(const oxArray *a) {
    const size_t size = oxGetElementSize(a) * (oxIsComplex(a) ? 2 : 1);
    if (oxIsSparse(a))
        return oxGetNumNonZeroEl(a) * (size + sizeof(kwIndex)) + (oxGetN(a) + 1) * sizeof(kwIndex);
    return has_elements(a) ? oxGetNumberOfElements(a) * size : 0;
}

bool is_container(const oxArray *a) { return oxIsCell(a) || oxIsStruct(a); }

SizeTree grow(const std::string &label, const oxArray *a, size_t level) {
    SizeTree t{label, a ? describe(a) : "empty", 0, {}};
    t.what = t.what.substr(0, t.what.find(" with")); // fields have lines of their own
    if (!a || !is_container(a)) {
        t.bytes = a ? own_bytes(a) : 0;
        return t;
    }
    const size_t fields = oxIsCell(a) ? 1 : static_cast<size_t>(oxGetNumberOfFields(a));
    for (size_t i = 0; i < oxGetNumberOfElements(a); ++i)
        for (size_t k = 0; k < fields; ++k) {
            const oxArray *value =
                oxIsCell(a) ? oxGetCell(a, i) : oxGetFieldByNumber(a, i, static_cast<int>(k));
            t.inside.push_back(grow(step_label(a, i, k), value, level + 1));
            t.bytes += t.inside.back().bytes;
        }
    std::stable_sort(t.inside.begin(), t.inside.end(),
                     [](const SizeTree &x, const SizeTree &y) { return x.bytes > y.bytes; });
    if (t.inside.size() > most_inside) {
        SizeTree rest{std::to_string(t.inside.size() - most_inside + 1) + " more", "", 0, {}};
        for (size_t k = most_inside - 1; k < t.inside.size(); ++k) rest.bytes += t.inside[k].bytes;
        t.inside.resize(most_inside - 1);
        t.inside.push_back(rest);
    }
    if (level >= most_levels) t.inside.clear();
    return t;
}

// --- In the terminal ---

size_t width(const std::string &text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

// Cut or filled up to a width.
std::string fitted(std::string text, size_t columns) {
    if (width(text) > columns) {
        size_t end = 0;
        for (size_t w = 0; w + 1 < columns; ++w) do
                ++end;
            while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80);
        text = text.substr(0, end) + "\xE2\x80\xA6";
    }
    return text + std::string(columns - width(text), ' ');
}

std::string amount(size_t bytes) {
    const char *unit[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    auto x = static_cast<double>(bytes);
    size_t k = 0;
    for (; x >= 1000 && k < 4; ++k) x /= 1024;
    char text[32];
    std::snprintf(text, sizeof text, x < 10 && k > 0 ? "%.1f %s" : "%.0f %s", x, unit[k]);
    return text;
}

// In eighths of a character.
std::string bar(double share) {
    const auto eighths = static_cast<size_t>(std::lround(share * bar_width * 8));
    std::string s;
    for (size_t k = 0; k < eighths / 8; ++k) s += "\xE2\x96\x88";
    if (eighths % 8) s += std::string("\xE2\x96") + static_cast<char>(0x90 - eighths % 8);
    return s;
}

class Lines {
public:
    Lines(const SizeTree &root, size_t columns, Depth depth)
        : whole_(static_cast<double>(std::max<size_t>(root.bytes, 1))), columns_(columns),
          depth_(depth) {}

    void add(const SizeTree &t, const std::string &first, const std::string &rest) {
        const double share = static_cast<double>(t.bytes) / whole_;
        const size_t room = columns_ - bar_width - 17, left = room * 3 / 5;
        char numbers[40];
        std::snprintf(numbers, sizeof numbers, "%9s %4.0f %% ", amount(t.bytes).c_str(),
                      100 * share);
        std::string line = fitted(first + t.label, left) + " " + fitted(t.what, room - left - 1) +
                           numbers + foreground(depth_, heat(0.25 + 0.75 * share)) + bar(share) +
                           no_color(depth_);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
        for (const SizeTree &in : t.inside) {
            const bool last = &in == &t.inside.back();
            add(in, rest + (last ? "\xE2\x94\x94\xE2\x94\x80 " : "\xE2\x94\x9C\xE2\x94\x80 "),
                rest + (last ? "   " : "\xE2\x94\x82  "));
        }
    }
    std::vector<std::string> lines;

private:
    double whole_;
    size_t columns_;
    Depth depth_;
};

// --- As a picture ---

size_t levels(const SizeTree &t) {
    size_t most = 0;
    for (const SizeTree &in : t.inside) most = std::max(most, levels(in));
    return most + 1;
}

void draw(Picture &p, const SizeTree &t, size_t level, double left, double right, double color) {
    const auto from = static_cast<size_t>(left), to = static_cast<size_t>(right);
    if (to <= from) return;
    p.fill(level * band, from, band - gap, std::max<size_t>(to - from, 1 + gap) - gap, heat(color));
    const double span = right - left;
    for (size_t k = 0; k < t.inside.size(); ++k) {
        const SizeTree &in = t.inside[k];
        const double width = span * static_cast<double>(in.bytes) /
                             static_cast<double>(std::max<size_t>(t.bytes, 1));
        draw(p, in, level + 1, left, left + width,
             0.15 + 0.8 * static_cast<double>(k) / static_cast<double>(most_inside));
        left += width;
    }
}

} // namespace

SizeTree make_size_tree(const std::string &label, const oxArray *a) { return grow(label, a, 0); }

std::vector<std::string> lines_of(const SizeTree &t, size_t columns, Depth depth) {
    Lines lines(t, std::max<size_t>(columns, 60), depth);
    lines.add(t, "", "");
    return lines.lines;
}

Picture picture_of(const SizeTree &t, size_t columns) {
    Picture p(levels(t) * band, columns, {255, 255, 255});
    draw(p, t, 0, 0, static_cast<double>(columns), 0.05);
    return p;
}

Json to_json(const SizeTree &t) {
    Json inside = Json::array();
    for (const SizeTree &in : t.inside) inside.push_back(to_json(in));
    return {{"label", t.label}, {"bytes", json_integer(t.bytes)}, {"inside", inside}};
}

} // namespace vel
