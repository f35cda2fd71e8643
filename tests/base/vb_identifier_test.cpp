// The name rule components and projects share: identifiers of at most 40 characters that are
// not reserved words, each refusal with its reason.
#include "base/vb_identifier.h"

#include <gtest/gtest.h>

namespace arbolet {
namespace {

TEST(VbIdentifier, ReservedWordsInAnyCaseAndOnlyThem) {
    for (const char* word : {"If", "sub", "DIM", "String", "Then", "wend", "Me", "Nothing", "ReDim",
                             "WithEvents", "Xor", "abs", "Rem"}) {
        EXPECT_TRUE(IsVbReservedWord(word)) << word;
        ASSERT_TRUE(InvalidVbNameReason(word).has_value()) << word;
        EXPECT_EQ(*InvalidVbNameReason(word),
                  "'" + std::string(word) + "' is a reserved word of Visual Basic");
    }
    // Names that merely start or end like a keyword, and common names that are no keywords.
    for (const char* name : {"Iff", "Subs", "Dimension", "StringList", "Form1", "Module1",
                             "Project", "Name", "Caption", "Value", "Text", "Form", "Class"}) {
        EXPECT_FALSE(IsVbReservedWord(name)) << name;
        EXPECT_FALSE(InvalidVbNameReason(name).has_value()) << name;
    }
}

TEST(VbIdentifier, RefusesWhatIsNoIdentifierAndSaysWhy) {
    EXPECT_EQ(InvalidVbNameReason(""), "a name cannot be empty");
    EXPECT_EQ(InvalidVbNameReason("1bad"), "'1bad' does not begin with a letter");
    EXPECT_EQ(InvalidVbNameReason("_x"), "'_x' does not begin with a letter");
    EXPECT_EQ(InvalidVbNameReason("bad name"),
              "'bad name' holds a blank; a name holds only letters, digits and underscores");
    EXPECT_EQ(InvalidVbNameReason("a-b"),
              "'a-b' holds the character '-'; a name holds only letters, digits and underscores");
    // A character beyond ASCII is named whole, not as one byte of it.
    EXPECT_EQ(InvalidVbNameReason("caf\xC3\xA9"),
              "'caf\xC3\xA9' holds the character '\xC3\xA9'; a name holds only letters, digits "
              "and underscores");
    EXPECT_EQ(InvalidVbNameReason("a\tb"),
              "'a\tb' holds a control character; a name holds only letters, digits and "
              "underscores");
}

TEST(VbIdentifier, FortyCharactersAtMost) {
    const std::string forty = "A" + std::string(39, 'b');
    EXPECT_FALSE(InvalidVbNameReason(forty).has_value());
    EXPECT_FALSE(InvalidVbNameReason("a1_B2").has_value());
    EXPECT_EQ(InvalidVbNameReason(forty + "c"),
              "'" + forty + "c' is 41 characters long; a name has at most 40");
}

}  // namespace
}  // namespace arbolet
