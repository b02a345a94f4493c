// Pictures of dots, for the terminal and for PNG files.
#include "picture.h"

#include "failure.h"
#include "output_file.h"

#include <algorithm>
#include <optional>
#include <png.h>

namespace vel {

void Picture::fill(size_t top, size_t left, size_t rows, size_t columns, Color c) {
    for (size_t i = top; i < std::min(top + rows, m); ++i)
        for (size_t j = left; j < std::min(left + columns, n); ++j) at(i, j) = c;
}

Picture enlarged(const Picture &p, size_t k) {
    Picture large(p.m * k, p.n * k, {});
    for (size_t i = 0; i < large.m; ++i)
        for (size_t j = 0; j < large.n; ++j) large.at(i, j) = p.at(i / k, j / k);
    return large;
}

std::vector<std::string> half_blocks(const Picture &p, Depth depth) {
    std::vector<std::string> lines;
    for (size_t i = 0; i < p.m; i += 2) {
        std::string line;
        std::optional<Color> above, below; // the colours that are set
        for (size_t j = 0; j < p.n; ++j) {
            if (above != p.at(i, j)) line += foreground(depth, *(above = p.at(i, j)));
            if (i + 1 < p.m && below != p.at(i + 1, j))
                line += background(depth, *(below = p.at(i + 1, j)));
            line += "\xE2\x96\x80";
        }
        lines.push_back(line + no_color(depth));
    }
    return lines;
}

void write_png(const Picture &p, const std::string &path) {
    static_assert(sizeof(Color) == 3);
    OutputFile out(path);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(p.n), image.height = static_cast<png_uint_32>(p.m);
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_stdio(&image, out.file(), 0, p.dots.data(), 0, nullptr))
        throw Failure(Exit::io, path + ": cannot be written: " + image.message);
    out.commit();
}

} // namespace vel
