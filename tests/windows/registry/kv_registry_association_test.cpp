// kvRegistry's file associations, checked under both class roots it writes to.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "raw_registry.h"
#include "windows/registry/kv_registry.h"

namespace arbolet::windows {
namespace {

using testing::DeleteTree;
using testing::KeyPresent;
using testing::ReadRaw;

const std::string kClass = "ArboletTest.Document";
const std::string kExtension = "arboletx";

class AssociationTest : public ::testing::Test {
  protected:
    void SetUp() override { RemoveAll(); }
    void TearDown() override { RemoveAll(); }

    static void RemoveAll() {
        for (const std::string& key :
             {"." + kExtension, kClass, std::string("ArboletTest.Missing")}) {
            DeleteTree(HKEY_CLASSES_ROOT, key);
            DeleteTree(HKEY_LOCAL_MACHINE, "SOFTWARE\\Classes\\" + key);
        }
    }

    // The key's default text, which must be the same under both roots; nullopt when missing.
    static std::optional<std::string> ClassText(const std::string& path) {
        const auto root = ReadRaw(HKEY_CLASSES_ROOT, path, "");
        const auto machine = ReadRaw(HKEY_LOCAL_MACHINE, "SOFTWARE\\Classes\\" + path, "");
        EXPECT_EQ(root, machine) << path;
        if (!root) return std::nullopt;
        EXPECT_EQ(root->type, static_cast<DWORD>(REG_SZ)) << path;
        return root->data.substr(0, root->data.find('\0'));
    }

    void Associate(const std::string& exePath, const std::string& openText, bool print,
                   bool makeNew, bool install, std::int32_t icon) {
        registry_.CreateEXEAssociation(exePath, kClass, "Arbolet test document", kExtension,
                                       openText, print, "", makeNew, "", install, "", icon);
    }

    kvRegistry registry_;
};

TEST_F(AssociationTest, WritesClassVerbsAndIconUnderBothRoots) {
    Associate("  C:\\Tools\\viewer.exe ", "View", true, false, true, 2);
    const std::string path = "\"C:\\Tools\\viewer.exe\"";
    EXPECT_EQ(ClassText("." + kExtension), kClass);
    EXPECT_EQ(ClassText(kClass), "Arbolet test document");
    EXPECT_EQ(ClassText(kClass + "\\shell\\open"), "&Open") << "a given open text is replaced";
    EXPECT_EQ(ClassText(kClass + "\\shell\\open\\command"), path + " \"%1\"");
    EXPECT_EQ(ClassText(kClass + "\\shell\\print"), "&Print");
    EXPECT_EQ(ClassText(kClass + "\\shell\\print\\command"), path + " /p \"%1\"");
    EXPECT_EQ(ClassText(kClass + "\\shell\\add"), "&Install " + kExtension);
    EXPECT_EQ(ClassText(kClass + "\\shell\\add\\command"), path + " /a \"%1\"");
    EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, kClass + "\\shell\\new"));
    EXPECT_EQ(ClassText(kClass + "\\DefaultIcon"), path + ",2");

    // The last write leaves its selection behind.
    EXPECT_EQ(registry_.ClassKey(), hive::kLocalMachine);
    EXPECT_EQ(registry_.SectionKey(), kClass + "\\DefaultIcon");
    EXPECT_EQ(registry_.ValueType(), REG_SZ);
}

TEST_F(AssociationTest, EmptyOpenTextStaysEmptyAndIconIsOptional) {
    Associate("\"C:\\My Tools\\viewer.exe\"", "", false, true, false, -1);
    EXPECT_EQ(ClassText(kClass + "\\shell\\open"), "");
    EXPECT_EQ(ClassText(kClass + "\\shell\\new"), "&New");
    EXPECT_EQ(ClassText(kClass + "\\shell\\new\\command"),
              "\"C:\\My Tools\\viewer.exe\" /n \"%1\"");
    EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, kClass + "\\shell\\print"));
    EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, kClass + "\\DefaultIcon"));
}

TEST_F(AssociationTest, AdditionalVerbsLookForTheClassUnderTheCurrentHive) {
    Associate("viewer.exe", "View", false, false, false, -1);
    const std::vector<RegValue> edit{"edit", "&Edit", "notepad.exe \"%1\""};

    // Straight after the association ClassKey is HKEY_LOCAL_MACHINE, where no class lives at
    // the top: nothing is written and nothing is reported.
    registry_.CreateAdditionalEXEAssociations(kClass, edit);
    EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, kClass + "\\shell\\edit"));

    registry_.ClassKey(hive::kClassesRoot);
    registry_.CreateAdditionalEXEAssociations(kClass, edit);
    EXPECT_EQ(ClassText(kClass + "\\shell\\edit"), "&Edit");
    EXPECT_EQ(ClassText(kClass + "\\shell\\edit\\command"), "notepad.exe \"%1\"");

    registry_.ClassKey(hive::kClassesRoot);
    registry_.CreateAdditionalEXEAssociations(kClass, {"play", "&Play"});
    registry_.CreateAdditionalEXEAssociations(kClass, {});
    EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, kClass + "\\shell\\play"));

    registry_.ClassKey(hive::kClassesRoot);
    registry_.CreateAdditionalEXEAssociations("ArboletTest.Missing", edit);
    EXPECT_FALSE(KeyPresent(HKEY_CLASSES_ROOT, "ArboletTest.Missing"));
}

TEST_F(AssociationTest, AdditionalVerbsTakeAnyValueAsText) {
    Associate("viewer.exe", "", false, false, false, -1);
    registry_.ClassKey(hive::kClassesRoot);
    registry_.CreateAdditionalEXEAssociations(kClass, {std::int16_t{7}, std::int32_t{8}, "run %1"});
    EXPECT_EQ(ClassText(kClass + "\\shell\\7"), "8");
    EXPECT_EQ(ClassText(kClass + "\\shell\\7\\command"), "run %1");
}

}  // namespace
}  // namespace arbolet::windows
