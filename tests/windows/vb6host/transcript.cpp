// Transcript lines and the VB literal form of their arguments.
#include "vb6host/transcript.h"

#include <cstdio>
#include <fstream>

#include "vb6host/dispatch_object.h"
#include "windows/base/ansi_text.h"

namespace arbolet::vb6host {
namespace {

std::string Quoted(std::wstring_view text) {
    std::string quoted = "\"";
    for (char c : windows::WideToUtf8(text)) {
        quoted += c;
        if (c == '"') quoted += '"';
    }
    return quoted + "\"";
}

std::string ObjectLiteral(IUnknown* object) {
    if (object == nullptr) return "Nothing";
    if (const DispatchObject* host = HostObjectOf(object)) return host->Describe();
    return "Object";
}

std::string NumberLiteral(const VARIANT& value) {
    VARIANT text;
    VariantInit(&text);
    std::string literal = "?";
    if (SUCCEEDED(VariantChangeTypeEx(
            &text, const_cast<VARIANT*>(&value),
            MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT), 0, VT_BSTR))) {
        literal = windows::WideToUtf8(std::wstring_view(text.bstrVal, SysStringLen(text.bstrVal)));
    }
    VariantClear(&text);
    return literal;
}

}  // namespace

std::string VbLiteral(const VARIANT& value) {
    if (value.vt == (VT_VARIANT | VT_BYREF)) {
        return value.pvarVal == nullptr ? "Empty" : VbLiteral(*value.pvarVal);
    }
    switch (value.vt & ~VT_BYREF) {
        case VT_EMPTY:
            return "Empty";
        case VT_NULL:
            return "Null";
        case VT_BSTR: {
            const BSTR text = (value.vt & VT_BYREF) ? *value.pbstrVal : value.bstrVal;
            return Quoted(text == nullptr ? std::wstring_view()
                                          : std::wstring_view(text, SysStringLen(text)));
        }
        case VT_BOOL: {
            const VARIANT_BOOL flag = (value.vt & VT_BYREF) ? *value.pboolVal : value.boolVal;
            return flag != VARIANT_FALSE ? "True" : "False";
        }
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return ObjectLiteral((value.vt & VT_BYREF) ? *value.ppunkVal : value.punkVal);
        case VT_ERROR:
            if (!(value.vt & VT_BYREF) && value.scode == DISP_E_PARAMNOTFOUND) return "";
            return "CVErr(" + std::to_string(value.scode) + ")";
        default:
            if (value.vt & VT_ARRAY) return "Array()";
            return NumberLiteral(value);
    }
}

void Transcript::Record(std::string_view verb, std::wstring_view interfaceName,
                        std::wstring_view member, const std::vector<std::string>& arguments) {
    std::string line(verb);
    line += ' ';
    line += windows::WideToUtf8(interfaceName);
    line += '.';
    line += windows::WideToUtf8(member);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        line += i == 0 ? " " : ", ";
        line += arguments[i];
    }
    lines_.push_back(std::move(line));
}

std::vector<std::string> Transcript::Since(std::size_t from) const {
    if (from >= lines_.size()) return {};
    return {lines_.begin() + static_cast<std::ptrdiff_t>(from), lines_.end()};
}

bool Transcript::WriteTo(const std::string& path) const {
    std::ofstream out(path, std::ios::binary);
    for (const std::string& line : lines_)
        out << line << '\n';
    return static_cast<bool>(out.flush());
}

}  // namespace arbolet::vb6host
