// The sample code texts and their trees, built by the analysis core like any component's.
#include "windows/dialogs/code_sample.h"

#include "analysis/code_tree.h"

namespace arbolet::windows::dialogs {
namespace {

// Declarations: what the variable, constant, enumeration and type options hide.
constexpr const char* kDeclarations =
    "Private Const MAX_ITEMS = 100\r\n"
    "Private mCount As Long\r\n"
    "Private Enum eState\r\n"
    "    stIdle\r\n"
    "End Enum\r\n"
    "Private Type tItem\r\n"
    "    Name As String\r\n"
    "End Type\r\n";

// Nested blocks: what the section ends option shows or hides.
constexpr const char* kFlow =
    "Public Sub Refresh()\r\n"
    "    If mCount > 0 Then\r\n"
    "        For i = 1 To mCount\r\n"
    "            LoadItem i\r\n"
    "        Next i\r\n"
    "    End If\r\n"
    "End Sub\r\n";

// A directive and unsorted procedures: what the compiler and sorting options change.
constexpr const char* kOrder =
    "Public Function Zoom() As Long\r\n"
    "#If DEBUG Then\r\n"
    "    Trace \"Zoom\"\r\n"
    "#End If\r\n"
    "End Function\r\n"
    "Public Sub Apply()\r\n"
    "End Sub\r\n";

}  // namespace

const char* SampleCode(int sample) noexcept {
    switch (sample) {
        case 0:
            return kDeclarations;
        case 1:
            return kFlow;
        case 2:
            return kOrder;
        default:
            return "";
    }
}

std::vector<SampleNode> BuildSampleTree(int sample, const analysis::DisplayOptions& options) {
    const analysis::CodeTree tree = analysis::BuildCodeTree(SampleCode(sample), options);
    std::vector<SampleNode> nodes;
    if (tree.root == nullptr) return nodes;
    analysis::WalkTree(*tree.root, [&](const analysis::clsLine& line, int depth) {
        nodes.push_back({depth, line.LineContent.str(), line.LineColour});
    });
    return nodes;
}

}  // namespace arbolet::windows::dialogs
