// libFuzzer target: any bytes, read as a component file in some code page and analysed under
// some display options, must give a finite tree without crashing or tripping a sanitizer; the
// VB6 block check of the same bytes must report only lines the file has, and its block tree and
// procedure metrics must be consistent.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "analysis/code_tree.h"
#include "analysis/vb6_block_tree.h"
#include "analysis/vb6_blocks.h"
#include "analysis/vb6_metrics.h"
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
    const std::string_view source = bytes.substr(located.codeOffset);
    const auto firstLine = located.firstCodeLine + 1;
    const auto findings = arbolet::analysis::vb6::CheckBlocks(source, firstLine);
    const auto lines = static_cast<std::int32_t>(arbolet::disk::SplitRawLines(bytes).size());
    for (const auto& finding : findings) {
        if (finding.line < 1 || finding.line > lines || finding.relatedLine > lines)
            __builtin_trap();
    }
    // The block tree comes from the same pass: the same findings, blocks inside the file whose
    // parents come before them, and procedure figures that add up.
    const auto tree = arbolet::analysis::vb6::ParseBlocks(source, firstLine);
    if (tree.findings.size() != findings.size()) __builtin_trap();
    for (std::size_t i = 0; i < tree.blocks.size(); ++i) {
        const auto& block = tree.blocks[i];
        if (block.parent >= static_cast<std::int32_t>(i)) __builtin_trap();
        if (block.opener.line < firstLine || block.lastLine < block.opener.line ||
            block.lastLine > lines || block.opener.column < 0 || block.opener.length < 0)
            __builtin_trap();
    }
    for (const auto& procedure : arbolet::analysis::vb6::ComputeMetrics(source, tree, firstLine)) {
        if (procedure.linesOfCode < 0 || procedure.linesOfCode > lines ||
            procedure.complexity < 1 || procedure.maxNesting < 0)
            __builtin_trap();
    }
    return 0;
}
