// The display option store against the real registry (Wine's in CI). Each test starts without
// the options key and removes it again; run it only where the options may be lost, as in the
// throwaway Wine prefix of the test run.
#include "windows/options/settings.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "analysis/code_tree.h"
#include "base/vb_error.h"
#include "raw_registry.h"
#include "windows/options/registry_display_options.h"

namespace arbolet::windows::options {
namespace {

using testing::DeleteTree;
using testing::DwordBytes;
using testing::RawValue;
using testing::ReadRaw;
using testing::WriteRaw;

struct Option {
    const char* name;
    bool (*read)();
    void (*write)(bool);
};

const Option kDisplayOptions[] = {
    {"SortByName", SortByName, SortByName},
    {"ShowConstants", ShowConstants, ShowConstants},
    {"ShowSectionEnd", ShowSectionEnd, ShowSectionEnd},
    {"ShowVariables", ShowVariables, ShowVariables},
    {"ShowTypes", ShowTypes, ShowTypes},
    {"ShowEnums", ShowEnums, ShowEnums},
    {"ShowCompiler", ShowCompiler, ShowCompiler},
};
const Option kDisplayForm{"DisplayForm", DisplayForm, DisplayForm};

class OptionStoreTest : public ::testing::Test {
  protected:
    void SetUp() override { DeleteTree(HKEY_CLASSES_ROOT, OptionsKeyPath()); }
    void TearDown() override { DeleteTree(HKEY_CLASSES_ROOT, OptionsKeyPath()); }

    static std::optional<RawValue> Stored(const char* name) {
        return ReadRaw(HKEY_CLASSES_ROOT, OptionsKeyPath(), name);
    }
    static RawValue Dword(DWORD number) { return RawValue{REG_DWORD, DwordBytes(number)}; }
    static void Plant(const char* name, DWORD number) {
        WriteRaw(HKEY_CLASSES_ROOT, OptionsKeyPath(), name, REG_DWORD, DwordBytes(number));
    }
};

TEST_F(OptionStoreTest, FirstReadOfAMissingDisplayOptionAnswersFalseAndLeavesOne) {
    for (const Option& option : kDisplayOptions) {
        EXPECT_FALSE(option.read()) << option.name;
        EXPECT_EQ(Stored(option.name), Dword(1)) << option.name;
        EXPECT_TRUE(option.read()) << option.name;
        EXPECT_EQ(Stored(option.name), Dword(1)) << option.name << ": reading changes nothing";
    }
}

TEST_F(OptionStoreTest, MissingDisplayFormAnswersTrueAndLeavesMinusOne) {
    EXPECT_TRUE(DisplayForm());
    EXPECT_EQ(Stored("DisplayForm"), Dword(0xFFFFFFFF));
    EXPECT_TRUE(DisplayForm());
}

TEST_F(OptionStoreTest, EachWriterStoresMinusOneOrZeroUnderItsOwnName) {
    std::vector<Option> all(std::begin(kDisplayOptions), std::end(kDisplayOptions));
    all.push_back(kDisplayForm);
    for (const Option& option : all) {
        option.write(true);
        EXPECT_EQ(Stored(option.name), Dword(0xFFFFFFFF)) << option.name;
        EXPECT_TRUE(option.read()) << option.name;
        option.write(false);
        EXPECT_EQ(Stored(option.name), Dword(0)) << option.name;
        EXPECT_FALSE(option.read()) << option.name;
        EXPECT_EQ(Stored(option.name), Dword(0)) << option.name;
    }
}

TEST_F(OptionStoreTest, AnyNonZeroNumberReadsTrue) {
    Plant("ShowEnums", 7);
    Plant("DisplayForm", 0x80000000);
    EXPECT_TRUE(ShowEnums());
    EXPECT_TRUE(DisplayForm());
}

TEST_F(OptionStoreTest, AValueThatIsNoNumberRaisesTypeMismatch) {
    WriteRaw(HKEY_CLASSES_ROOT, OptionsKeyPath(), "ShowTypes", REG_SZ, std::string("yes\0", 4));
    try {
        ShowTypes();
        FAIL() << "nothing raised";
    } catch (const VbError& error) {
        EXPECT_EQ(error.Number, 13);
    }
    WriteRaw(HKEY_CLASSES_ROOT, OptionsKeyPath(), "ShowTypes", REG_SZ, std::string("0\0", 2));
    EXPECT_FALSE(ShowTypes());
}

TEST_F(OptionStoreTest, CodeViewSourceReadsEachOptionIntoItsOwnField) {
    RegistryDisplayOptions source;
    EXPECT_EQ(source.ReadDisplayOptions(),
              (analysis::DisplayOptions{false, false, false, false, false, false, false}));
    EXPECT_EQ(source.ReadDisplayOptions(),
              (analysis::DisplayOptions{true, true, true, true, true, true, true}));

    const char* names[] = {"ShowVariables", "ShowConstants",  "ShowCompiler", "ShowEnums",
                           "ShowTypes",     "ShowSectionEnd", "SortByName"};
    for (int on = 0; on < 7; ++on) {
        for (int i = 0; i < 7; ++i)
            Plant(names[i], i == on ? 1 : 0);
        const analysis::DisplayOptions read = source.ReadDisplayOptions();
        const bool fields[] = {read.ShowVariables, read.ShowConstants, read.ShowCompiler,
                               read.ShowEnums,     read.ShowTypes,     read.ShowSectionEnd,
                               read.SortByName};
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(fields[i], i == on) << names[i] << " with " << names[on];
    }
}

// All node texts of the code tree built with the options read from the registry.
std::string CodeTreeText(std::string_view code) {
    RegistryDisplayOptions source;
    const analysis::CodeTree tree = analysis::BuildCodeTree(code, source.ReadDisplayOptions());
    std::string text;
    analysis::WalkTree(
        *tree.root, [&](const analysis::clsLine& line, int) { text += line.LineContent + "\n"; });
    return text;
}

TEST_F(OptionStoreTest, CodeTreeFollowsTheStoredOptions) {
    const std::string_view code =
        "Const Limit = 10\r\nPublic Sub Run()\r\nEnd Sub\r\nType Point\r\n  X As Long\r\nEnd "
        "Type\r\n";
    for (const Option& option : kDisplayOptions)
        option.write(true);
    const std::string shown = CodeTreeText(code);
    EXPECT_NE(shown.find("Limit"), std::string::npos) << shown;
    EXPECT_NE(shown.find("Point"), std::string::npos) << shown;

    ShowConstants(false);
    ShowTypes(false);
    const std::string hidden = CodeTreeText(code);
    EXPECT_EQ(hidden.find("Limit"), std::string::npos) << hidden;
    EXPECT_EQ(hidden.find("Point"), std::string::npos) << hidden;
    EXPECT_NE(hidden.find("Run"), std::string::npos) << hidden;
}

}  // namespace
}  // namespace arbolet::windows::options
