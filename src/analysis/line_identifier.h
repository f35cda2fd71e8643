// LineIdentifier: a line's identifier, built by putting prefixes in front of another identifier.
//
// Identifiers of split-off statements and error nodes are an earlier identifier with something in
// front ("@~" once per colon, "I", "ERROR~", underscores). On a line with thousands of colons the
// spelled-out identifiers would total gigabytes, so prefixes are kept as a shared chain and the
// text is only put together when it is asked for.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>

namespace arbolet::analysis {

class LineIdentifier {
  public:
    LineIdentifier() = default;
    LineIdentifier(const char* text) : base_(text) {}
    LineIdentifier(const LineIdentifier&) = default;
    LineIdentifier(LineIdentifier&&) noexcept = default;
    LineIdentifier& operator=(LineIdentifier other) noexcept {
        std::swap(base_, other.base_);
        std::swap(prefixes_, other.prefixes_);
        return *this;  // the old value leaves through `other`'s destructor
    }
    LineIdentifier& operator=(std::string text) {
        base_ = std::move(text);
        LineIdentifier dropped;
        std::swap(dropped.prefixes_, prefixes_);
        return *this;
    }
    // Releases a long chain link by link: the default would recurse once per link.
    ~LineIdentifier() {
        std::shared_ptr<Prefix> link = std::move(prefixes_);
        while (link && link.use_count() == 1)
            link = std::move(link->rest);
    }

    // This identifier with `prefix`, repeated `times`, in front; shares everything behind it.
    LineIdentifier Prefixed(std::string_view prefix, std::size_t times = 1) const {
        if (times == 0 || prefix.empty()) return *this;
        LineIdentifier result;
        result.base_ = base_;
        result.prefixes_ = std::make_shared<Prefix>(Prefix{std::string(prefix), times, prefixes_});
        return result;
    }

    std::string str() const {
        std::string text;
        for (const Prefix* p = prefixes_.get(); p != nullptr; p = p->rest.get()) {
            for (std::size_t i = 0; i < p->times; ++i)
                text += p->text;
        }
        return text + base_;
    }

    bool empty() const { return prefixes_ == nullptr && base_.empty(); }

    friend bool operator==(const LineIdentifier& a, const char* b) { return a.str() == b; }
    friend std::ostream& operator<<(std::ostream& out, const LineIdentifier& id) {
        return out << id.str();
    }

  private:
    struct Prefix {
        std::string text;
        std::size_t times = 1;
        std::shared_ptr<Prefix> rest;
    };
    std::string base_;
    std::shared_ptr<Prefix> prefixes_;
};

}  // namespace arbolet::analysis
