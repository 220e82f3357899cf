// SPDX-License-Identifier: MIT
//
// From gnuplot's picture to the content of the file: whether it is whole, and what gnuplot does
// not write into it.
#include <cmath>
#include <cstdint>
#include <string_view>

#include "figure.h"

static std::string content_of(FILE* file) {
    std::string content;
    char piece[1 << 16];
    std::rewind(file);
    while (const std::size_t size = std::fread(piece, 1, sizeof piece, file))
        content.append(piece, size);
    return content;
}

// The signature and the header of a PNG, of 8 and 25 bytes.
static constexpr std::size_t BEGINNING = 33;

// gnuplot says nothing and ends with status 0 when the disk of its picture is full.
static void require_whole(const std::string& picture) {
    const std::size_t size = picture.find_last_not_of(" \n") + 1;
    if (!std::string_view(picture.data(), size).ends_with(Figure.format->end) ||
        (is_format(".png") && size < BEGINNING))
        fail(stderr,
             "gnuplot did not finish the picture: the disk of temporary files may be full\n");
}

// ---- PNG ---------------------------------------------------------------------------------------

// The check sum of a piece of a PNG file.
static std::uint32_t checksum(const std::string& text) {
    std::uint32_t sum = 0xffffffff;
    for (const char c : text) {
        sum ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; bit++)
            sum = sum >> 1 ^ (sum & 1 ? 0xedb88320 : 0);
    }
    return ~sum;
}

static std::string four_bytes(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift & 255);
    return bytes;
}

// Behind the beginning stands how many pixels a metre has: a text processor shows the picture at
// its size.
static void add_resolution(std::string* png) {
    const std::string pixels =
        four_bytes(static_cast<std::uint32_t>(std::lround(Figure.dpi / 0.0254)));
    const std::string piece = "pHYs" + pixels + pixels + '\1';
    png->insert(BEGINNING, four_bytes(9) + piece + four_bytes(checksum(piece)));
}

// ---- SVG ---------------------------------------------------------------------------------------

// The size on paper, in place of that in units.
static void set_svg_size(std::string* svg) {
    const std::size_t begin = svg->find("width=\"");
    const std::size_t end = svg->find("\n", begin);
    char size[100];
    std::snprintf(size, sizeof size, "width=\"%gcm\" height=\"%gcm\"", Figure.width,
                  Figure.height);
    if (end != std::string::npos)
        svg->replace(begin, end - begin, size);
}

// ---- All of it ---------------------------------------------------------------------------------

std::string draw_page(const page_t& page, const char* title) {
    f = scratch_file();
    const std::vector<part_t> parts = write_commands(page);
    FILE* drawn = scratch_file();
    draw(f, drawn);
    std::fclose(f);
    f = nullptr;
    std::string picture = content_of(drawn);
    std::fclose(drawn);
    require_whole(picture);
    if (is_format(".png"))
        add_resolution(&picture);
    else if (is_format(".svg"))
        set_svg_size(&picture);
    else if (is_format(".html"))
        picture = html_page(picture, page, title, parts);
    return picture;
}
