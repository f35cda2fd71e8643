// kvRegistry against the real registry (Wine's in CI), in a key of its own under
// HKEY_CURRENT_USER that every test creates fresh and removes again.
#include "windows/registry/kv_registry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "raw_registry.h"

namespace arbolet::windows {
namespace {

using testing::CreateSubKey;
using testing::DeleteTree;
using testing::DwordBytes;
using testing::KeyPresent;
using testing::RawValue;
using testing::ReadRaw;
using testing::WriteRaw;

const std::string kSource = "arbolet_win_registry_tests.cRegistry";
const std::string kCurrentUser = "-2147483647";

}  // namespace

// Readable values in failure messages.
void PrintTo(const RegValue& value, std::ostream* out) {
    if (value.IsEmpty()) {
        *out << "Empty";
    } else if (value.IsByteArray()) {
        *out << "bytes from " << value.Bytes()->LBound() << ": "
             << ::testing::PrintToString(std::string(value.Bytes()->Elements().begin(),
                                                     value.Bytes()->Elements().end()));
    } else if (value.IsText()) {
        *out << "text " << ::testing::PrintToString(*value.Text());
    } else {
        *out << (value.IsInteger() ? "Integer " : "Long ") << value.ToText();
    }
}

namespace {

ByteArray Bytes(std::int32_t lowerBound, std::string_view data) {
    return ByteArray(lowerBound, std::vector<std::uint8_t>(data.begin(), data.end()));
}

std::string Text(const ByteArray& bytes) {
    return std::string(bytes.Elements().begin(), bytes.Elements().end());
}

// Runs an operation that must raise, and hands back what it raised.
template <typename Operation>
VbError Raised(Operation&& operation) {
    try {
        operation();
    } catch (const VbError& error) {
        return error;
    }
    ADD_FAILURE() << "nothing raised";
    return VbError(0, "", "");
}

std::vector<std::string> Sorted(const VbArray<std::string>& names) {
    std::vector<std::string> sorted = names.Elements();
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

class KvRegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        section_ = std::string("Software\\ArboletTests\\") + info->name();
        DeleteTree(HKEY_CURRENT_USER, section_);
        registry_.ClassKey(hive::kCurrentUser);
        registry_.SectionKey(section_);
        registry_.ValueKey("Item");
    }
    void TearDown() override { DeleteTree(HKEY_CURRENT_USER, section_); }

    std::optional<RawValue> Stored(const std::string& name = "Item") const {
        return ReadRaw(HKEY_CURRENT_USER, section_, name);
    }
    void Plant(DWORD type, std::string_view data, const std::string& name = "Item") const {
        WriteRaw(HKEY_CURRENT_USER, section_, name, type, data);
    }
    void Write(std::int32_t type, const RegValue& value) {
        registry_.ValueType(type);
        registry_.Value(value);
    }

    std::string section_;
    kvRegistry registry_;
};

TEST(KvRegistryFresh, WithoutAHiveReadsFailQuietlyAndChangesRaise) {
    kvRegistry registry;
    EXPECT_EQ(registry.ClassKey(), 0);
    EXPECT_EQ(registry.ValueType(), 0);
    registry.SectionKey("Software\\ArboletTests\\NoHive");
    registry.ValueKey("Item");
    registry.Default("fallback");

    EXPECT_FALSE(registry.KeyExists());
    EXPECT_FALSE(registry.ValueExists());
    EXPECT_EQ(registry.Value(), RegValue("fallback"));
    VbArray<std::string> names{1, {"stale"}};
    std::int32_t count = -1;
    EXPECT_TRUE(registry.EnumerateValues(names, count));
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(names.IsEmpty());
    EXPECT_TRUE(registry.EnumerateSections(names, count));
    EXPECT_EQ(count, 0);

    const VbError created = Raised([&] { registry.CreateKey(); });
    EXPECT_EQ(created.Number, 26001);
    EXPECT_EQ(created.Source, kSource);
    EXPECT_EQ(created.Description,
              "Failed to create registry Key: 'Software\\ArboletTests\\NoHive");
    EXPECT_EQ(Raised([&] { registry.DeleteKey(); }).Description,
              "Failed to delete registry Key: '0',Section: 'Software\\ArboletTests\\NoHive");
    EXPECT_EQ(Raised([&] { registry.DeleteValue(); }).Description,
              "Failed to open key '0',Section: 'Software\\ArboletTests\\NoHive' for delete access");
    registry.ValueType(REG_SZ);
    const VbError written = Raised([&] { registry.Value("x"); });
    EXPECT_EQ(written.Number, 26001);
    EXPECT_EQ(written.Description,
              "Failed to set registry value Key: '0',Section: 'Software\\ArboletTests\\NoHive',"
              "Key: 'Item' to value: ''");
    // The selection survives the failures.
    EXPECT_EQ(registry.SectionKey(), "Software\\ArboletTests\\NoHive");
    EXPECT_EQ(registry.ValueKey(), "Item");
    EXPECT_EQ(registry.ValueType(), REG_SZ);
}

TEST_F(KvRegistryTest, FailedWriteReportsTheLastValueWrittenNotTheNewOne) {
    Write(REG_SZ, "first");
    Write(REG_MULTI_SZ, "second");  // not written, but still remembered as written
    registry_.ClassKey(0);
    const VbError error = Raised([&] { registry_.Value("third"); });
    EXPECT_EQ(error.Description, "Failed to set registry value Key: '0',Section: '" + section_ +
                                     "',Key: 'Item' to value: 'second'");
}

TEST_F(KvRegistryTest, MissingKeyOrValueReadsAsDefaultAndKeepsValueType) {
    registry_.Default(std::int32_t{42});
    registry_.ValueType(REG_BINARY);
    EXPECT_FALSE(registry_.ValueExists());
    EXPECT_EQ(registry_.Value(), RegValue(std::int32_t{42}));
    Plant(REG_DWORD, DwordBytes(7), "Other");
    EXPECT_FALSE(registry_.ValueExists());
    EXPECT_EQ(registry_.Value(), RegValue(std::int32_t{42}));
    EXPECT_EQ(registry_.ValueType(), REG_BINARY);

    registry_.ValueKey("Other");
    EXPECT_TRUE(registry_.ValueExists());
    EXPECT_EQ(registry_.Value(), RegValue(std::int32_t{7}));
    EXPECT_EQ(registry_.ValueType(), REG_DWORD);
}

// Options are read inside the IDE's process for as long as it runs: no read, found or not, and
// no delete may leave a key open. A closed handle's slot is used again, so a key opened after
// many reads gets the same handle as one opened before them; leaked ones would push it on.
TEST_F(KvRegistryTest, ReadsAndDeletesCloseEveryKeyTheyOpen) {
    const auto nextHandle = [&] {
        HKEY key = nullptr;
        RegOpenKeyExA(HKEY_CURRENT_USER, section_.c_str(), 0, KEY_QUERY_VALUE, &key);
        RegCloseKey(key);
        return reinterpret_cast<std::intptr_t>(key);
    };
    Plant(REG_DWORD, DwordBytes(7));
    const std::intptr_t before = nextHandle();
    ASSERT_NE(before, 0);
    for (int i = 0; i < 100; ++i) {
        registry_.ValueExists();
        registry_.Value();
        registry_.ValueKey("Missing");
        registry_.ValueExists();
        registry_.Value();
        registry_.ValueKey("Item");
        registry_.DeleteValue();
        Plant(REG_DWORD, DwordBytes(7));
    }
    EXPECT_LT(std::abs(nextHandle() - before), 64) << "handles were left open";
}

TEST_F(KvRegistryTest, TextsAreStoredWithTerminatorAndReadWithoutTheLastByte) {
    Write(REG_SZ, "hello");
    EXPECT_EQ(Stored(), (RawValue{REG_SZ, std::string("hello\0", 6)}));
    registry_.ValueType(0);
    EXPECT_EQ(registry_.Value(), RegValue("hello"));
    EXPECT_EQ(registry_.ValueType(), REG_SZ);

    // Only the last byte goes: of two terminators one stays in the text.
    Plant(REG_SZ, std::string("ab\0\0", 4));
    EXPECT_EQ(registry_.Value(), RegValue(std::string("ab\0", 3)));
    Plant(REG_MULTI_SZ, std::string("one\0two\0\0", 9));
    EXPECT_EQ(registry_.Value(), RegValue(std::string("one\0two\0", 8)));
    EXPECT_EQ(registry_.ValueType(), REG_MULTI_SZ);

    Write(REG_SZ, std::int16_t{-5});
    EXPECT_EQ(Stored(), (RawValue{REG_SZ, std::string("-5\0", 3)}));
    Write(REG_SZ, "");
    EXPECT_EQ(registry_.Value(), RegValue(""));
}

TEST_F(KvRegistryTest, EmptyStoredTextRaisesInvalidProcedureCall) {
    Plant(REG_SZ, "");
    const VbError error = Raised([&] { registry_.Value(); });
    EXPECT_EQ(error.Number, 5);
    EXPECT_EQ(error.Description, "Invalid procedure call or argument");
}

TEST_F(KvRegistryTest, TextsCrossTheApiInTheAnsiCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "expects the Western code page 1252";
    Write(REG_SZ,
          "Gr\xC3\xBC\xC3\x9F"
          "e");  // "Grüße" in UTF-8
    EXPECT_EQ(Stored(), (RawValue{REG_SZ, std::string("Gr\xFC\xDF"
                                                      "e\0",
                                                      6)}));
    EXPECT_EQ(registry_.Value(), RegValue("Gr\xC3\xBC\xC3\x9F"
                                          "e"));
    registry_.ValueKey("\xC3\xA9t\xC3\xA9");  // "été" as a value name
    Write(REG_SZ, "x");
    EXPECT_TRUE(Stored("\xE9t\xE9").has_value());
}

TEST_F(KvRegistryTest, PercentSignsChooseTheStoredTextType) {
    const struct {
        std::int32_t valueType;
        const char* text;
        DWORD stored;
    } cases[] = {
        {REG_EXPAND_SZ, "50%", REG_SZ},   {REG_SZ, "%PATH%", REG_EXPAND_SZ},
        {REG_EXPAND_SZ, "100%%", REG_SZ}, {REG_SZ, "a%b%", REG_EXPAND_SZ},
        {REG_SZ, "%%x", REG_SZ},          {REG_SZ, "%%%", REG_EXPAND_SZ},
    };
    for (const auto& c : cases) {
        Write(c.valueType, c.text);
        EXPECT_EQ(Stored()->type, c.stored) << c.text;
    }
}

TEST_F(KvRegistryTest, ExpandableTextsReadExpanded) {
    SetEnvironmentVariableA("ARBOLET_TEST_DIR", "C:\\Arbolet");
    Write(REG_SZ, "%ARBOLET_TEST_DIR%\\bin");
    registry_.ValueType(REG_SZ);
    EXPECT_EQ(registry_.Value(), RegValue("C:\\Arbolet\\bin"));
    EXPECT_EQ(registry_.ValueType(), REG_EXPAND_SZ);
    Plant(REG_EXPAND_SZ, std::string("%ARBOLET_NOT_SET%;%ARBOLET_TEST_DIR%\0", 37));
    EXPECT_EQ(registry_.Value(), RegValue("%ARBOLET_NOT_SET%;C:\\Arbolet"));
}

TEST_F(KvRegistryTest, DwordsAreWrittenOnlyFromIntegersAndAlwaysLittleEndian) {
    Write(REG_DWORD, std::int32_t{0x12345678});
    EXPECT_EQ(Stored(), (RawValue{REG_DWORD, "\x78\x56\x34\x12"}));
    EXPECT_EQ(registry_.Value(), RegValue(std::int32_t{0x12345678}));
    Write(REG_DWORD, std::int16_t{-1});
    EXPECT_EQ(Stored(), (RawValue{REG_DWORD, "\xFF\xFF\xFF\xFF"}));
    Write(REG_DWORD_BIG_ENDIAN, std::int32_t{0x01020304});
    EXPECT_EQ(Stored(), (RawValue{REG_DWORD, "\x04\x03\x02\x01"}));

    registry_.ValueKey("Skipped");
    Write(REG_DWORD, "12");
    Write(REG_DWORD, RegValue());
    EXPECT_FALSE(Stored("Skipped").has_value());
}

TEST_F(KvRegistryTest, BigEndianDwordsAreReadSwapped) {
    Plant(REG_DWORD_BIG_ENDIAN, "\x12\x34\x56\x78");
    EXPECT_EQ(registry_.Value(), RegValue(std::int32_t{0x12345678}));
    EXPECT_EQ(registry_.ValueType(), REG_DWORD_BIG_ENDIAN);
}

TEST_F(KvRegistryTest, BinaryWritesTwoBytesFewerThanTheArrayAndReadsOneMore) {
    Write(REG_BINARY, Bytes(0, "0123456789"));
    EXPECT_EQ(Stored(), (RawValue{REG_BINARY, "01234567"}));

    const RegValue read = registry_.Value();
    ASSERT_TRUE(read.IsByteArray());
    EXPECT_EQ(read.Bytes()->LBound(), 0);
    EXPECT_EQ(read.Bytes()->UBound(), 8);
    EXPECT_EQ(Text(*read.Bytes()), std::string("01234567\0", 9));

    // Every round trip through Value loses one byte.
    registry_.Value(read);
    EXPECT_EQ(Stored()->data, "0123456");
    registry_.Value(registry_.Value());
    EXPECT_EQ(Stored()->data, "012345");
}

TEST_F(KvRegistryTest, OtherStoredTypesReadAsBytes) {
    Plant(REG_NONE, "ab");
    EXPECT_EQ(registry_.Value(), RegValue(Bytes(0, std::string("ab\0", 3))));
    EXPECT_EQ(registry_.ValueType(), REG_NONE);
    Plant(REG_QWORD, std::string(8, '\x01'));
    EXPECT_EQ(registry_.Value().Bytes()->Count(), 9);
    Plant(REG_BINARY, "");
    EXPECT_EQ(registry_.Value(), RegValue(Bytes(0, std::string(1, '\0'))));
}

TEST_F(KvRegistryTest, BadBinaryArgumentsRaiseOrWriteNothing) {
    registry_.ValueType(REG_BINARY);
    const VbError notBytes = Raised([&] { registry_.Value("text"); });
    EXPECT_EQ(notBytes.Number, 26001);
    EXPECT_EQ(notBytes.Source, "arbolet_win_registry_tests");
    EXPECT_EQ(notBytes.Description, "Application-defined or object-defined error");
    EXPECT_EQ(Raised([&] { registry_.Value(ByteArray()); }).Number, 9);
    EXPECT_EQ(Raised([&] { registry_.Value(Bytes(1, "abcd")); }).Number, 9);

    registry_.Value(Bytes(0, "a"));  // a byte count of -1
    EXPECT_FALSE(Stored().has_value());
    registry_.Value(Bytes(-3, "abcd"));  // only 0 to 0 lies at and after element 0
    EXPECT_EQ(Stored(), (RawValue{REG_BINARY, "d"}));
}

TEST_F(KvRegistryTest, UnwritableValueTypesAreSilentNoOps) {
    for (std::int32_t type : {0, REG_MULTI_SZ, REG_LINK, 11}) {
        Write(type, "text");
        EXPECT_FALSE(Stored().has_value()) << type;
    }
    EXPECT_TRUE(registry_.KeyExists()) << "the key is still created";
}

TEST_F(KvRegistryTest, KeysAreCreatedAndDeletedOneLevelAtATime) {
    EXPECT_FALSE(registry_.KeyExists());
    registry_.SectionKey(section_ + "\\Child\\Grandchild");
    EXPECT_TRUE(registry_.CreateKey());
    EXPECT_TRUE(registry_.CreateKey()) << "an existing key opens";
    EXPECT_TRUE(KeyPresent(HKEY_CURRENT_USER, section_ + "\\Child\\Grandchild"));

    registry_.SectionKey(section_ + "\\Child");
    const VbError refused = Raised([&] { registry_.DeleteKey(); });
    EXPECT_EQ(refused.Number, 26001);
    EXPECT_EQ(refused.Description, "Failed to delete registry Key: '" + kCurrentUser +
                                       "',Section: '" + section_ + "\\Child");
    registry_.SectionKey(section_ + "\\Child\\Grandchild");
    EXPECT_TRUE(registry_.DeleteKey());
    EXPECT_FALSE(registry_.KeyExists());
}

TEST_F(KvRegistryTest, DeleteValueRemovesOneValueAndRaisesWhenThereIsNone) {
    Plant(REG_SZ, std::string("x\0", 2));
    Plant(REG_SZ, std::string("y\0", 2), "Kept");
    EXPECT_TRUE(registry_.DeleteValue());
    EXPECT_FALSE(Stored().has_value());
    EXPECT_TRUE(Stored("Kept").has_value());

    const VbError missing = Raised([&] { registry_.DeleteValue(); });
    EXPECT_EQ(missing.Number, 26001);
    EXPECT_EQ(missing.Description, "Failed to delete registry Key: '" + kCurrentUser +
                                       "',Section: '" + section_ + "',Key: 'Item");
    registry_.SectionKey(section_ + "\\Missing");
    EXPECT_EQ(Raised([&] { registry_.DeleteValue(); }).Description,
              "Failed to open key '" + kCurrentUser + "',Section: '" + section_ +
                  "\\Missing' for delete access");
}

TEST_F(KvRegistryTest, EnumerateValuesListsNamesFromIndexOne) {
    VbArray<std::string> names;
    std::int32_t count = -1;
    EXPECT_TRUE(registry_.EnumerateValues(names, count)) << "a missing key still succeeds";
    EXPECT_EQ(count, 0);

    const std::string longName(200, 'n');
    for (const std::string& name : {std::string("Beta"), std::string("Alpha"), longName}) {
        Plant(REG_DWORD, DwordBytes(1), name);
    }
    EXPECT_TRUE(registry_.EnumerateValues(names, count));
    EXPECT_EQ(count, 3);
    EXPECT_EQ(names.LBound(), 1);
    EXPECT_EQ(names.UBound(), 3);
    EXPECT_EQ(Sorted(names), (std::vector<std::string>{"Alpha", "Beta", longName}));
    EXPECT_EQ(Raised([&] { names(0); }).Number, 9);
}

TEST_F(KvRegistryTest, EnumerateSectionsStopsAtANameThatFillsTheBuffer) {
    registry_.CreateKey();
    const std::string fits(254, 'a');
    const std::string tooLong(255, 'z');
    for (const std::string& name : {std::string("m2"), fits, std::string("m1"), tooLong}) {
        ASSERT_TRUE(CreateSubKey(HKEY_CURRENT_USER, section_, name)) << name.size();
    }

    VbArray<std::string> sections;
    std::int32_t count = 0;
    EXPECT_TRUE(registry_.EnumerateSections(sections, count));
    // Sub-keys come in name order, so the 255-character one ends the listing after the others.
    EXPECT_EQ(count, 3);
    EXPECT_EQ(sections.LBound(), 1);
    EXPECT_EQ(Sorted(sections), (std::vector<std::string>{fits, "m1", "m2"}));
}

}  // namespace
}  // namespace arbolet::windows
