// The top-level sort by name (see declaration_sort.h).
#include "analysis/declaration_sort.h"

#include <algorithm>
#include <vector>

#include "analysis/logic_flow.h"
#include "base/utf8.h"

namespace arbolet::analysis {
namespace {

// Above this many top-level lines the pairwise exchange would take seconds; a stable sort gives
// the same order for distinct keys and keeps equal keys in source order.
constexpr std::int32_t kExchangeSortLimit = 4096;

std::string_view From(std::string_view text, std::size_t position) {
    return position >= text.size() ? std::string_view{} : text.substr(position);
}

std::string DeclaredName(std::string_view k) {
    std::string_view name = From(k, 8);  // after "declare "
    if (name.starts_with("sub ")) {
        name = From(name, 4);
    } else if (name.starts_with("function ")) {
        name = From(name, 9);
    }
    return std::string(name);
}

// Closes single gaps among the used slots; returns the highest index that holds a child.
std::int32_t CompactAndKey(clsLine& root) {
    std::int32_t last = root.ChildCount;
    for (std::int32_t i = root.ChildCount; i >= 0; --i) {
        clsLine* child = root.Child(i);
        if (child != nullptr) {
            child->SortBy = DeclarationSortKey(*child);
            continue;
        }
        if (i < last) {
            root.SetChild(i, root.Child(i + 1));
            root.SetChild(i + 1, nullptr);
        }
        --last;
    }
    return last;
}

void ExchangeSort(clsLine& root, std::int32_t last) {
    for (std::int32_t i = 0; i <= last; ++i) {
        for (std::int32_t j = i; j <= last; ++j) {
            clsLine* a = root.Child(i);
            clsLine* b = root.Child(j);
            if (a != nullptr && b != nullptr && a->SortBy > b->SortBy) {
                root.SetChild(i, b);
                root.SetChild(j, a);
            }
        }
    }
}

void StableSort(clsLine& root, std::int32_t last) {
    std::vector<clsLine*> lines;
    for (std::int32_t i = 0; i <= last; ++i)
        lines.push_back(root.Child(i));
    std::stable_partition(lines.begin(), lines.end(), [](clsLine* l) { return l != nullptr; });
    const auto used = std::find(lines.begin(), lines.end(), nullptr);
    std::stable_sort(lines.begin(), used,
                     [](clsLine* a, clsLine* b) { return a->SortBy < b->SortBy; });
    for (std::int32_t i = 0; i <= last; ++i)
        root.SetChild(i, lines[static_cast<std::size_t>(i)]);
}

}  // namespace

std::string DeclarationSortKey(const clsLine& line) {
    const std::string_view source =
        line.SortBy.empty() ? line.LCaseContent.view() : line.SortBy.view();
    const std::string k(text::Trim(source));
    const std::string_view word = FirstWord(k);
    if (word == "option") return "     " + k;
    if (word == "enum" || word == "event" || word == "implements" || word == "const" ||
        word == "type" || word == "dim") {
        return "   " + k;
    }
    if (word == "declare") return "   declare " + DeclaredName(k);
    if (word == "static" || word == "global") return "   dim " + std::string(From(k, 7));
    if (word == "sub") return std::string(text::Trim(From(k, 3)));
    if (word == "function") return std::string(text::Trim(From(k, 8)));
    if (word == "property") return std::string(text::Trim(From(k, 12)));
    return k;
}

void SortTopLevel(clsLine& root) {
    if (root.ChildCount <= 0) return;
    const std::int32_t last = CompactAndKey(root);
    if (last + 1 > kExchangeSortLimit) {
        StableSort(root, last);
    } else {
        ExchangeSort(root, last);
    }
}

}  // namespace arbolet::analysis
