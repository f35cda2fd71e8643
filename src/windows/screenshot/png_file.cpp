// A minimal PNG encoder: signature, IHDR, one IDAT of stored deflate blocks, IEND.
#include "windows/screenshot/png_file.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace arbolet::windows {
namespace {

std::uint32_t Crc32(const std::uint8_t* data, std::size_t size, std::uint32_t crc = 0) {
    static const std::array<std::uint32_t, 256> table = [] {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t n = 0; n < 256; ++n) {
            std::uint32_t c = n;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            entries[n] = c;
        }
        return entries;
    }();
    crc = ~crc;
    for (std::size_t i = 0; i < size; ++i)
        crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

void PutBigEndian(std::vector<std::uint8_t>& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<std::uint8_t>(value >> shift));
}

void PutChunk(std::vector<std::uint8_t>& out, const char* type,
              const std::vector<std::uint8_t>& data) {
    PutBigEndian(out, static_cast<std::uint32_t>(data.size()));
    const std::size_t start = out.size();
    out.insert(out.end(), type, type + 4);
    out.insert(out.end(), data.begin(), data.end());
    PutBigEndian(out, Crc32(out.data() + start, out.size() - start));
}

// A zlib stream of stored blocks, each at most 65535 bytes.
std::vector<std::uint8_t> StoredZlib(const std::vector<std::uint8_t>& raw) {
    std::vector<std::uint8_t> out{0x78, 0x01};
    std::size_t offset = 0;
    do {
        const std::size_t size = std::min<std::size_t>(65535, raw.size() - offset);
        const bool last = offset + size == raw.size();
        out.push_back(last ? 1 : 0);
        out.push_back(static_cast<std::uint8_t>(size & 0xFF));
        out.push_back(static_cast<std::uint8_t>(size >> 8));
        out.push_back(static_cast<std::uint8_t>(~size & 0xFF));
        out.push_back(static_cast<std::uint8_t>((~size >> 8) & 0xFF));
        out.insert(out.end(), raw.begin() + static_cast<std::ptrdiff_t>(offset),
                   raw.begin() + static_cast<std::ptrdiff_t>(offset + size));
        offset += size;
    } while (offset < raw.size());
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (std::uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    PutBigEndian(out, (b << 16) | a);
    return out;
}

}  // namespace

std::vector<std::uint8_t> EncodePng(const RgbImage& image) {
    std::vector<std::uint8_t> out{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<std::uint8_t> header;
    PutBigEndian(header, static_cast<std::uint32_t>(image.width));
    PutBigEndian(header, static_cast<std::uint32_t>(image.height));
    header.insert(header.end(), {8, 2, 0, 0, 0});  // 8 bits, RGB, deflate, no filter, no interlace
    PutChunk(out, "IHDR", header);

    std::vector<std::uint8_t> raw;
    const std::size_t rowBytes = static_cast<std::size_t>(image.width) * 3;
    for (int y = 0; y < image.height; ++y) {
        raw.push_back(0);  // no filter on this row
        const auto row = image.rgb.begin() + static_cast<std::ptrdiff_t>(y * rowBytes);
        raw.insert(raw.end(), row, row + static_cast<std::ptrdiff_t>(rowBytes));
    }
    PutChunk(out, "IDAT", StoredZlib(raw));
    PutChunk(out, "IEND", {});
    return out;
}

bool WritePng(const std::filesystem::path& path, const RgbImage& image) {
    const std::vector<std::uint8_t> bytes = EncodePng(image);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file);
}

}  // namespace arbolet::windows
