// `arbolet check` as a CI gate: quality limits from flags and `.arbolet.json`, the GitHub,
// GitLab and SARIF reports, exit statuses with baselines, portable baselines, exclusions, file
// names that are not UTF-8, the byte-order mark, and `arbolet metrics`.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/cli_runner.h"
#include "disk/temp_folder.h"
#include "support/json_schema.h"

namespace arbolet::cli {
namespace {
namespace fs = std::filesystem;

using testing::Arbolet;
using testing::CliRun;

void SetColumns(const char* value) {
#ifdef _WIN32
    _putenv_s("COLUMNS", value == nullptr ? "" : value);
#else
    if (value == nullptr) {
        unsetenv("COLUMNS");
    } else {
        setenv("COLUMNS", value, 1);
    }
#endif
}

// Complexity 5 (If + And + For + Case), nesting 3, 9 lines of code.
const char* const kBusy =
    "Attribute VB_Name = \"modBusy\"\r\n"
    "Public Function Busy(ByVal n As Long) As Long\r\n"
    "    ' a comment\r\n"
    "    If n > 0 And n < 9 Then\r\n"
    "        For i = 1 To n\r\n"
    "            Select Case i\r\n"
    "            Case 1: Busy = 1\r\n"
    "            End Select\r\n"
    "        Next\r\n"
    "    End If\r\n"
    "End Function\r\n"
    "Sub Small()\r\n"
    "End Sub\r\n";

const char* const kBroken =
    "Attribute VB_Name = \"modBroken\"\r\n"
    "Sub Foo()\r\n"
    "    For i = 1 To 3\r\n"
    "        x = i\r\n"
    "    y = 2\r\n"
    "End Sub\r\n";

// Runs in a folder of its own as the working directory.
class Gate : public ::testing::Test {
  protected:
    Gate() : previous_(fs::current_path()) { fs::current_path(folder_.Path()); }
    ~Gate() override { fs::current_path(previous_); }

    void Write(const std::string& name, const std::string& bytes) { folder_.Write(name, bytes); }
    std::string Read(const std::string& name) { return folder_.Read(name); }

    disk::testing::TempFolder folder_;
    fs::path previous_;
};

TEST_F(Gate, QualityLimitsFromFlagsAndTheConfigFile) {
    Write("src/modBusy.bas", kBusy);
    EXPECT_EQ(Arbolet({"check", "src"}).status, 0);  // opt in: no limit, no finding
    const CliRun flags = Arbolet({"check", "--max-nesting", "2", "--max-complexity", "4",
                                  "--max-procedure-lines", "9", "src"});
    EXPECT_EQ(flags.status, 0) << flags.out;  // warnings
    EXPECT_NE(flags.out.find("src/modBusy.bas:2: warning: `Busy` nests blocks 3 deep, more "
                             "than the limit of 2 [max-nesting]"),
              std::string::npos)
        << flags.out;
    EXPECT_NE(flags.out.find("has a complexity of 5, more than the limit of 4 [max-complexity]"),
              std::string::npos)
        << flags.out;
    EXPECT_EQ(flags.out.find("max-procedure-lines"), std::string::npos) << flags.out;
    EXPECT_EQ(Arbolet({"check", "--strict", "--max-nesting", "2", "src"}).status, 1);

    // The nearest config file above the working folder; flags win over it.
    Write(".arbolet.json", "{\n  // gate\n  \"max-procedure-lines\": 5 /* lines */\n}\n");
    fs::create_directories("sub");
    fs::current_path("sub");
    const CliRun config = Arbolet({"check", "../src"});
    EXPECT_NE(config.out.find("has 9 lines of code, more than the limit of 5 "
                              "[max-procedure-lines]"),
              std::string::npos)
        << config.out;
    const CliRun overridden = Arbolet({"check", "--max-procedure-lines", "20", "../src"});
    EXPECT_EQ(overridden.out.find("max-procedure-lines"), std::string::npos) << overridden.out;
    fs::current_path("..");

    // Baselines and exclusions apply to them as to every rule.
    EXPECT_EQ(Arbolet({"check", "--write-baseline", "base.json", "src"}).status, 0);
    const CliRun known = Arbolet({"check", "--strict", "--baseline", "base.json", "src"});
    EXPECT_EQ(known.status, 0) << known.out;
    EXPECT_EQ(known.out.find("max-procedure-lines"), std::string::npos) << known.out;
    EXPECT_EQ(Arbolet({"check", "--strict", "--exclude", "src/**", "src"}).status, 2);

    Write(".arbolet.json", "{\n  \"max-nesting\": -1\n}\n");
    const CliRun bad = Arbolet({"check", "src"});
    EXPECT_EQ(bad.status, 2);
    EXPECT_NE(bad.err.find(".arbolet.json:2: \"max-nesting\" must be a whole number from 1 up"),
              std::string::npos)
        << bad.err;
}

TEST_F(Gate, SarifForCodeScanning) {
    Write("src/modBroken.bas", kBroken);
    const CliRun run = Arbolet({"check", "--format", "sarif", "src"});
    EXPECT_EQ(run.status, 1);
    const auto log = nlohmann::json::parse(run.out);
    std::ifstream schemaFile(ARBOLET_SOURCE_DIR "/tests/cli/sarif-2.1.0-subset.schema.json");
    const arbolet::testing::JsonSchema schema(nlohmann::json::parse(schemaFile));
    EXPECT_EQ(schema.Validate(log), std::vector<std::string>{});
    const auto& run0 = log.at("runs").at(0);
    const auto& driver = run0.at("tool").at("driver");
    EXPECT_FALSE(driver.at("semanticVersion").get<std::string>().empty());
    for (const auto& rule : driver.at("rules")) {
        for (const char* key : {"shortDescription", "fullDescription", "help"})
            EXPECT_TRUE(rule.contains(key)) << rule.dump() << key;
        EXPECT_NE(rule.at("helpUri").get<std::string>().find("#"), std::string::npos);
    }
    const auto& result = run0.at("results").at(0);
    const std::string hash = result.at("partialFingerprints").at("primaryLocationLineHash");
    EXPECT_EQ(hash, result.at("partialFingerprints").at("lineText/v1").get<std::string>() + ":1");
    const auto& location = result.at("locations").at(0).at("physicalLocation");
    EXPECT_EQ(location.at("artifactLocation").at("uri"), "src/modBroken.bas");
    EXPECT_EQ(location.at("artifactLocation").at("uriBaseId"), "SRCROOT");
    EXPECT_EQ(location.at("region").at("startLine"), 3);
    EXPECT_EQ(location.at("region").at("startColumn"), 5);
    EXPECT_EQ(location.at("region").at("endColumn"), 19);

    // A file outside the working folder gets a file:// URI; an absolute path inside it does not.
    const CliRun absolute =
        Arbolet({"check", "--format", "sarif", (folder_.Path() / "src").string()});
    const auto uri =
        nlohmann::json::parse(absolute.out)["runs"][0]["results"][0]["locations"][0]
                                           ["physicalLocation"]["artifactLocation"]["uri"]
                                               .get<std::string>();
    EXPECT_EQ(uri, "src/modBroken.bas");
    fs::current_path(folder_.Path() / "src");
    const CliRun outside = Arbolet({"check", "--format", "sarif", "../src"});
    fs::current_path(folder_.Path());
    const auto outsideUri =
        nlohmann::json::parse(outside.out)["runs"][0]["results"][0]["locations"][0]
                                          ["physicalLocation"]["artifactLocation"]["uri"]
                                              .get<std::string>();
    EXPECT_EQ(outsideUri, "modBroken.bas");
}

TEST_F(Gate, GithubAndGitlabFormats) {
    Write("src/modBroken.bas", kBroken);
    const CliRun github = Arbolet({"check", "--format", "github", "src"});
    EXPECT_EQ(github.status, 1);
    EXPECT_EQ(github.out.rfind("::error file=src/modBroken.bas,line=3,col=5,endColumn=19,title="
                               "arbolet unclosed-block::`For` at line 3 has no `Next`",
                               0),
              0u)
        << github.out;
    // An absolute path inside the checkout is given relative to it.
    const CliRun absolute =
        Arbolet({"check", "--format", "github", (folder_.Path() / "src").string()});
    EXPECT_EQ(absolute.out.rfind("::error file=src/modBroken.bas,", 0), 0u) << absolute.out;
    const CliRun gitlab = Arbolet(
        {"check", "--format", "gitlab", (folder_.Path() / "src" / "modBroken.bas").string()});
    const auto issues = nlohmann::json::parse(gitlab.out);
    ASSERT_EQ(issues.size(), 1u);
    EXPECT_EQ(issues[0]["location"]["path"], "src/modBroken.bas");
    EXPECT_EQ(issues[0]["location"]["lines"]["begin"], 3);
    EXPECT_EQ(issues[0]["check_name"], "unclosed-block");
}

TEST_F(Gate, ExitStatusesWithBaselines) {
    Write("src/modBroken.bas", kBroken);
    Write("src/binary.bas", std::string("Attribute VB_Name = \"b\"\r\n\0\0", 27));
    // Writing a baseline records the unreadable file but still says it could not be checked.
    const CliRun written = Arbolet({"check", "--write-baseline", "base.json", "src"});
    EXPECT_TRUE(fs::exists("base.json"));
    EXPECT_EQ(written.status, 2) << written.err;
    // Once in the baseline, it fails no more.
    EXPECT_EQ(Arbolet({"check", "--baseline", "base.json", "src"}).status, 0);

    // A baselined warning neither prints nor fails --strict.
    Write("app/A.vbp",
          "Type=Exe\r\nModule=modOk; modOk.bas\r\nModule=modGone; gone.bas\r\nName=\"A\"\r\n");
    Write("app/modOk.bas", "Attribute VB_Name = \"modOk\"\r\n");
    EXPECT_EQ(Arbolet({"check", "--strict", "app/A.vbp"}).status, 2);
    EXPECT_EQ(Arbolet({"check", "--write-baseline", "app.json", "app/A.vbp"}).status, 0);
    const CliRun strict = Arbolet({"check", "--strict", "--baseline", "app.json", "app/A.vbp"});
    EXPECT_EQ(strict.status, 0) << strict.out;
    EXPECT_EQ(strict.out.find("gone.bas"), std::string::npos) << strict.out;

    // A file that is not a VB6 component is refused, as `code` refuses it.
    Write("notes.txt", "Sub A()\r\n");
    const CliRun notes = Arbolet({"check", "notes.txt"});
    EXPECT_EQ(notes.status, 2);
    EXPECT_NE(notes.err.find("notes.txt"), std::string::npos) << notes.err;
}

TEST_F(Gate, BaselinesArePortable) {
    Write("project/src/modBroken.bas", kBroken);
    fs::current_path("project");
    EXPECT_EQ(Arbolet({"check", "--write-baseline", "../base.json", "src"}).status, 0);
    fs::current_path("..");
    const auto stored = nlohmann::json::parse(Read("base.json"));
    EXPECT_EQ(stored["findings"][0]["path"], "project/src/modBroken.bas");
    // The same baseline from elsewhere, through a relative path.
    fs::current_path("project/src");
    EXPECT_EQ(Arbolet({"check", "--baseline", "../../base.json", "."}).status, 0);
    fs::current_path(folder_.Path());

    Write("broken.json", "{\"version\": 1, \"findings\": [{\"path\": 3}]}");
    const CliRun broken = Arbolet({"check", "--baseline", "broken.json", "project"});
    EXPECT_EQ(broken.status, 2);
    EXPECT_NE(broken.err.find("broken.json"), std::string::npos) << broken.err;
    EXPECT_EQ(broken.err.find("json.exception"), std::string::npos) << broken.err;
    EXPECT_EQ(broken.err.find("[json"), std::string::npos) << broken.err;
    Write("garbage.json", "{\"version\": 1,");
    const CliRun garbage = Arbolet({"check", "--baseline", "garbage.json", "project"});
    EXPECT_NE(garbage.err.find("garbage.json: not an arbolet baseline"), std::string::npos)
        << garbage.err;

    // A baseline that cannot be written names the file, never the temporary one.
    fs::create_directories("locked");
    const CliRun unwritable = Arbolet({"check", "--write-baseline", "locked", "project"});
    EXPECT_EQ(unwritable.status, 2);
    EXPECT_EQ(unwritable.err.find(".tmp"), std::string::npos) << unwritable.err;
    EXPECT_EQ(unwritable.err.find("arbolet-"), std::string::npos) << unwritable.err;
}

TEST_F(Gate, ExclusionsByPathAndUnusedOnes) {
    Write("photodemon/Support/old.bas", kBroken);
    Write("photodemon/Modules/new.bas", kBroken);
    const CliRun run = Arbolet(
        {"check", "--exclude", "photodemon/Support", "--exclude", "nothing/here", "photodemon"});
    EXPECT_EQ(run.out.find("old.bas"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("new.bas"), std::string::npos) << run.out;
    EXPECT_NE(run.err.find("--exclude nothing/here matches nothing"), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("photodemon/Support matches nothing"), std::string::npos) << run.err;
    // A bare folder name still leaves out that folder anywhere.
    const CliRun bare = Arbolet({"check", "--exclude", "Modules", "photodemon"});
    EXPECT_EQ(bare.out.find("new.bas"), std::string::npos) << bare.out;
}

#ifndef _WIN32
TEST_F(Gate, FileNamesThatAreNotUtf8) {
    Write("caf\xE9.bas", kBroken);
    Write("caf\xE8.bas", kBroken);
    const CliRun text = Arbolet({"check", "."});
    EXPECT_NE(text.out.find("caf\\xE9.bas:3:"), std::string::npos) << text.out;
    EXPECT_EQ(text.out.find("\xEF\xBF\xBD"), std::string::npos) << text.out;
    const auto json = nlohmann::json::parse(Arbolet({"check", "--format", "json", "."}).out);
    EXPECT_NE(json["diagnostics"][0]["path"], json["diagnostics"][1]["path"]);
    EXPECT_EQ(Arbolet({"check", "--write-baseline", "base.json", "."}).status, 0);
    EXPECT_EQ(Arbolet({"check", "--baseline", "base.json", "."}).status, 0);
}
#endif

TEST_F(Gate, ByteOrderMarkIsAWarning) {
    Write("modMark.bas", std::string("\xEF\xBB\xBF") + kBusy);
    const CliRun run = Arbolet({"check", "modMark.bas"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("modMark.bas:1: warning:"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("[byte-order-mark]"), std::string::npos) << run.out;
    EXPECT_EQ(Arbolet({"check", "--strict", "modMark.bas"}).status, 1);
    Write("modPlain.bas", kBusy);
    EXPECT_EQ(Arbolet({"check", "modPlain.bas"}).out.find("byte-order-mark"), std::string::npos);
}

TEST_F(Gate, MetricsOfEveryProcedureWithTotals) {
    Write("app/modBusy.bas", kBusy);
    Write("app/modBroken.bas", kBroken);
    Write("app/App.vbp",
          "Type=Exe\r\nModule=modBusy; modBusy.bas\r\nModule=modBroken; modBroken.bas\r\n"
          "Name=\"App\"\r\n");
    const CliRun json =
        Arbolet({"metrics", "--format", "json", "--sort", "complexity", "app/App.vbp"});
    EXPECT_EQ(json.status, 0) << json.err;
    const auto doc = nlohmann::json::parse(json.out);
    ASSERT_EQ(doc["procedures"].size(), 3u);
    const auto& busy = doc["procedures"][0];
    EXPECT_EQ(busy["name"], "Busy");
    EXPECT_EQ(busy["kind"], "Function");
    EXPECT_EQ(busy["line"], 2);
    EXPECT_EQ(busy["linesOfCode"], 9);
    EXPECT_EQ(busy["maxNesting"], 3);
    EXPECT_EQ(busy["complexity"], 5);
    EXPECT_EQ(doc["components"].size(), 2u);
    EXPECT_EQ(doc["projects"][0]["project"], "App");
    EXPECT_EQ(doc["projects"][0]["procedures"], 3);
    EXPECT_EQ(doc["total"]["maxNesting"], 3);

    const CliRun csv =
        Arbolet({"metrics", "--format", "csv", "--sort", "lines", "--top", "1", "app/modBusy.bas"});
    EXPECT_EQ(csv.out,
              "component,line,procedure,kind,lines_of_code,max_nesting,complexity\r\n"
              "app/modBusy.bas,2,Busy,Function,9,3,5\r\n");

    // The table fits the terminal: a narrow one cuts the procedure column.
    SetColumns("50");
    const CliRun narrow = Arbolet({"metrics", "app/modBusy.bas"});
    SetColumns("200");
    const CliRun wide = Arbolet({"metrics", "app/modBusy.bas"});
    SetColumns(nullptr);
    const auto firstLine = [](const std::string& text) { return text.substr(0, text.find('\n')); };
    EXPECT_LE(firstLine(narrow.out).size(), 50u) << narrow.out;
    EXPECT_NE(wide.out.find("Function Busy"), std::string::npos) << wide.out;
    EXPECT_NE(wide.out.find("total: 2 procedures, 11 lines of code"), std::string::npos)
        << wide.out;
    EXPECT_EQ(Arbolet({"metrics", "missing.bas"}).status, 2);
    // A byte-order mark hides neither the header nor the first procedure.
    Write("modMark.cls", std::string("\xEF\xBB\xBFVERSION 1.0 CLASS\r\nBEGIN\r\nEND\r\n") + kBusy);
    const auto marked =
        nlohmann::json::parse(Arbolet({"metrics", "--format", "json", "modMark.cls"}).out);
    ASSERT_EQ(marked["procedures"].size(), 2u);
    EXPECT_EQ(marked["procedures"][0]["line"], 5);
    EXPECT_EQ(marked["procedures"][0]["complexity"], 5);
}

}  // namespace
}  // namespace arbolet::cli
