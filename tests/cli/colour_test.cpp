// Colour choice: what the environment suggests, what --color overrides, and how many colours
// the escape sequences use.
#include <gtest/gtest.h>

#include "cli/cli_runner.h"
#include "cli/terminal_style.h"
#include "disk/temp_folder.h"

namespace arbolet::cli {
namespace {

using testing::Arbolet;

TEST(Colour, TheEnvironmentDecidesByDefault) {
    EXPECT_TRUE(ColourByDefault(true, "xterm-256color", nullptr));
    EXPECT_TRUE(ColourByDefault(true, "xterm", ""));
    EXPECT_FALSE(ColourByDefault(true, "dumb", nullptr));
    EXPECT_FALSE(ColourByDefault(true, "xterm", "1"));
    EXPECT_FALSE(ColourByDefault(false, "xterm", nullptr));

    EXPECT_EQ(DepthFromEnvironment("xterm", "truecolor"), ColourDepth::TrueColour);
    EXPECT_EQ(DepthFromEnvironment("screen-256color", nullptr), ColourDepth::Palette256);
    EXPECT_EQ(DepthFromEnvironment("dumb", nullptr), ColourDepth::Basic);
}

TEST(Colour, FewerColoursPickTheNearest) {
    const std::int32_t blue = 0xFF0000;  // Windows order: blue in the high byte
    const std::int32_t red = 0x0000FF;
    EXPECT_EQ(AnsiForeground(blue), "\x1b[38;2;0;0;255m");
    EXPECT_EQ(AnsiForeground(blue, ColourDepth::Palette256), "\x1b[38;5;21m");
    EXPECT_EQ(AnsiForeground(red, ColourDepth::Basic), "\x1b[91m");
    EXPECT_EQ(AnsiForeground(0xC0C0C0, ColourDepth::Basic), "\x1b[37m");
    EXPECT_EQ(AnsiForeground(0, ColourDepth::Basic), "");
}

TEST(Colour, ColorOptionOverridesTheTerminal) {
    disk::testing::TempFolder folder;
    const std::string path = folder.Write("a.bas", "Sub A()\r\nEnd Sub\r\n").string();
    EXPECT_NE(Arbolet({"--color", "always", "code", path}, false).out.find("\x1b["),
              std::string::npos);
    EXPECT_EQ(Arbolet({"--color", "never", "code", path}, true).out.find("\x1b["),
              std::string::npos);
    EXPECT_NE(Arbolet({"code", "--color", "auto", path}, true).out.find("\x1b["),
              std::string::npos);
    EXPECT_EQ(Arbolet({"--color", "sometimes", "code", path}).status, 2);
}

}  // namespace
}  // namespace arbolet::cli
