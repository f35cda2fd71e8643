// Glob matching of paths (see path_glob.h).
#include "check/path_glob.h"

#include <vector>

namespace arbolet::check {
namespace {

bool SameChar(char a, char b) {
#ifdef _WIN32
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return lower(a) == lower(b);
#else
    return a == b;
#endif
}

// Iterative wildcard matching with one backtracking point per star kind, linear in practice.
bool Matches(std::string_view text, std::string_view pattern) {
    std::size_t t = 0;
    std::size_t p = 0;
    std::size_t starP = std::string_view::npos;
    std::size_t starT = 0;
    bool starCrossesParts = false;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starCrossesParts = p + 1 < pattern.size() && pattern[p + 1] == '*';
            p += starCrossesParts ? 2 : 1;
            // `**/` also matches no folder at all.
            if (starCrossesParts && p < pattern.size() && pattern[p] == '/' &&
                Matches(text.substr(t), pattern.substr(p + 1))) {
                return true;
            }
            starP = p;
            starT = t;
        } else if (p < pattern.size() && text[t] != '/' &&
                   (pattern[p] == '?' || SameChar(pattern[p], text[t]))) {
            ++t;
            ++p;
        } else if (p < pattern.size() && text[t] == '/' && pattern[p] == '/') {
            ++t;
            ++p;
        } else if (starP != std::string_view::npos && (starCrossesParts || text[starT] != '/')) {
            p = starP;
            t = ++starT;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

}  // namespace

bool PathMatchesGlob(std::string_view path, std::string_view pattern) {
    while (pattern.starts_with("./"))
        pattern.remove_prefix(2);
    if (pattern.find('/') == std::string_view::npos) {
        std::size_t start = 0;
        while (start <= path.size()) {
            auto end = path.find('/', start);
            if (end == std::string_view::npos) end = path.size();
            if (Matches(path.substr(start, end - start), pattern)) return true;
            start = end + 1;
        }
        return false;
    }
    for (std::size_t start = 0; start < path.size();) {
        if (Matches(path.substr(start), pattern)) return true;
        const auto slash = path.find('/', start);
        if (slash == std::string_view::npos) break;
        start = slash + 1;
    }
    return false;
}

}  // namespace arbolet::check
