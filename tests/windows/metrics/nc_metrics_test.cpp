// cNCMetrics against the system's own metrics (Wine's in CI): the 340-byte record must read the
// same values as the current, longer record, and the fonts must be made from it.
#include "windows/metrics/nc_metrics.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/vb_error.h"

namespace arbolet::windows {
namespace {

bool SameFont(const LOGFONTA& a, const LOGFONTA& b) {
    return std::memcmp(&a, &b, sizeof(LOGFONTA)) == 0;
}

NONCLIENTMETRICSA CurrentMetrics() {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof(metrics);
    EXPECT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0));
    return metrics;
}

LOGFONTA Described(HFONT font) {
    LOGFONTA description{};
    EXPECT_EQ(GetObjectA(font, sizeof(description), &description), sizeof(description));
    return description;
}

std::int32_t RaisedNumber(cNCMetrics& metrics, std::int32_t type) {
    try {
        metrics.FontHandle(static_cast<CNCMetricsFontTypes>(type));
    } catch (const VbError& error) {
        return error.Number;
    }
    return 0;
}

TEST(NCMetrics, SizesAreZeroUntilRead) {
    cNCMetrics metrics;
    EXPECT_EQ(metrics.MenuHeight(), 0);
    EXPECT_EQ(metrics.CaptionWIdth(), 0);
    EXPECT_EQ(metrics.BorderWidth(), 0);
    EXPECT_EQ(metrics.FontDescription(MenuFOnt).lfHeight, 0);
}

TEST(NCMetrics, TheShortRecordReadsWhatTheCurrentRecordReads) {
    cNCMetrics metrics;
    ASSERT_TRUE(metrics.GetMetrics());
    const NONCLIENTMETRICSA expected = CurrentMetrics();
    EXPECT_EQ(metrics.BorderWidth(), expected.iBorderWidth);
    EXPECT_EQ(metrics.ScrollWidth(), expected.iScrollWidth);
    EXPECT_EQ(metrics.ScrollHeight(), expected.iScrollHeight);
    EXPECT_EQ(metrics.CaptionWIdth(), expected.iCaptionWidth);
    EXPECT_EQ(metrics.CaptionHeight(), expected.iCaptionHeight);
    EXPECT_EQ(metrics.SMCaptionWIdth(), expected.iSmCaptionWidth);
    EXPECT_EQ(metrics.SMCaptionHeight(), expected.iSmCaptionHeight);
    EXPECT_EQ(metrics.MenuWidth(), expected.iMenuWidth);
    EXPECT_EQ(metrics.MenuHeight(), expected.iMenuHeight);
    EXPECT_GT(metrics.MenuHeight(), 0);
    EXPECT_TRUE(SameFont(metrics.FontDescription(MenuFOnt), expected.lfMenuFont));
    EXPECT_TRUE(SameFont(metrics.FontDescription(MessageFont), expected.lfMessageFont));
    EXPECT_TRUE(SameFont(metrics.FontDescription(StatusFont), expected.lfStatusFont));
    EXPECT_TRUE(SameFont(metrics.FontDescription(SMCaptionFont), expected.lfSmCaptionFont));

    LOGFONTA iconFont{};
    ASSERT_TRUE(SystemParametersInfoA(SPI_GETICONTITLELOGFONT, sizeof(iconFont), &iconFont, 0));
    EXPECT_STREQ(metrics.FontDescription(IconFont).lfFaceName, iconFont.lfFaceName);
}

TEST(NCMetrics, FontHandlesAreCachedUntilTheMetricsAreReadAgain) {
    cNCMetrics metrics;
    ASSERT_TRUE(metrics.GetMetrics());
    const HFONT menu = metrics.FontHandle(MenuFOnt);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(metrics.FontHandle(MenuFOnt), menu);
    EXPECT_NE(metrics.FontHandle(CaptionFont), menu);
    EXPECT_STREQ(Described(menu).lfFaceName, metrics.FontDescription(MenuFOnt).lfFaceName);
    EXPECT_EQ(Described(menu).lfHeight, metrics.FontDescription(MenuFOnt).lfHeight);

    ASSERT_TRUE(metrics.GetMetrics());
    EXPECT_EQ(GetObjectType(menu), 0u) << "the old font is released";
    const HFONT again = metrics.FontHandle(MenuFOnt);
    EXPECT_EQ(GetObjectType(again), static_cast<DWORD>(OBJ_FONT));

    metrics.ClearUp();
    EXPECT_EQ(GetObjectType(again), 0u);
    EXPECT_EQ(GetObjectType(metrics.FontHandle(MenuFOnt)), static_cast<DWORD>(OBJ_FONT));
}

TEST(NCMetrics, FontTypesOutsideTheSixAreOutOfRange) {
    cNCMetrics metrics;
    ASSERT_TRUE(metrics.GetMetrics());
    EXPECT_EQ(RaisedNumber(metrics, 0), 9);
    EXPECT_EQ(RaisedNumber(metrics, 7), 9);
    EXPECT_EQ(RaisedNumber(metrics, 6), 0);
}

TEST(NCMetrics, BoldVariantsAreNewFontsOneStepHeavier) {
    cNCMetrics metrics;
    ASSERT_TRUE(metrics.GetMetrics());
    bool sawRegular = false;
    bool sawBold = false;
    for (std::int32_t type = IconFont; type <= MessageFont; ++type) {
        const auto fontType = static_cast<CNCMetricsFontTypes>(type);
        const LONG weight = metrics.FontDescription(fontType).lfWeight;
        const HFONT bold = metrics.BoldenedFontHandle(fontType);
        ASSERT_NE(bold, nullptr);
        EXPECT_NE(bold, metrics.FontHandle(fontType));
        EXPECT_NE(bold, metrics.BoldenedFontHandle(fontType)) << "never cached";
        EXPECT_EQ(Described(bold).lfWeight, weight < 700 ? 700 : 900) << "font type " << type;
        EXPECT_STREQ(Described(bold).lfFaceName, metrics.FontDescription(fontType).lfFaceName);
        sawRegular |= weight == 400;
        sawBold |= weight == 700;
        DeleteObject(bold);
    }
    EXPECT_TRUE(sawRegular);
    EXPECT_TRUE(sawBold) << "the system has no bold font to make heavy; the 900 rule went untested";

    const HFONT fallback = metrics.BoldenedFontHandle(static_cast<CNCMetricsFontTypes>(9));
    EXPECT_EQ(Described(fallback).lfWeight, 700);
    EXPECT_STREQ(Described(fallback).lfFaceName, "");
    DeleteObject(fallback);
}

}  // namespace
}  // namespace arbolet::windows
