// The manual page against the tool itself: every command, sub-command and option that --help
// lists is described in docs/arbolet.1, and --version prints the build's version.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "arbolet/version.h"
#include "cli/cli_runner.h"

namespace arbolet::cli {
namespace {

using testing::Arbolet;

// The manual page as a reader sees it: roff's escaped hyphens are plain hyphens.
std::string ManualText() {
    std::ifstream in(std::string(ARBOLET_SOURCE_DIR) + "/docs/arbolet.1", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return std::regex_replace(text.str(), std::regex(R"(\\-)"), "-");
}

// The sub-commands listed in a help text: the first word of each line of its
// "SUBCOMMANDS:" section.
std::set<std::string> SubcommandsIn(const std::string& help) {
    std::set<std::string> names;
    std::istringstream lines(help);
    bool inSection = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("SUBCOMMANDS:", 0) == 0 || line.rfind("Subcommands:", 0) == 0) {
            inSection = true;
        } else if (inSection && !line.empty() && line[0] == ' ') {
            std::smatch word;
            if (std::regex_search(line, word, std::regex(R"(^\s+([a-z][a-z-]*))")))
                names.insert(word[1]);
        } else if (!line.empty()) {
            inSection = false;
        }
    }
    return names;
}

std::set<std::string> OptionsIn(const std::string& help) {
    std::set<std::string> options;
    const std::regex option(R"(--[a-z][a-z-]*)");
    for (auto it = std::sregex_iterator(help.begin(), help.end(), option);
         it != std::sregex_iterator(); ++it)
        options.insert(it->str());
    return options;
}

bool Describes(const std::string& manual, const std::string& name) {
    const std::regex word("(^|[^a-z-])" + std::regex_replace(name, std::regex("-"), "\\-") +
                          "($|[^a-z-])");
    return std::regex_search(manual, word);
}

TEST(ManualPage, DescribesEveryCommandAndOptionOfTheHelp) {
    const std::string manual = ManualText();
    ASSERT_FALSE(manual.empty()) << "docs/arbolet.1 is missing";
    const auto top = Arbolet({"--help"});
    ASSERT_EQ(top.status, 0);
    const std::set<std::string> commands = SubcommandsIn(top.out);
    ASSERT_GE(commands.size(), 6u) << top.out;  // the parser of the help text still works
    std::set<std::string> options = OptionsIn(top.out);
    for (const std::string& command : commands) {
        EXPECT_TRUE(Describes(manual, command)) << "command " << command;
        const auto help = Arbolet({command, "--help"});
        ASSERT_EQ(help.status, 0) << command;
        options.merge(OptionsIn(help.out));
        for (const std::string& nested : SubcommandsIn(help.out))
            EXPECT_TRUE(Describes(manual, nested)) << "command " << command << ' ' << nested;
    }
    EXPECT_TRUE(options.count("--watch") == 1 && options.count("--codepage") == 1);
    for (const std::string& option : options)
        EXPECT_TRUE(Describes(manual, option)) << "option " << option;
}

TEST(ManualPage, VersionIsTheBuildsVersion) {
    const auto run = Arbolet({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, std::string("arbolet ") + kVersionText + "\n");
    EXPECT_TRUE(std::regex_match(std::string(kVersionText), std::regex(R"(\d+\.\d+\.\d+)")));
}

}  // namespace
}  // namespace arbolet::cli
