// Bstr allocation and its UTF-8 conversions.
#include "windows/com/bstr.h"

#include "windows/base/ansi_text.h"

namespace arbolet::windows::com {

Bstr::Bstr(std::string_view utf8) : text_(Allocate(utf8)) {}

Bstr::Bstr(std::wstring_view wide)
    : text_(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()))) {}

std::string Bstr::Utf8(BSTR text) {
    return WideToUtf8(View(text));
}

BSTR Bstr::Allocate(std::string_view utf8) {
    const std::wstring wide = Utf8ToWide(utf8);
    return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

}  // namespace arbolet::windows::com
