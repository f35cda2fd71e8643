// What `code` and `tree` print for inputs a new user gives them: deep nesting stays linear in
// size, and the inputs `code` takes.
#include <gtest/gtest.h>

#include <string>

#include "cli/cli_runner.h"
#include "cli/indentation.h"
#include "disk/temp_folder.h"

namespace arbolet::cli {
namespace {

using testing::Arbolet;
using testing::CliRun;

// A Sub holding `depth` nested block Ifs, none closed.
std::string DeeplyNested(std::size_t depth) {
    std::string text = "Attribute VB_Name = \"modDeep\"\r\nSub Deep()\r\n";
    for (std::size_t i = 0; i < depth; ++i)
        text += "If c Then\r\n";
    return text + "End Sub\r\n";
}

TEST(Indentation, TwoBlanksPerLevelThenTheDepthAsANumber) {
    EXPECT_EQ(Indentation(0), "");
    EXPECT_EQ(Indentation(3), "      ");
    EXPECT_EQ(Indentation(kMaxIndentLevels), std::string(2 * kMaxIndentLevels, ' '));
    EXPECT_EQ(Indentation(kMaxIndentLevels + 1),
              std::string(2 * kMaxIndentLevels, ' ') + "[" +
                  std::to_string(kMaxIndentLevels + 1) + "] ");
}

// Indentation of two blanks per level would print about depth² bytes (25 MB here).
TEST(DeepNesting, CodeAndTreeTextGrowLinearlyWithTheDepth) {
    disk::testing::TempFolder folder;
    constexpr std::size_t kDepth = 5000;
    const std::string module = folder.Write("deep.bas", DeeplyNested(kDepth)).string();
    const std::string vbp =
        folder.Write("Deep.vbp", "Module=modDeep; deep.bas\r\nName=\"Deep\"\r\n").string();
    const std::size_t bound = kDepth * (2 * kMaxIndentLevels + 40);

    const CliRun code = Arbolet({"code", module});
    EXPECT_EQ(code.status, 0) << code.err;
    EXPECT_LT(code.out.size(), bound);
    EXPECT_NE(code.out.find("[4000] If c Then\n"), std::string::npos);

    const CliRun tree = Arbolet({"tree", "--expand", "all", vbp});
    EXPECT_LT(tree.out.size(), bound);
    EXPECT_NE(tree.out.find("] If c Then\n"), std::string::npos);
}

}  // namespace
}  // namespace arbolet::cli
