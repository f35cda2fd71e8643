// The platform's converter for code pages other than Windows-1252: iconv on POSIX systems,
// MultiByteToWideChar and WideCharToMultiByte on Windows.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace arbolet::disk::platform {

bool CanConvert(int codePage);
// Never fails: undecodable bytes become U+FFFD.
std::string Decode(std::string_view bytes, int codePage);
std::optional<std::string> Encode(std::string_view utf8, int codePage);

}  // namespace arbolet::disk::platform
