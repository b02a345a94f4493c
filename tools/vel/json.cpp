// Values as JSON.
#include "json.h"

#include "elements.h"
#include "numbers.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace vel {
namespace {

constexpr uint64_t exact = uint64_t{1} << 53;

template<class T> Json value(T x) {
    if constexpr (std::is_same_v<T, bool>) {
        return x;
    } else if constexpr (std::is_floating_point_v<T>) {
        if (std::isfinite(x)) return x;
        return format_number(static_cast<double>(x));
    } else if constexpr (std::is_signed_v<T>) {
        const auto wide = static_cast<int64_t>(x);
        if (wide < -static_cast<int64_t>(exact)) return std::to_string(wide);
        return wide < 0 ? Json(wide) : json_integer(static_cast<uint64_t>(wide));
    } else {
        return json_integer(x);
    }
}

Json element(const oxArray *a, size_t k) {
    return visit_elements(a, [&](auto e) -> Json {
        if (!e.im) return value(e.re[k]);
        return {{"re", value(e.re[k])}, {"im", value(e.im[k])}};
    });
}

// Lists inside each other, rows outermost: m[i][j][page].
Json nested_lists(const oxArray *a, size_t dimension, size_t first, size_t stride) {
    Json list = Json::array();
    const size_t size = oxGetDimensions(a)[dimension];
    const bool last = dimension + 1 == oxGetNumberOfDimensions(a);
    for (size_t i = 0; i < size; ++i) {
        const size_t at = first + i * stride;
        list.push_back(last ? element(a, at) : nested_lists(a, dimension + 1, at, stride * size));
    }
    return list;
}

Json entries(const oxArray *a) {
    Json list = Json::array();
    const kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    for (size_t j = 0; j < oxGetN(a); ++j)
        for (size_t k = jc[j]; k < jc[j + 1]; ++k)
            list.push_back({json_integer(ir[k] + 1), json_integer(j + 1), element(a, k)});
    return list;
}

Json contents(const oxArray *a) {
    const size_t n = oxGetNumberOfElements(a);
    Json list = Json::array();
    for (size_t i = 0; i < n; ++i) {
        if (oxIsCell(a)) {
            list.push_back(json_array(oxGetCell(a, i)));
            continue;
        }
        Json fields = Json::object();
        for (int k = 0; k < oxGetNumberOfFields(a); ++k)
            fields[oxGetFieldNameByNumber(a, k)] = json_array(oxGetFieldByNumber(a, i, k));
        list.push_back(std::move(fields));
    }
    return list;
}

std::string one_line(const Json &j) {
    return j.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Lists of numbers and texts take one line, such as the rows of a matrix.
void append(std::string &out, const Json &j, size_t indent) {
    const bool flat = j.is_array() && std::none_of(j.begin(), j.end(),
                                                   [](const Json &x) { return x.is_structured(); });
    if (flat || !j.is_structured() || j.empty()) {
        out += one_line(j);
        return;
    }
    char before = j.is_array() ? '[' : '{';
    for (const auto &[key, part] : j.items()) {
        out += before + ('\n' + std::string(indent + 2, ' '));
        if (j.is_object()) out += one_line(key) + ": ";
        append(out, part, indent + 2);
        before = ',';
    }
    out += '\n' + std::string(indent, ' ') + (j.is_array() ? ']' : '}');
}

} // namespace

Json json_number(double x) { return value(x); }

Json json_integer(uint64_t x) { return x > exact ? Json(std::to_string(x)) : Json(x); }

std::string json_text(const Json &j) {
    std::string text;
    append(text, j, 0);
    return text + '\n';
}

Json json_array(const oxArray *a) {
    if (!a) return nullptr;
    Json j = {{"class", oxGetClassName(a)}, {"size", Json::array()}};
    for (size_t k = 0; k < oxGetNumberOfDimensions(a); ++k)
        j["size"].push_back(json_integer(oxGetDimensions(a)[k]));
    if (oxIsSparse(a))
        j["entries"] = entries(a);
    else if (oxIsCell(a) || oxIsStruct(a))
        j["elements"] = contents(a);
    else if (oxIsChar(a) && oxGetNumberOfElements(a) == oxGetN(a))
        j["text"] = text_of(a);
    else if (has_elements(a))
        j["values"] = nested_lists(a, 0, 0, 1);
    return j;
}

} // namespace vel
