// libFuzzer target: any bytes, read as a component file in some code page and analysed under
// some display options, must give a finite tree without crashing or tripping a sanitizer; the
// VB6 block check of the same bytes must report only lines the file has.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "analysis/code_tree.h"
#include "analysis/vb6_blocks.h"
#include "disk/component_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    using arbolet::analysis::DisplayOptions;
    const std::uint8_t flags = data[0];
    const DisplayOptions options{(flags & 1) != 0, (flags & 2) != 0,  (flags & 4) != 0,
                                 (flags & 8) != 0, (flags & 16) != 0, (flags & 32) != 0,
                                 (flags & 64) != 0};
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    const int codePage = (flags & 128) != 0 ? 932 : 1252;

    const auto file = arbolet::disk::ParseComponentFile(bytes, codePage);
    const std::string code = file.CodeText();
    for (const std::string_view text : {std::string_view(code), bytes}) {
        const auto tree = arbolet::analysis::BuildCodeTree(text, options);
        std::size_t nodes = 0;
        arbolet::analysis::WalkTree(*tree.root, [&](const auto& line, int) {
            nodes += line.LineID.empty() ? 0 : 1;
            if (nodes > 4 * tree.arena.size() + 4) __builtin_trap();  // a cycle or a corrupt list
        });
    }
    const auto located = arbolet::disk::LocateCode(bytes);
    const auto findings = arbolet::analysis::vb6::CheckBlocks(bytes.substr(located.codeOffset),
                                                              located.firstCodeLine + 1);
    for (const auto& finding : findings) {
        const auto lines = static_cast<std::int32_t>(located.raw.size());
        if (finding.line < 1 || finding.line > lines || finding.relatedLine > lines)
            __builtin_trap();
    }
    return 0;
}
