// Code page conversion through iconv, for POSIX systems.
#include <iconv.h>

#include <cerrno>

#include "disk/codepage_platform.h"

namespace arbolet::disk::platform {
namespace {

std::string IconvName(int codePage) {
    if (codePage == 932) return "CP932";
    if (codePage == 936) return "CP936";
    if (codePage == 949) return "CP949";
    if (codePage == 950) return "CP950";
    if (codePage == 874) return "CP874";
    return "WINDOWS-" + std::to_string(codePage);
}

class Converter {
  public:
    Converter(const std::string& to, const std::string& from)
        : handle_(iconv_open(to.c_str(), from.c_str())) {}
    ~Converter() {
        if (ok()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    bool ok() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    // Converts as much as possible; calls onInvalid at an undecodable sequence, which skips it.
    template <typename OnInvalid>
    void Run(std::string_view in, std::string& out, OnInvalid&& onInvalid) {
        char* source = const_cast<char*>(in.data());
        std::size_t left = in.size();
        char buffer[4096];
        while (left > 0) {
            char* target = buffer;
            std::size_t room = sizeof buffer;
            const std::size_t result = iconv(handle_, &source, &left, &target, &room);
            out.append(buffer, static_cast<std::size_t>(target - buffer));
            if (result != static_cast<std::size_t>(-1)) break;
            if (errno == E2BIG) continue;
            if (!onInvalid(source, left)) return;
        }
    }

  private:
    iconv_t handle_;
};

}  // namespace

bool CanConvert(int codePage) {
    if (codePage <= 0) return false;
    return Converter("UTF-8", IconvName(codePage)).ok();
}

std::string Decode(std::string_view bytes, int codePage) {
    Converter converter("UTF-8", IconvName(codePage));
    if (!converter.ok()) return std::string(bytes);
    std::string out;
    out.reserve(bytes.size() * 2);
    converter.Run(bytes, out, [&](char*& source, std::size_t& left) {
        out += "\xEF\xBF\xBD";  // U+FFFD for the byte that has no meaning in this code page
        ++source;
        --left;
        return true;
    });
    return out;
}

std::optional<std::string> Encode(std::string_view utf8, int codePage) {
    Converter converter(IconvName(codePage), "UTF-8");
    if (!converter.ok()) return std::nullopt;
    std::string out;
    bool failed = false;
    converter.Run(utf8, out, [&](char*&, std::size_t&) {
        failed = true;
        return false;
    });
    if (failed) return std::nullopt;
    return out;
}

}  // namespace arbolet::disk::platform
