// Writes screenshots as PNG files that any image viewer opens: 8-bit RGB, stored without
// compression, so that no compression library is needed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace arbolet::windows {

struct RgbImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb;  // rows top to bottom, three bytes a pixel
};

// The PNG file's bytes.
std::vector<std::uint8_t> EncodePng(const RgbImage& image);
bool WritePng(const std::filesystem::path& path, const RgbImage& image);

}  // namespace arbolet::windows
