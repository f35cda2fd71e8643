// Bstr: owns a BSTR (SysAllocString ... SysFreeString) and converts between it and Arbolet's
// UTF-8 text.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <string_view>
#include <utility>

namespace arbolet::windows::com {

class Bstr {
  public:
    Bstr() noexcept = default;
    // A copy of UTF-8 text; an allocation failure leaves the Bstr empty (a null BSTR, which
    // COM reads as "").
    explicit Bstr(std::string_view utf8);
    explicit Bstr(std::wstring_view wide);
    Bstr(const Bstr& other) : Bstr(other.View()) {}
    Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    Bstr& operator=(Bstr other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~Bstr() { Reset(); }

    static Bstr Attach(BSTR text) noexcept {
        Bstr result;
        result.text_ = text;
        return result;
    }
    BSTR Detach() noexcept { return std::exchange(text_, nullptr); }
    BSTR Get() const noexcept { return text_; }
    BSTR* Put() noexcept {
        Reset();
        return &text_;
    }
    void Reset() noexcept {
        if (text_ != nullptr) SysFreeString(std::exchange(text_, nullptr));
    }

    std::wstring_view View() const noexcept { return View(text_); }
    std::string Utf8() const { return Utf8(text_); }

    // Views of BSTRs the caller does not own (arguments of COM calls); embedded NULs are kept.
    static std::wstring_view View(BSTR text) noexcept {
        return text == nullptr ? std::wstring_view() : std::wstring_view(text, SysStringLen(text));
    }
    static std::string Utf8(BSTR text);
    // A new BSTR for an out parameter; nullptr when memory ran out.
    static BSTR Allocate(std::string_view utf8);

  private:
    BSTR text_ = nullptr;
};

}  // namespace arbolet::windows::com
