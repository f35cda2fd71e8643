// `arbolet check` end to end: the two rule sets, SARIF validated against the schema, baselines,
// exclusions, missing and shared components, and the exit statuses.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#ifndef _WIN32
#include <unistd.h>
#endif

#include "cli/cli_runner.h"
#include "disk/temp_folder.h"
#include "support/json_schema.h"

namespace arbolet::cli {
namespace {
namespace fs = std::filesystem;

using testing::Arbolet;
using testing::CliRun;

// Each of these compiles in VB6; the tool window's rules report every one of them.
const char* const kCompiles =
    "Attribute VB_Name = \"modOk\"\r\n"
    "Enum Kinds\r\n"
    "    LOCAL_\r\n"
    "End Enum\r\n"
    "Private Static Function Count(ByVal c As Long) As Long\r\n"
    "    On Error GoTo err_\r\n"
    "    If c Then: Count = 1\r\n"
    "    For i = 1 To 2\r\n"
    "        For j = 1 To 2\r\n"
    "    Next j, i\r\n"
    "err_:\r\n"
    "End Function\r\n"
    "#If Win64 Then\r\n"
    "Public Sub Run(ByVal p As LongPtr)\r\n"
    "#Else\r\n"
    "Public Sub Run(ByVal p As Long)\r\n"
    "#End If\r\n"
    "End Sub\r\n";

const char* const kBroken =
    "Attribute VB_Name = \"modBroken\"\r\n"
    "Sub Foo()\r\n"
    "    For i = 1 To 3\r\n"
    "        x = i\r\n"
    "    y = 2\r\n"
    "End Sub\r\n"
    "Sub Bar()\r\n"
    "    End If\r\n"
    "End Sub\r\n";

// The SARIF 2.1.0 schema's definitions of the objects check writes.
const arbolet::testing::JsonSchema& SarifSchema() {
    static const arbolet::testing::JsonSchema schema = [] {
        std::ifstream file(ARBOLET_SOURCE_DIR "/tests/cli/sarif-2.1.0-subset.schema.json");
        return arbolet::testing::JsonSchema(nlohmann::json::parse(file));
    }();
    return schema;
}

class Check : public ::testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& bytes) {
        return folder_.Write(name, bytes).generic_string();
    }
    disk::testing::TempFolder folder_;
};

TEST_F(Check, Vb6RulesSayWhatIsWrongAndWhereTheBlockBegan) {
    const auto path = Write("broken.bas", kBroken);
    const CliRun run = Arbolet({"check", path});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, path +
                           ":3: error: `For` at line 3 has no `Next` (probably before line 5) "
                           "[unclosed-block]\n" +
                           path + ":8: error: `End If` at line 8 has no `If` [unmatched-end]\n" +
                           "arbolet: 2 errors in 1 file (1 file checked)\n");
}

TEST_F(Check, CodeThatCompilesPassesUnderVb6RulesButNotUnderTheWindowRules) {
    const auto path = Write("ok.bas", kCompiles);
    const CliRun vb6 = Arbolet({"check", path});
    EXPECT_EQ(vb6.status, 0) << vb6.out;
    EXPECT_EQ(vb6.out, "arbolet: no errors (1 file checked)\n");
    const CliRun window = Arbolet({"check", "--rules", "window", path});
    EXPECT_EQ(window.status, 1) << window.out;
}

TEST_F(Check, SarifIsValidWithRelatedLocationsFileUrisAndMissingFiles) {
    const auto broken = Write("my files/broken.bas", kBroken);
    Write("Shop.vbp",
          "Type=Exe\r\nModule=modBroken; my files\\broken.bas\r\n"
          "Module=modGone; gone.bas\r\nName=\"Shop\"\r\n");
    const CliRun run =
        Arbolet({"check", "--format", "sarif", (folder_.Path() / "Shop.vbp").string()});
    EXPECT_EQ(run.status, 1);
    const auto log = nlohmann::json::parse(run.out);
    EXPECT_EQ(SarifSchema().Validate(log), std::vector<std::string>{});

    const auto& results = log.at("runs").at(0).at("results");
    ASSERT_EQ(results.size(), 3u) << run.out;
    // The missing component is a warning located on its project line.
    EXPECT_EQ(results.at(0).at("ruleId"), "missing-file");
    EXPECT_EQ(results.at(0).at("level"), "warning");
    EXPECT_EQ(
        results.at(0).at("locations").at(0).at("physicalLocation").at("region").at("startLine"), 3);
    // The unclosed For points at where its Next probably belongs.
    const auto& unclosed = results.at(1);
    EXPECT_EQ(unclosed.at("ruleId"), "unclosed-block");
    const auto& artifact =
        unclosed.at("locations").at(0).at("physicalLocation").at("artifactLocation");
    const std::string uri = artifact.at("uri");
    // The temporary folder lies outside the working folder: an absolute file URI.
    EXPECT_TRUE(uri.starts_with("file:///")) << uri;
    EXPECT_NE(uri.find("my%20files/broken.bas"), std::string::npos) << uri;
    EXPECT_EQ(
        unclosed.at("relatedLocations").at(0).at("physicalLocation").at("region").at("startLine"),
        5);
    EXPECT_FALSE(unclosed.at("partialFingerprints").empty());
    (void)broken;
}

TEST_F(Check, TheSchemaCheckRejectsWhatSarifForbids) {
    auto log = nlohmann::json::parse(R"({"version":"2.1.0","runs":[{"tool":{"driver":{
        "name":"x"}},"results":[{"message":{"text":"m"},"level":"fatal","locations":[{
        "physicalLocation":{"artifactLocation":{"uri":"a b.bas"},"region":{"startLine":0}}}],
        "line":3}]}]})");
    const auto errors = SarifSchema().Validate(log);
    EXPECT_EQ(errors.size(), 4u);  // level, uri, startLine, and the unknown property `line`
}

TEST_F(Check, RelativePathsUseTheSourceRootBase) {
    const fs::path previous = fs::current_path();
    fs::current_path(folder_.Path());
    Write("src/broken.bas", kBroken);
    const CliRun run = Arbolet({"check", "--format", "sarif", "src"});
    fs::current_path(previous);
    const auto log = nlohmann::json::parse(run.out);
    EXPECT_EQ(SarifSchema().Validate(log), std::vector<std::string>{});
    const auto& artifact = log.at("runs")
                               .at(0)
                               .at("results")
                               .at(0)
                               .at("locations")
                               .at(0)
                               .at("physicalLocation")
                               .at("artifactLocation");
    EXPECT_EQ(artifact.at("uri"), "src/broken.bas");
    EXPECT_EQ(artifact.at("uriBaseId"), "SRCROOT");
    const std::string root = log.at("runs").at(0).at("originalUriBaseIds").at("SRCROOT").at("uri");
    EXPECT_TRUE(root.starts_with("file:///") && root.ends_with("/")) << root;
}

TEST_F(Check, BaselineKeepsKnownFindingsQuietThroughEditsAndCatchesNewOnes) {
    const auto path = Write("src/broken.bas", kBroken);
    const auto baseline = (folder_.Path() / "arbolet-baseline.json").string();
    const CliRun written = Arbolet({"check", "--write-baseline", baseline, path});
    EXPECT_EQ(written.status, 0) << written.err;
    EXPECT_NE(written.err.find("with 2 findings"), std::string::npos) << written.err;

    // Lines added above move every finding; the baseline still knows them.
    std::string edited = kBroken;
    edited.insert(edited.find("Sub Foo"), "' a new comment\r\n\r\n");
    Write("src/broken.bas", edited);
    const CliRun known = Arbolet({"check", "--baseline", baseline, path});
    EXPECT_EQ(known.status, 0) << known.out;
    EXPECT_NE(known.out.find("2 known from the baseline"), std::string::npos) << known.out;

    Write("src/broken.bas", edited + "Sub Baz()\r\n    Loop\r\nEnd Sub\r\n");
    const CliRun fresh = Arbolet({"check", "--baseline", baseline, path});
    EXPECT_EQ(fresh.status, 1);
    EXPECT_NE(fresh.out.find("`Loop` at line 13 has no `Do`"), std::string::npos) << fresh.out;
    EXPECT_EQ(fresh.out.find("`End If`"), std::string::npos) << fresh.out;

    Write("bad.json", "{\"not\": \"a baseline\"}");
    EXPECT_EQ(Arbolet({"check", "--baseline", (folder_.Path() / "bad.json").string(), path}).status,
              2);
}

TEST_F(Check, ExclusionsAndQuiet) {
    Write("app/legacy/old.bas", kBroken);
    Write("app/forms/main.frm", kBroken);
    const auto kept = Write("app/mod.bas", kBroken);
    const std::string root = (folder_.Path() / "app").string();
    const CliRun run =
        Arbolet({"check", "--quiet", "--exclude", "legacy/**", "--exclude", "*.frm", root});
    EXPECT_EQ(run.status, 1);
    // Only the errors of the file left, without a summary.
    EXPECT_EQ(run.out.find("legacy"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("main.frm"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("arbolet:"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find(kept + ":8:"), std::string::npos) << run.out;
}

TEST_F(Check, SharedModulesOnceMissingComponentsCountedAndStrict) {
    Write("shared/modShared.bas", kBroken);
    Write("a/A.vbp", "Type=Exe\r\nModule=modShared; ..\\shared\\modShared.bas\r\nName=\"A\"\r\n");
    Write("b/B.vbp",
          "Type=Exe\r\nModule=modShared; ..\\shared\\modShared.bas\r\n"
          "Module=modGone; gone.bas\r\nName=\"B\"\r\n");
    const auto group = Write("All.vbg",
                             "VBGROUP 5.0\r\nStartupProject=a\\A.vbp\r\n"
                             "Project=b\\B.vbp\r\n");
    const CliRun run = Arbolet({"check", "--format", "json", group});
    EXPECT_EQ(run.status, 1);
    const auto doc = nlohmann::json::parse(run.out);
    EXPECT_EQ(doc.at("filesChecked"), 1);
    EXPECT_EQ(doc.at("errors"), 2);
    EXPECT_EQ(doc.at("warnings"), 1);
    EXPECT_EQ(doc.at("missingFiles"), 1);
    EXPECT_EQ(Arbolet({"check", "--strict", group}).status, 2);

    fs::create_directories(folder_.Path() / "empty");
    const std::string empty = (folder_.Path() / "empty").string();
    EXPECT_EQ(Arbolet({"check", empty}).status, 0);
    EXPECT_EQ(Arbolet({"check", "--strict", empty}).status, 2);
}

TEST_F(Check, UnreadableSubfolderIsReported) {
#ifdef _WIN32
    GTEST_SKIP() << "folder permissions are not POSIX modes";
#else
    if (geteuid() == 0) GTEST_SKIP() << "root reads every folder";
    Write("code/locked/a.bas", kBroken);
    Write("code/ok.bas", "Sub A()\r\nEnd Sub\r\n");
    const fs::path locked = folder_.Path() / "code" / "locked";
    fs::permissions(locked, fs::perms::none);
    const CliRun run = Arbolet({"check", (folder_.Path() / "code").string()});
    const CliRun strict = Arbolet({"check", "--strict", (folder_.Path() / "code").string()});
    fs::permissions(locked, fs::perms::owner_all);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("locked: warning: the folder cannot be read"), std::string::npos)
        << run.out;
    EXPECT_EQ(strict.status, 2);
#endif
}

TEST_F(Check, HelpListsTheInputsAndTheExitStatuses) {
    const CliRun help = Arbolet({"check", "--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* text : {"PROJECT.vbp", "GROUP.vbg", "FOLDER", ".cls", "Exit status:",
                             "--strict", "--baseline", "--exclude", "vb6", "window"}) {
        EXPECT_NE(help.out.find(text), std::string::npos) << text;
    }
}

}  // namespace
}  // namespace arbolet::cli
