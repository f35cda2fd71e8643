// SharedText: an immutable text that can hand out suffixes without copying.
//
// A statement split off at a colon keeps the rest of its line as its text. On a line with
// thousands of colons, copying each rest would cost quadratic time and memory; a suffix of a
// SharedText shares the line's buffer instead.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace arbolet::analysis {

class SharedText {
  public:
    SharedText() = default;
    SharedText(std::string text) : buffer_(std::make_shared<const std::string>(std::move(text))) {}
    SharedText(std::string_view text) : SharedText(std::string(text)) {}
    SharedText(const char* text) : SharedText(std::string(text)) {}

    std::string_view view() const {
        return buffer_ ? std::string_view(*buffer_).substr(offset_) : std::string_view{};
    }
    operator std::string_view() const { return view(); }
    std::string str() const { return std::string(view()); }

    std::size_t size() const { return view().size(); }
    bool empty() const { return size() == 0; }

    // The text from byte `from` on; empty when `from` is past the end. Shares the buffer.
    SharedText Suffix(std::size_t from) const {
        SharedText suffix;
        if (buffer_ && from < size()) {
            suffix.buffer_ = buffer_;
            suffix.offset_ = offset_ + from;
        }
        return suffix;
    }

    friend bool operator==(const SharedText& a, std::string_view b) { return a.view() == b; }
    friend bool operator==(const SharedText& a, const char* b) { return a.view() == b; }
    friend bool operator==(const SharedText& a, const std::string& b) { return a.view() == b; }
    friend bool operator==(const SharedText& a, const SharedText& b) {
        return a.view() == b.view();
    }
    friend std::string operator+(const std::string& a, const SharedText& b) { return a + b.str(); }
    friend std::string operator+(const SharedText& a, const std::string& b) { return a.str() + b; }
    friend std::ostream& operator<<(std::ostream& out, const SharedText& text) {
        return out << text.view();
    }

  private:
    std::shared_ptr<const std::string> buffer_;
    std::size_t offset_ = 0;
};

}  // namespace arbolet::analysis
