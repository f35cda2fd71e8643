// Reads an icon sheet: the text pixel format in which Arbolet's icons are drawn (a palette of
// one-character colours, then each icon as rows of characters). Portable, so that the format's
// rules are tested apart from the image list built from it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace arbolet::windows::icons {

// One icon's pixels as 0xAARRGGBB, rows top to bottom; alpha is 0 (transparent) or 255.
struct IconPixels {
    std::string name;
    std::vector<std::uint32_t> argb;
};

struct IconSheet {
    int size = 0;  // width and height of every icon
    std::map<std::string, IconPixels, std::less<>> icons;
    // The first problem found, as "line N: what"; empty when the sheet is well formed.
    std::string error;

    const IconPixels* Find(std::string_view name) const;
};

// Parses a sheet. Lines: "# ..." comments, "size N", "colour C RRGGBB", "icon NAME" followed by
// N rows of N characters, each a palette character or "." for transparent. Never throws: a
// malformed sheet sets `error` and keeps the icons read before the problem.
IconSheet ParseIconSheet(std::string_view text);

}  // namespace arbolet::windows::icons
