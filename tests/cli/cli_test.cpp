// The arbolet command line end to end: JSON shape, diagnostics, exit statuses and SARIF.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/cli_runner.h"
#include "disk/temp_folder.h"

namespace arbolet::cli {
namespace {
namespace fs = std::filesystem;

using testing::Arbolet;
using testing::CliRun;

class CommandLine : public ::testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& bytes) {
        return folder_.Write(name, bytes).string();
    }
    disk::testing::TempFolder folder_;
    const fs::path& folderPath_ = folder_.Path();
};

const char* const kBroken =
    "Attribute VB_Name = \"modBroken\"\r\n"
    "Attribute Foo.VB_UserMemId = 0\r\n"
    "Sub Foo()\r\n"
    "    If x Then\r\n"
    "End Sub\r\n"
    "Sub Bar()\r\n"
    "End If\r\n"
    "End Sub\r\n";

TEST_F(CommandLine, CodeJsonHasTheDocumentedShapeAndFileLines) {
    const auto path = Write("broken.bas", kBroken);
    const CliRun run = Arbolet({"code", "--format", "json", path});
    ASSERT_EQ(run.status, 0) << run.err;
    const auto doc = nlohmann::json::parse(run.out);
    const auto& component = doc.at("components").at(0);
    EXPECT_EQ(component.at("name"), "modBroken");
    EXPECT_EQ(component.at("path"), fs::path(path).generic_string());
    const auto& sub = component.at("code").at(0);
    EXPECT_EQ(sub.size(), 5u);  // LineID, LineContent, LineColour, line, children
    EXPECT_EQ(sub.at("LineID"), "0");
    EXPECT_EQ(sub.at("LineContent"), "Sub Foo()");
    EXPECT_EQ(sub.at("LineColour"), 0xFF0000);
    EXPECT_EQ(sub.at("line"), 3);  // file line, past the two hidden attribute lines
    const auto& ifNode = sub.at("children").at(0);
    EXPECT_EQ(ifNode.at("line"), 4);
    EXPECT_EQ(ifNode.at("children").at(0).at("LineContent"), "NO START sub");
    EXPECT_EQ(ifNode.at("children").at(0).at("line"), 5);
    // The If left open is reported on its own opening line.
    EXPECT_EQ(sub.at("children").at(1).at("LineContent"), "ERROR - NO end if");
    EXPECT_EQ(sub.at("children").at(1).at("line"), 4);
}

TEST_F(CommandLine, CodeTextIndentsAndColoursOnlyOnATerminal) {
    const auto path = Write("a.bas", "Sub A()\r\nx = 1\r\nEnd Sub\r\n");
    const CliRun plain = Arbolet({"code", path});
    EXPECT_NE(plain.out.find("\n  Sub A()\n    x = 1\n  End Sub\n"), std::string::npos)
        << plain.out;
    EXPECT_EQ(plain.out.find('\x1b'), std::string::npos);
    const CliRun coloured = Arbolet({"code", path}, true);
    EXPECT_NE(coloured.out.find("\x1b[38;2;0;0;255mSub A()"), std::string::npos) << coloured.out;
}

TEST_F(CommandLine, DisplayFlagsReachTheBuild) {
    const auto path = Write("a.bas", "Dim a\r\nSub B()\r\nEnd Sub\r\nSub A()\r\nEnd Sub\r\n");
    const CliRun run = Arbolet({"code", "--format", "json", "--hide-variables",
                                "--hide-section-ends", "--sort-by-name", path});
    const auto code = nlohmann::json::parse(run.out).at("components").at(0).at("code");
    ASSERT_EQ(code.size(), 2u);
    EXPECT_EQ(code.at(0).at("LineContent"), "Sub A()");
}

TEST_F(CommandLine, CheckReportsCompilerStyleInLineOrderWithExitStatusOne) {
    const auto path = Write("sub/broken.bas", kBroken);
    Write("sub/clean.cls", "Sub A()\r\nEnd Sub\r\n");
    Write("sub/notes.txt", "End If\r\n");
    const CliRun run = Arbolet({"check", "--rules", "window", folderPath_.string()});
    EXPECT_EQ(run.status, 1);
    const std::string shown = fs::path(path).generic_string();
    const std::string expected = shown + ":3: error: ERROR - NO end sub [unclosed-block]\n" +
                                 shown + ":4: error: ERROR - NO end if [unclosed-block]\n" + shown +
                                 ":5: error: NO START sub [unmatched-end]\n" + shown +
                                 ":7: error: NO START if [unmatched-end]\n";
    EXPECT_EQ(run.out.substr(0, expected.size()), expected);
    EXPECT_NE(run.out.find("arbolet: 4 errors in 1 file (2 files checked)"), std::string::npos)
        << run.out;
}

TEST_F(CommandLine, CheckOfCleanCodeExitsZero) {
    const auto path = Write("clean.bas", "Sub A()\r\nIf a Then\r\nEnd If\r\nEnd Sub\r\n");
    const CliRun run = Arbolet({"check", path});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "arbolet: no errors (1 file checked)\n");
}

TEST_F(CommandLine, UnreadableFileIsNamedAndOthersAreStillChecked) {
    const auto broken = Write("broken.bas", kBroken);
    const auto missing = (folderPath_ / "missing.bas").string();
    const CliRun run = Arbolet({"check", "--rules", "window", missing, broken});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.out.find("missing.bas: error:"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("broken.bas:5: error: NO START sub"), std::string::npos) << run.out;
}

TEST_F(CommandLine, SarifNamesRulesAndLocations) {
    const auto path = Write("my file.bas", kBroken);
    const CliRun run = Arbolet({"check", "--rules", "window", "--format", "sarif", path});
    EXPECT_EQ(run.status, 1);
    const auto doc = nlohmann::json::parse(run.out);
    EXPECT_EQ(doc.at("version"), "2.1.0");
    const auto& results = doc.at("runs").at(0).at("results");
    ASSERT_EQ(results.size(), 4u);
    EXPECT_EQ(results.at(0).at("ruleId"), "unclosed-block");
    EXPECT_EQ(results.at(2).at("message").at("text"), "NO START sub");
    const auto& location = results.at(2).at("locations").at(0).at("physicalLocation");
    EXPECT_EQ(location.at("region").at("startLine"), 5);
    EXPECT_NE(location.at("artifactLocation").at("uri").get<std::string>().find("my%20file.bas"),
              std::string::npos);
    const auto& rules = doc.at("runs").at(0).at("tool").at("driver").at("rules");
    const bool listed = std::any_of(rules.begin(), rules.end(),
                                    [](const auto& r) { return r.at("id") == "unclosed-block"; });
    EXPECT_TRUE(listed);
}

TEST_F(CommandLine, CheckJsonCountsFindings) {
    const auto path = Write("broken.bas", kBroken);
    const CliRun run = Arbolet({"check", "--rules", "window", "--format", "json", path});
    const auto doc = nlohmann::json::parse(run.out);
    EXPECT_EQ(doc.at("errors"), 4);
    EXPECT_EQ(doc.at("diagnostics").at(0).at("line"), 3);
}

TEST_F(CommandLine, CodePageOptionDecodesFiles) {
    const auto path = Write("ru.bas", "x = \"\xCF\xF0\xE8\xE2\xE5\xF2\"\r\n");
    const CliRun run = Arbolet({"code", "--codepage", "1251", path});
    EXPECT_NE(run.out.find("x = \"Привет\""), std::string::npos) << run.out;
    EXPECT_EQ(Arbolet({"code", "--codepage", "12345", path}).status, 2);
}

TEST_F(CommandLine, UsageErrorsHelpAndVersion) {
    EXPECT_EQ(Arbolet({}).status, 2);
    EXPECT_EQ(Arbolet({"frobnicate"}).status, 2);
    EXPECT_EQ(Arbolet({"check", "--format", "xml", "x.bas"}).status, 2);
    const CliRun help = Arbolet({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("check"), std::string::npos);
    const CliRun version = Arbolet({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_NE(version.out.find("arbolet 0."), std::string::npos);
}

}  // namespace
}  // namespace arbolet::cli
