// Project, group and component texts made of random bytes: parsing never fails, and every edit
// that is accepted reads back while leaving everything else as it was.
#include <gtest/gtest.h>

#include <random>

#include "base/vb_error.h"
#include "disk/component_properties.h"
#include "disk/disk_environment.h"
#include "disk/file_io.h"
#include "disk/group_file.h"
#include "disk/project_file.h"
#include "temp_folder.h"

namespace arbolet::disk {
namespace {

// Lines built from the bytes that matter to the parsers, with some anything-goes bytes.
std::string RandomText(std::mt19937& random, bool allowNul) {
    // clang-format off
    static const std::string pieces[] = {
        "[Quorlin]", "[Other]", "QX-TypeName=", "Key=", "Attribute VB_Ext_KEY = \"K\" ,\"",
        "Attribute VB_Name = \"m\"", "Begin VB.Form f", "End", "VERSION 5.00", "\"", "=", ";",
        "[", "]", " ", "\t", "\r\n", "\n", "\r", "\xE9", "\x81", "\xFF", "Sub A()", "x",
        "\r\nModule=m; m.bas\r\n", "\r\nForm=F.FRM\r\n", "\r\nClass=c; ..\\c.cls\r\n",
        "\r\nRelatedDoc=m.bas\r\n", "\r\nName=\"P\"\r\n"};
    // clang-format on
    std::string text;
    const int count = std::uniform_int_distribution<int>(0, 60)(random);
    for (int i = 0; i < count; ++i) {
        const auto pick = std::uniform_int_distribution<std::size_t>(0, std::size(pieces))(random);
        if (pick < std::size(pieces)) {
            text += pieces[pick];
        } else {
            const char byte = static_cast<char>(std::uniform_int_distribution<int>(0, 255)(random));
            text += (byte == '\0' && !allowNul) ? 'z' : byte;
        }
    }
    return text;
}

TEST(ProjectRobustness, AcceptedProjectEditsReadBackAndKeepOtherValues) {
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round) {
        ProjectFile file(RandomText(random, round % 10 == 0), 1252);
        if (file.IsBinary()) continue;
        const auto otherBefore = file.ReadProperty("Other", "Key");
        const auto topBefore = file.TopLevel().size();
        try {
            file.WriteProperty("Quorlin", "QX-TypeName", ";A;B C;");
        } catch (const VbError&) {
            continue;
        }
        ASSERT_EQ(file.ReadProperty("Quorlin", "QX-TypeName"), ";A;B C;") << round;
        ASSERT_EQ(file.ReadProperty("Other", "Key"), otherBefore) << round;
        ASSERT_EQ(file.TopLevel().size(), topBefore) << round;
    }
}

TEST(ProjectRobustness, AcceptedComponentEditsReadBackAndKeepTheCode) {
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        ComponentText text(RandomText(random, round % 10 == 0), 1252);
        const std::string code = text.File().CodeText();
        const std::string name = text.File().name;
        try {
            text.WriteProperty("QX-TypeName", "Data \"Access\"");
        } catch (const VbError&) {
            continue;
        }
        ASSERT_EQ(text.ReadProperty("QX-TypeName"), "Data \"Access\"") << round;
        ASSERT_EQ(text.File().name, name) << round;
        ASSERT_EQ(text.File().CodeText(), code) << round;
    }
}

TEST(ProjectRobustness, GroupsOfRandomBytesParse) {
    std::mt19937 random(13);
    for (int round = 0; round < 3000; ++round) {
        const std::string bytes = "VBGROUP 5.0\r\n" + RandomText(random, true);
        const GroupFile group = ParseGroupFile(bytes, 932);
        for (const auto& member : group.projects)
            ASSERT_LT(member.line, bytes.size());
    }
}

// Whole projects of random text over files of random text: they open, or they are refused with
// a FileError; a save of an accepted edit reads back.
TEST(ProjectRobustness, RandomProjectsOpenOrAreRefused) {
    testing::TempFolder folder;
    std::mt19937 random(17);
    int withComponents = 0;
    for (int round = 0; round < 150; ++round) {
        folder.Write("m.bas", RandomText(random, round % 5 == 0));
        folder.Write("f.frm", RandomText(random, false));
        const auto vbp = folder.Write("P.vbp", RandomText(random, round % 7 == 0));
        std::shared_ptr<DiskEnvironment> environment;
        try {
            environment = DiskEnvironment::Open({vbp});
        } catch (const FileError&) {
            continue;
        }
        const auto project = environment->VBProjects()->Item(1);
        const auto components = project->VBComponents();
        withComponents += components->Count() > 0 ? 1 : 0;
        for (std::int32_t i = 1; i <= components->Count(); ++i) {
            try {
                components->Item(i)->WriteProperty("QX-TypeName", "F");
            } catch (const VbError&) {
            }
            if (const auto code = components->Item(i)->CodeModule()) {
                code->Lines(1, code->CountOfLines());
            }
        }
        environment->Save();
        const auto reopened = DiskEnvironment::Open({vbp})->VBProjects()->Item(1)->VBComponents();
        ASSERT_EQ(reopened->Count(), components->Count()) << round;
    }
    EXPECT_GT(withComponents, 30);
}

}  // namespace
}  // namespace arbolet::disk
