// Extended properties in component files: the VB_Ext_KEY attribute lines and their edits.
#include <gtest/gtest.h>

#include "base/vb_error.h"
#include "disk/component_properties.h"

namespace arbolet::disk {
namespace {

constexpr int kCp1252 = 1252;

TEST(ExtKeyAttribute, ParsesTheLinesVbWritesAndNothingElse) {
    using Pair = std::pair<std::string, std::string>;
    EXPECT_EQ(ParseExtKeyAttribute("Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Data Access\""),
              (Pair{"QX-TypeName", "Data Access"}));
    EXPECT_EQ(ParseExtKeyAttribute("  attribute   vb_ext_key=\"K\",\"\"  "), (Pair{"K", ""}));
    EXPECT_EQ(ParseExtKeyAttribute("Attribute VB_Ext_KEY = \"K\" ,\"say \"\"hi\"\"\""),
              (Pair{"K", "say \"hi\""}));
    for (const char* other :
         {"Attribute VB_Name = \"modA\"", "Attribute VB_Ext_KEYS = \"K\" ,\"V\"",
          "AttributeVB_Ext_KEY = \"K\" ,\"V\"", "Attribute VB_Ext_KEY = \"K\"",
          "Attribute VB_Ext_KEY = \"K\" ,\"V", "Attribute VB_Ext_KEY = \"K\" ,\"V\" x",
          "' Attribute VB_Ext_KEY = \"K\" ,\"V\""}) {
        EXPECT_EQ(ParseExtKeyAttribute(other), std::nullopt) << other;
    }
    EXPECT_EQ(FormatExtKeyAttribute("QX-TypeName", "A \"B\""),
              "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"A \"\"B\"\"\"");
}

struct ComponentCase {
    const char* name;
    std::string before;
    const char* key;
    const char* value;
    std::string after;
};

TEST(ComponentProperties, EditsOnlyTheirOwnLine) {
    const std::string cls =
        "VERSION 1.0 CLASS\r\nBEGIN\r\n  MultiUse = -1  'True\r\nEND\r\n"
        "Attribute VB_Name = \"clsA\"\r\nAttribute VB_Exposed = False\r\n";
    const std::string code = "Option Explicit\r\n' Caf\xE9\r\n";
    const std::string frm =
        "VERSION 5.00\r\nBegin VB.Form frmA \r\n   Caption = \"Caf\xE9\"\r\n   Begin VB.Label lbl "
        "\r\n   End\r\nEnd\r\nAttribute VB_Name = \"frmA\"\r\nAttribute VB_Creatable = False\r\n";
    const ComponentCase cases[] = {
        {"new key after the class attributes", cls + code, "QX-TypeName", "Data",
         cls + "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Data\"\r\n" + code},
        {"new key after the form attributes", frm + code, "QX-TypeName", "Screens",
         frm + "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Screens\"\r\n" + code},
        {"existing key replaced, its spelling kept",
         cls + "Attribute VB_Ext_KEY = \"qx-typename\" ,\"Old\"\r\n" + code, "QX-TypeName", "New",
         cls + "Attribute VB_Ext_KEY = \"qx-typename\" ,\"New\"\r\n" + code},
        {"second key after the first",
         "Attribute VB_Name = \"modA\"\nAttribute VB_Ext_KEY = \"A\" ,\"1\"\nSub X()\nEnd Sub\n",
         "B", "2",
         "Attribute VB_Name = \"modA\"\nAttribute VB_Ext_KEY = \"A\" ,\"1\"\n"
         "Attribute VB_Ext_KEY = \"B\" ,\"2\"\nSub X()\nEnd Sub\n"},
        {"value in the code page with quotes", "Attribute VB_Name = \"modA\"\r\n", "K",
         "\xC3\xA9 \"q\"",
         "Attribute VB_Name = \"modA\"\r\nAttribute VB_Ext_KEY = \"K\" ,\"\xE9 \"\"q\"\"\"\r\n"},
        {"module of attributes only, without final line break", "Attribute VB_Name = \"modA\"", "K",
         "v", "Attribute VB_Name = \"modA\"\r\nAttribute VB_Ext_KEY = \"K\" ,\"v\""},
    };
    for (const auto& c : cases) {
        ComponentText text(c.before, kCp1252);
        const std::string codeBefore = text.File().CodeText();
        EXPECT_TRUE(text.WriteProperty(c.key, c.value)) << c.name;
        EXPECT_EQ(text.Bytes(), c.after) << c.name;
        EXPECT_EQ(text.ReadProperty(c.key), c.value) << c.name;
        EXPECT_EQ(text.File().CodeText(), codeBefore) << c.name << ": the code window changed";
    }
}

// A byte-order mark is no part of the first line: the header and attributes behind it are read,
// edits go behind it, and it stays the file's first bytes.
TEST(ComponentProperties, ReadAndEditBehindAByteOrderMark) {
    const std::string bom = "\xEF\xBB\xBF";
    const std::string form = bom +
                             "VERSION 5.00\r\nBegin VB.Form frmA\r\nEnd\r\n"
                             "Attribute VB_Name = \"frmA\"\r\nDim x\r\n";
    ComponentText text(form, kCp1252);
    EXPECT_EQ(text.File().name, "frmA");
    EXPECT_EQ(text.File().CodeText(), "Dim x");
    EXPECT_EQ(LocateCode(form).firstCodeLine, 4);
    text.Rename("frmB");
    EXPECT_EQ(text.Bytes(), bom +
                                "VERSION 5.00\r\nBegin VB.Form frmB\r\nEnd\r\n"
                                "Attribute VB_Name = \"frmB\"\r\nDim x\r\n");

    ComponentText bare(bom + "Sub Main()\nEnd Sub\n", kCp1252);
    EXPECT_EQ(bare.File().CodeText(), "Sub Main()\r\nEnd Sub");
    ASSERT_TRUE(bare.WriteProperty("QX-TypeName", "Tools"));
    EXPECT_EQ(bare.Bytes(),
              bom + "Attribute VB_Ext_KEY = \"QX-TypeName\" ,\"Tools\"\nSub Main()\nEnd Sub\n");
    EXPECT_EQ(bare.ReadProperty("QX-TypeName"), "Tools");
}

// Only `Begin Project.Control` lines of the designer block that name the control are renamed;
// a file whose block cannot be read is refused rather than left naming the old control.
TEST(ComponentProperties, RenameHostedControlTouchesOnlyTheLinesThatHostIt) {
    const std::string form =
        "VERSION 5.00\r\nBegin VB.Form frmA\r\n   Begin GAUGES.Meter m1\n   End\r\n"
        "   Begin Gauges.MeterX m2\r\n   End\r\n   Begin VB.Meter m3\r\n   End\r\n"
        "   Begin Other.Meter m4\r\n   End\r\n   Begin\tgauges.meter\tm5\r\n   End\r\nEnd\r\n"
        "Attribute VB_Name = \"frmA\"\r\n' Begin Gauges.Meter in the code\r\n";
    ComponentText text(form, kCp1252);
    ASSERT_TRUE(text.RenameHostedControl("Gauges", "meter", "Dial"));
    std::string expected = form;
    expected.replace(expected.find("GAUGES.Meter") + 7, 5, "Dial");
    expected.replace(expected.find("gauges.meter") + 7, 5, "Dial");
    EXPECT_EQ(text.Bytes(), expected);
    EXPECT_FALSE(text.RenameHostedControl("Gauges", "Meter", "Dial"));
    EXPECT_EQ(text.Bytes(), expected);

    ComponentText broken("Begin VB.Form f\r\n   Begin Gauges.Meter m\r\n", kCp1252);
    EXPECT_THROW(broken.RenameHostedControl("Gauges", "Meter", "Dial"), VbError);
    ComponentText unrelated("Begin VB.Form f\r\n", kCp1252);
    EXPECT_FALSE(unrelated.RenameHostedControl("Gauges", "Meter", "Dial"));
}

TEST(ComponentProperties, ReadsOnlyTheModuleAttributeBlock) {
    const ComponentText text(
        "Attribute VB_Name = \"modA\"\r\nAttribute VB_Ext_KEY = \"QX-TypeName\" ,\"Tools\"\r\n"
        "Option Explicit\r\nAttribute VB_Ext_KEY = \"Late\" ,\"ignored\"\r\n",
        kCp1252);
    EXPECT_EQ(text.ReadProperty("qx-typename"), "Tools");
    EXPECT_EQ(text.ReadProperty("Late"), std::nullopt);
    EXPECT_EQ(text.ReadProperty("Missing"), std::nullopt);
}

TEST(ComponentProperties, RefusesWhatTheFileCannotHold) {
    const std::string bytes =
        "Attribute VB_Name = \"modA\"\r\nAttribute VB_Ext_KEY = \"K\" ,\"v\"\r\n";
    ComponentText text(bytes, kCp1252);
    EXPECT_FALSE(text.WriteProperty("k", "v"));
    EXPECT_THROW(text.WriteProperty("K", "a\r\nb"), VbError);
    EXPECT_THROW(text.WriteProperty("K", "\xCE\xA9"), VbError);
    EXPECT_EQ(text.Bytes(), bytes);
}

}  // namespace
}  // namespace arbolet::disk
