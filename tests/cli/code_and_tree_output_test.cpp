// What `code` and `tree` print for inputs a new user gives them: deep nesting stays linear in
// size, and the inputs `code` takes.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
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
    EXPECT_EQ(Indentation(kMaxIndentLevels + 1), std::string(2 * kMaxIndentLevels, ' ') + "[" +
                                                     std::to_string(kMaxIndentLevels + 1) + "] ");
}

// Indentation of two blanks per level would print about depth² bytes (25 MB here).
TEST(DeepNesting, CodeAndTreeTextGrowLinearlyWithTheDepth) {
    disk::testing::TempFolder folder;
    constexpr std::size_t kDepth = 5000;
    const std::string module = folder.Write("deep.bas", DeeplyNested(kDepth)).string();
    const std::string vbp =
        folder.Write("Deep.vbp", "Module=modDeep; deep.bas\r\nName=\"Deep\"\r\n").string();
    // Two lines per If (the If and its missing End If), each at most capped indentation long.
    const std::size_t bound = 2 * kDepth * (2 * kMaxIndentLevels + 40);

    const CliRun code = Arbolet({"code", module});
    EXPECT_EQ(code.status, 0) << code.err;
    EXPECT_LT(code.out.size(), bound);
    EXPECT_NE(code.out.find("[4000] If c Then\n"), std::string::npos);

    const CliRun tree = Arbolet({"tree", "--expand", "all", vbp});
    EXPECT_LT(tree.out.size(), bound);
    EXPECT_NE(tree.out.find("] If c Then\n"), std::string::npos);
}

// A code tree larger than the tool window takes stays closed; `tree` names it, counts it and
// fails, in text and in JSON.
TEST(TreeExpand, AComponentOverTheLineLimitIsNamedAndCounted) {
    disk::testing::TempFolder folder;
    std::string huge = "Attribute VB_Name = \"modHuge\"\r\nSub Huge()\r\n";
    for (int i = 0; i < 33000; ++i)
        huge += "x = 1\r\n";
    folder.Write("huge.bas", huge + "End Sub\r\n");
    folder.Write("small.bas", "Attribute VB_Name = \"modSmall\"\r\nSub Small()\r\nEnd Sub\r\n");
    const std::string vbp = folder
                                .Write("Big.vbp",
                                       "Module=modHuge; huge.bas\r\nModule=modSmall; "
                                       "small.bas\r\nName=\"Big\"\r\n")
                                .string();
    const CliRun text = Arbolet({"tree", "--expand", "all", vbp});
    EXPECT_EQ(text.status, 1);
    EXPECT_NE(text.err.find("arbolet: modHuge was not expanded: "), std::string::npos) << text.err;
    EXPECT_NE(text.err.find("arbolet: 1 component was not expanded"), std::string::npos);
    EXPECT_NE(text.out.find("      Sub Small()\n"), std::string::npos) << text.out;

    const CliRun json = Arbolet({"tree", "--expand", "all", "--format", "json", vbp});
    EXPECT_EQ(json.status, 1);
    const auto missing = nlohmann::json::parse(json.out).at("notExpanded");
    ASSERT_EQ(missing.size(), 1u);
    EXPECT_EQ(missing[0].at("name"), "modHuge");
    EXPECT_EQ(missing[0].at("key"), "modHuge~Big~");
    EXPECT_FALSE(missing[0].at("reason").get<std::string>().empty());
}

TEST(Subcommands, AnUnknownOneIsNamed) {
    const CliRun run = Arbolet({"--codepage", "1252", "bogus", "x.bas"});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("unknown subcommand 'bogus'"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("code, check, tree"), std::string::npos) << run.err;
}

TEST(CodeInputs, ProjectsGroupsAndFoldersGiveTheirComponentsAndOtherFilesAreRefused) {
    disk::testing::TempFolder folder;
    folder.Write("src/modA.bas", "Attribute VB_Name = \"modA\"\r\nSub A()\r\nEnd Sub\r\n");
    folder.Write("src/notes.txt", "Sub NotCode()\r\n");
    const std::string vbp =
        folder.Write("P.vbp", "Module=modA; src\\modA.bas\r\nName=\"P\"\r\n").string();
    const std::string vbg =
        folder.Write("G.vbg", "VBGROUP 5.0\r\nStartupProject=P.vbp\r\n").string();
    for (const std::string& path : {vbp, vbg, (folder / "src").string()}) {
        const CliRun run = Arbolet({"code", path});
        EXPECT_EQ(run.status, 0) << path << ": " << run.err;
        EXPECT_NE(run.out.find("modA ("), std::string::npos) << run.out;
        EXPECT_NE(run.out.find("  Sub A()\n"), std::string::npos) << run.out;
        EXPECT_EQ(run.out.find("NotCode"), std::string::npos) << run.out;
    }

    const std::string binary =
        folder.Write("junk.bas", std::string("Sub X()\0\x01\x02", 10)).string();
    for (const std::string& path : {(folder / "src/notes.txt").string(), binary}) {
        const CliRun run = Arbolet({"code", path});
        EXPECT_EQ(run.status, 2) << path;
        EXPECT_EQ(run.out.find("Sub "), std::string::npos) << run.out;
        EXPECT_FALSE(run.err.empty());
    }
    const CliRun project = Arbolet({"code", vbp, (folder / "src/notes.txt").string()});
    EXPECT_EQ(project.status, 2);
    EXPECT_NE(project.err.find("not a component file"), std::string::npos) << project.err;
    EXPECT_NE(project.out.find("Sub A()"), std::string::npos);  // the others are still printed
}

}  // namespace
}  // namespace arbolet::cli
