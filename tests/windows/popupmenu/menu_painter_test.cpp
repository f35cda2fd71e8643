// The item drawing, into a memory bitmap: each menu-wide setting must change what is drawn.
#include "windows/popupmenu/menu_painter.h"

#include <gtest/gtest.h>

namespace arbolet::windows {
namespace {

// One item drawn on its own, as a menu would size it, with its pixels to look at.
class DrawnItem {
  public:
    DrawnItem(MenuPainter& painter, const popupmenu::MenuItem& item, bool selected)
        : dc_(CreateCompatibleDC(nullptr)) {
        size_ = painter.Measure(dc_.get(), item);
        size_.cx += 40;
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(info.bmiHeader);
        info.bmiHeader.biWidth = size_.cx;
        info.bmiHeader.biHeight = -size_.cy;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_.reset(CreateDIBSection(dc_.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        pixels_ = static_cast<const std::uint32_t*>(bits);
        const SelectedObject selectedBitmap(dc_.get(), bitmap_.get());
        painter.Draw(dc_.get(), RECT{0, 0, size_.cx, size_.cy}, item, selected, false);
        GdiFlush();
    }
    int Count(COLORREF colour) const {
        const std::uint32_t wanted =
            (GetRValue(colour) << 16) | (GetGValue(colour) << 8) | GetBValue(colour);
        int count = 0;
        for (int i = 0; i < size_.cx * size_.cy; ++i)
            count += (pixels_[i] & 0xFFFFFF) == wanted;
        return count;
    }

  private:
    OwnedDc dc_;
    OwnedBitmap bitmap_;
    SIZE size_{};
    const std::uint32_t* pixels_ = nullptr;
};

popupmenu::MenuItem Item(const std::string& caption) {
    popupmenu::MenuItem item;
    popupmenu::ApplyCaption(item, caption);
    return item;
}

TEST(MenuPainter, HeaderStylesDrawABarOrALine) {
    MenuPainter painter;
    const popupmenu::MenuItem header = Item("-Recent");
    const COLORREF caption = GetSysColor(COLOR_ACTIVECAPTION);
    EXPECT_GT(DrawnItem(painter, header, false).Count(caption), 20);
    painter.Style().HeaderStyle = ecnmHeaderSeparator;
    EXPECT_EQ(DrawnItem(painter, header, false).Count(caption), 0);
    EXPECT_GT(DrawnItem(painter, header, false).Count(GetSysColor(COLOR_GRAYTEXT)), 5);
}

TEST(MenuPainter, SelectionHighlightsUnlessCheckedItemsAreExempt) {
    MenuPainter painter;
    popupmenu::MenuItem item = Item("&Open");
    const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
    EXPECT_EQ(DrawnItem(painter, item, false).Count(highlight), 0);
    const int solid = DrawnItem(painter, item, true).Count(highlight);
    EXPECT_GT(solid, 100);

    painter.Style().GradientHighlight = true;
    EXPECT_LT(DrawnItem(painter, item, true).Count(highlight), solid / 4) << "a gradient";

    item.Checked = true;
    painter.Style().HighlightCheckedItems = false;
    EXPECT_EQ(DrawnItem(painter, item, true).Count(highlight), 0);
}

TEST(MenuPainter, DisabledAndDefaultItemsLookDifferent) {
    MenuPainter painter;
    popupmenu::MenuItem item = Item("&Remove");
    const COLORREF grey = GetSysColor(COLOR_GRAYTEXT);
    EXPECT_EQ(DrawnItem(painter, item, false).Count(grey), 0);
    item.Enabled = false;
    EXPECT_GT(DrawnItem(painter, item, false).Count(grey), 5);

    item.Enabled = true;
    const OwnedDc dc(CreateCompatibleDC(nullptr));
    const SIZE plain = painter.Measure(dc.get(), item);
    item.Default = true;
    EXPECT_GT(painter.Measure(dc.get(), item).cx, plain.cx) << "bold is wider";
}

}  // namespace
}  // namespace arbolet::windows
