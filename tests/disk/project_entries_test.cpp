// Adding and removing project entries line by line: every other byte, line ends included, stays.
#include <gtest/gtest.h>

#include "disk/project_file.h"

namespace arbolet::disk {
namespace {

TEST(ProjectEntries, RemovingALineKeepsTheOtherLinesAndTheirEnds) {
    LineEditor lf("a\nb\r\nc");
    lf.RemoveLine(1);
    EXPECT_EQ(lf.Bytes(), "a\nc");
    // The last line had no end: the end before it goes with it, so no blank line is left.
    lf.RemoveLine(1);
    EXPECT_EQ(lf.Bytes(), "a");
    lf.RemoveLine(5);
    EXPECT_EQ(lf.Bytes(), "a");
    lf.RemoveLine(0);
    EXPECT_EQ(lf.Bytes(), "");

    LineEditor cr("x\ry\r");
    cr.RemoveLine(0);
    EXPECT_EQ(cr.Bytes(), "y\r");
}

TEST(ProjectEntries, EntriesGoAfterTheirLineAndComeOutAgain) {
    ProjectFile project("Type=Exe\r\nForm=a.frm\nName=\"P\"\r\n[S]\r\nK=1\r\n", 1252);
    project.InsertTopLevelEntry(1, "Form", "b.frm");
    EXPECT_EQ(project.Bytes(), "Type=Exe\r\nForm=a.frm\nForm=b.frm\nName=\"P\"\r\n[S]\r\nK=1\r\n");
    ASSERT_EQ(project.TopLevel().size(), 4u);
    EXPECT_EQ(project.TopLevel()[2].value, "b.frm");
    project.RemoveTopLevelEntry(1);
    EXPECT_EQ(project.Bytes(), "Type=Exe\r\nForm=b.frm\nName=\"P\"\r\n[S]\r\nK=1\r\n");
    EXPECT_EQ(project.ReadProperty("S", "K"), "1");
}

}  // namespace
}  // namespace arbolet::disk
