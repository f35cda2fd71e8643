// SharedText: an immutable text that shares its bytes with other texts instead of copying them.
//
// All line texts of a module are slices of two buffers (the lines and their key texts) that the
// build's LineArena keeps, so preparing a line allocates nothing of its own; and a statement split
// off at a colon keeps the rest of its line as a slice, which keeps lines with thousands of
// colons linear. A text made from a string owns it; a slice of an arena's buffer borrows it and
// lives as long as that arena, like the lines that hold it.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace arbolet::analysis {

class SharedText {
  public:
    SharedText() = default;
    SharedText(std::string text) : owner_(std::make_shared<const std::string>(std::move(text))) {
        data_ = owner_->data();
        length_ = owner_->size();
    }
    SharedText(const char* text) : SharedText(std::string(text)) {}

    // A slice of bytes that someone else keeps alive and unchanged (a LineArena's buffer).
    static SharedText Borrowed(const char* data, std::size_t length) {
        SharedText text;
        text.data_ = data;
        text.length_ = length;
        return text;
    }

    std::string_view view() const { return {data_, length_}; }
    operator std::string_view() const { return view(); }
    std::string str() const { return std::string(view()); }

    std::size_t size() const { return length_; }
    bool empty() const { return length_ == 0; }

    // The text from byte `from` on; empty when `from` is past the end. Shares the bytes.
    SharedText Suffix(std::size_t from) const {
        if (from >= length_) return {};
        SharedText suffix = *this;
        suffix.data_ += from;
        suffix.length_ -= from;
        return suffix;
    }

    friend bool operator==(const SharedText& a, const char* b) { return a.view() == b; }
    // Binary order, by character code.
    friend bool operator<(const SharedText& a, const SharedText& b) { return a.view() < b.view(); }
    friend bool operator>(const SharedText& a, const SharedText& b) { return b < a; }
    friend bool operator<=(const SharedText& a, const SharedText& b) { return !(b < a); }
    friend std::string operator+(const SharedText& a, const char* b) { return a.str() + b; }
    friend std::ostream& operator<<(std::ostream& out, const SharedText& text) {
        return out << text.view();
    }

  private:
    const char* data_ = "";
    std::size_t length_ = 0;
    std::shared_ptr<const std::string> owner_;
};

}  // namespace arbolet::analysis
