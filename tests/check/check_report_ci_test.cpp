// The GitHub and GitLab reports: escaping as each service reads it, and the fields each needs.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "check/check_report_ci.h"
#include "check/check_text.h"

namespace arbolet::check {
namespace {

std::vector<FileResult> Results() {
    FileResult result;
    Finding error = MakeFinding("src/a,b:c.bas", 3, "error", "unclosed-block",
                                "`If` at line 3 has no `End If` (100% sure)\r\nsecond line");
    error.column = 5;
    error.endColumn = 14;
    error.fingerprint = "00ff";
    result.findings.push_back(error);
    Finding warning = MakeFinding("b.bas", 0, "warning", "byte-order-mark", "a mark");
    warning.fingerprint = "00ff";
    result.findings.push_back(warning);
    result.findings.push_back(warning);
    return {result};
}

TEST(CheckReportCi, GithubWorkflowCommandsAreEscaped) {
    EXPECT_EQ(GithubMessage("a%b\r\nc:d,e"), "a%25b%0D%0Ac:d,e");
    EXPECT_EQ(GithubProperty("a%b\r\nc:d,e"), "a%25b%0D%0Ac%3Ad%2Ce");
    std::ostringstream out;
    WriteCheckGithub(out, Results());
    EXPECT_EQ(out.str(),
              "::error file=src/a%2Cb%3Ac.bas,line=3,col=5,endColumn=14,title=arbolet "
              "unclosed-block::`If` at line 3 has no `End If` (100%25 sure)%0D%0Asecond line\n"
              "::warning file=b.bas,title=arbolet byte-order-mark::a mark\n"
              "::warning file=b.bas,title=arbolet byte-order-mark::a mark\n");
}

TEST(CheckReportCi, GitlabCodeQualityIssues) {
    std::ostringstream out;
    WriteCheckGitlab(out, Results());
    const auto issues = nlohmann::json::parse(out.str());
    ASSERT_EQ(issues.size(), 3u);
    EXPECT_EQ(issues[0]["check_name"], "unclosed-block");
    EXPECT_EQ(issues[0]["severity"], "major");
    EXPECT_EQ(issues[0]["location"]["path"], "src/a,b:c.bas");
    EXPECT_EQ(issues[0]["location"]["lines"]["begin"], 3);
    EXPECT_EQ(issues[1]["severity"], "minor");
    EXPECT_EQ(issues[1]["location"]["lines"]["begin"], 1);  // whole-file findings: line 1
    // Two equal findings still get fingerprints of their own.
    EXPECT_NE(issues[1]["fingerprint"], issues[2]["fingerprint"]);
    EXPECT_NE(issues[0]["fingerprint"], issues[1]["fingerprint"]);
    std::ostringstream none;
    WriteCheckGitlab(none, {});
    EXPECT_EQ(none.str(), "[]\n");
}

TEST(CheckText, BytesThatAreNotUtf8AreShownEscaped) {
    EXPECT_EQ(ShownText("caf\xC3\xA9.bas"), "caf\xC3\xA9.bas");
    EXPECT_EQ(ShownText("caf\xE9.bas"), "caf\\xE9.bas");
    EXPECT_NE(ShownText("\xE9"), ShownText("\xE8"));
    EXPECT_EQ(ShownText("\xC3"), "\\xC3");                    // cut short
    EXPECT_EQ(ShownText("\xED\xA0\x80"), "\\xED\\xA0\\x80");  // a surrogate
}

}  // namespace
}  // namespace arbolet::check
