// Readable rendering of code trees for golden files (see tree_text.h).
#include "analysis/tree_text.h"

#include "analysis/code_tree.h"
#include "analysis/colours.h"

namespace arbolet::testing {

std::string ColourName(std::int32_t colour) {
    using namespace analysis::colour;
    switch (colour) {
        case kBlue:
            return "blue";
        case kLightGrey:
            return "lightgrey";
        case kDarkGrey:
            return "darkgrey";
        case kSlateBlue:
            return "slateblue";
        case kNavy:
            return "navy";
        case kRed:
            return "red";
        case kBlack:
            return "black";
        default:
            return "colour" + std::to_string(colour);
    }
}

std::string RenderTree(const analysis::clsLine& root) {
    std::string text;
    analysis::WalkTree(root, [&](const analysis::clsLine& line, int depth) {
        const std::string_view content = line.LineContent.view();
        const bool quote = !content.empty() && (content.front() == ' ' || content.back() == ' ');
        text += std::string(static_cast<std::size_t>(depth - 1) * 2, ' ');
        text += "[" + line.LineID.str() + "] " + ColourName(line.LineColour) + ": ";
        text += quote ? "\"" + std::string(content) + "\"" : std::string(content);
        text += "\n";
    });
    return text;
}

}  // namespace arbolet::testing
