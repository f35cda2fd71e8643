// `.arbolet.json`: comments, the three limits, every kind of mistake named with its file and
// line, and where the file is found.
#include <gtest/gtest.h>

#include <fstream>

#include "check/check_config.h"

namespace arbolet::check {
namespace {
namespace fs = std::filesystem;

std::string ErrorOf(std::string_view text) {
    try {
        ParseConfig(text, "cfg/.arbolet.json");
    } catch (const ConfigError& error) {
        return error.what();
    }
    return "no error";
}

TEST(CheckConfig, ReadsTheLimitsBetweenComments) {
    const QualityLimits limits = ParseConfig(
        "\xEF\xBB\xBF// quality gate\n{\n  \"max-nesting\": 4, /* deepest\n block */\n"
        "  \"max-procedure-lines\" : 80,\n  \"max-complexity\":15 // per procedure\n}\n",
        "x");
    EXPECT_EQ(limits.maxNesting, 4);
    EXPECT_EQ(limits.maxProcedureLines, 80);
    EXPECT_EQ(limits.maxComplexity, 15);
    const QualityLimits empty = ParseConfig("{ }", "x");
    EXPECT_FALSE(empty.Any());
    QualityLimits merged = ParseConfig("{\"max-nesting\": 4, \"max-complexity\": 9}", "x");
    QualityLimits command;
    command.maxNesting = 2;
    merged.OverrideWith(command);
    EXPECT_EQ(merged.maxNesting, 2);
    EXPECT_EQ(merged.maxComplexity, 9);
}

TEST(CheckConfig, MistakesNameTheFileAndLine) {
    EXPECT_EQ(ErrorOf("{\n\n  \"max-depth\": 3\n}"),
              "cfg/.arbolet.json:3: unknown key \"max-depth\" (known: max-nesting, "
              "max-procedure-lines, max-complexity)");
    EXPECT_EQ(ErrorOf("{\n \"max-nesting\": 0\n}"),
              "cfg/.arbolet.json:2: \"max-nesting\" must be a whole number from 1 up, not 0");
    EXPECT_EQ(ErrorOf("{\n \"max-complexity\": \"ten\"\n}"),
              "cfg/.arbolet.json:2: \"max-complexity\" must be a whole number from 1 up, not "
              "\"ten\"");
    EXPECT_EQ(ErrorOf("{\n \"max-nesting\": 2.5}"),
              "cfg/.arbolet.json:2: \"max-nesting\" must be a whole number from 1 up, not 2.5");
    EXPECT_EQ(ErrorOf("{\n \"max-nesting\": 2\n \"max-complexity\": 3\n}"),
              "cfg/.arbolet.json:3: expected `,` or `}` after a value");
    EXPECT_EQ(ErrorOf("[1]"), "cfg/.arbolet.json:1: the configuration must be a JSON object");
    EXPECT_EQ(ErrorOf("{\n/* open\n\n"), "cfg/.arbolet.json:2: a /* comment is not closed");
    EXPECT_EQ(ErrorOf("{}\n}"), "cfg/.arbolet.json:2: unexpected text after the closing `}`");
    EXPECT_EQ(ErrorOf("{\"max-nesting\": 99999999999}"),
              "cfg/.arbolet.json:1: \"max-nesting\" must be a whole number from 1 up, not "
              "99999999999");
    EXPECT_EQ(ErrorOf(std::string("{\"a\0b", 5)), "cfg/.arbolet.json:1: a string is not closed");
}

TEST(CheckConfig, FoundInTheFolderOrTheNearestAbove) {
    const fs::path root = fs::temp_directory_path() / "arbolet-config-test";
    fs::remove_all(root);
    fs::create_directories(root / "a" / "b");
    EXPECT_EQ(FindConfig(root / "a" / "b"), std::nullopt);
    std::ofstream(root / ".arbolet.json") << "{}";
    EXPECT_EQ(FindConfig(root / "a" / "b"), root / ".arbolet.json");
    std::ofstream(root / "a" / ".arbolet.json") << "{\"max-nesting\": 3}";
    const auto nearest = FindConfig(root / "a" / "b");
    ASSERT_EQ(nearest, root / "a" / ".arbolet.json");
    EXPECT_EQ(LoadConfig(*nearest, "a/.arbolet.json").maxNesting, 3);
    EXPECT_THROW(LoadConfig(root / "missing.json", "missing.json"), ConfigError);
    fs::remove_all(root);
}

}  // namespace
}  // namespace arbolet::check
