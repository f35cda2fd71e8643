// The tree's image list as the tree view gets it: every icon at both sizes, each one drawn and
// different from the others, transparent around its picture. Saves
// a strip of all icons at both sizes as artifacts/tree_icons.png for people to look at.
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "support/screen_capture.h"
#include "windows/icons/tree_icons.h"

namespace arbolet::windows::icons {
namespace {

using testing::RgbImage;

constexpr COLORREF kBackground = RGB(255, 0, 255);

// One icon drawn by the image list onto the test colour, as the tree view draws it.
RgbImage DrawIcon(HIMAGELIST list, int index, int size) {
    return testing::DrawPicture(size, size, kBackground, [&](HDC dc) {
        ImageList_Draw(list, index, dc, 0, 0, ILD_TRANSPARENT);
    });
}

class TreeImageList : public ::testing::TestWithParam<UINT> {};

TEST_P(TreeImageList, HoldsEveryIconDrawnAndDistinct) {
    const UINT dpi = GetParam();
    const int size = IconSizeForDpi(dpi);
    const HIMAGELIST list = CreateTreeImageList(dpi);
    ASSERT_NE(list, nullptr) << "the icon sheets are missing from the resources or malformed";
    int cx = 0;
    int cy = 0;
    ImageList_GetIconSize(list, &cx, &cy);
    EXPECT_EQ(cx, size);
    EXPECT_EQ(cy, size);
    ASSERT_EQ(ImageList_GetImageCount(list), kTreeIconCount);

    std::set<std::vector<std::uint8_t>> pictures;
    for (int i = 0; i < kTreeIconCount; ++i) {
        const RgbImage picture = DrawIcon(list, i, size);
        const int transparent = testing::CountPixels(picture, kBackground);
        const std::string_view name = IconName(static_cast<TreeIcon>(i));
        EXPECT_LT(transparent, size * size * 9 / 10) << name << " is (nearly) empty";
        EXPECT_GT(transparent, 0) << name << " has no transparent pixel";
        EXPECT_TRUE(pictures.insert(picture.rgb).second) << name << " looks like another icon";
    }
    ImageList_Destroy(list);
}

INSTANTIATE_TEST_SUITE_P(Dpi, TreeImageList, ::testing::Values(96u, 120u, 144u, 192u));

TEST(TreeIcons, SizeFollowsTheDpi) {
    EXPECT_EQ(IconSizeForDpi(96), 16);
    EXPECT_EQ(IconSizeForDpi(143), 16);
    EXPECT_EQ(IconSizeForDpi(144), 32);
    EXPECT_EQ(IconSizeForDpi(288), 32);
}

TEST(TreeIcons, EachComponentKindHasItsPicture) {
    EXPECT_EQ(IconForComponentType(1), TreeIcon::Module);
    EXPECT_EQ(IconForComponentType(2), TreeIcon::Class);
    EXPECT_EQ(IconForComponentType(4), TreeIcon::ResourceFile);
    EXPECT_EQ(IconForComponentType(5), TreeIcon::Form);
    EXPECT_EQ(IconForComponentType(6), TreeIcon::MdiForm);
    EXPECT_EQ(IconForComponentType(7), TreeIcon::PropertyPage);
    EXPECT_EQ(IconForComponentType(8), TreeIcon::UserControl);
    EXPECT_EQ(IconForComponentType(9), TreeIcon::UserDocument);
    EXPECT_EQ(IconForComponentType(10), TreeIcon::RelatedDocument);
    EXPECT_EQ(IconForComponentType(11), TreeIcon::Designer);
    EXPECT_EQ(IconForComponentType(0), TreeIcon::Module);
    EXPECT_EQ(IconForComponentType(-7), TreeIcon::Module);
    std::set<std::string_view> names;
    for (int i = 0; i < kTreeIconCount; ++i)
        names.insert(IconName(static_cast<TreeIcon>(i)));
    EXPECT_EQ(static_cast<int>(names.size()), kTreeIconCount);
}

// Both sizes on a white window background, and the 16-pixel row magnified four times, so that
// each pixel can be judged.
TEST(TreeIcons, PictureOfAllIcons) {
    const HIMAGELIST small = CreateTreeImageList(96);
    const HIMAGELIST large = CreateTreeImageList(192);
    ASSERT_NE(small, nullptr);
    ASSERT_NE(large, nullptr);
    constexpr int kGap = 8;
    const int width = kGap + kTreeIconCount * (64 + kGap);
    const RgbImage strip =
        testing::DrawPicture(width, 16 + 32 + 64 + 4 * kGap, RGB(255, 255, 255), [&](HDC dc) {
            for (int i = 0; i < kTreeIconCount; ++i) {
                const int x = kGap + i * (64 + kGap);
                ImageList_Draw(small, i, dc, x, kGap, ILD_TRANSPARENT);
                ImageList_Draw(large, i, dc, x, 2 * kGap + 16, ILD_TRANSPARENT);
                StretchBlt(dc, x, 3 * kGap + 48, 64, 64, dc, x, kGap, 16, 16, SRCCOPY);
            }
        });
    ImageList_Destroy(small);
    ImageList_Destroy(large);
    EXPECT_TRUE(testing::SaveArtifact("tree_icons.png", strip));
}

}  // namespace
}  // namespace arbolet::windows::icons
