// cNCMetrics over SystemParametersInfoA and CreateFontIndirectA.
#include "windows/metrics/nc_metrics.h"

#include "base/vb_error.h"

namespace arbolet::windows {
namespace {

constexpr UINT kNonClientMetricsSize = 340;
constexpr LONG kBold = FW_BOLD;    // 700
constexpr LONG kHeavy = FW_HEAVY;  // 900

bool IsFontType(CNCMetricsFontTypes eFontNum) noexcept {
    return eFontNum >= IconFont && eFontNum <= MessageFont;
}

}  // namespace

cNCMetrics::cNCMetrics() noexcept : metrics_{}, iconFont_{} {}

bool cNCMetrics::GetMetrics() noexcept {
    ClearUp();
    metrics_.cbSize = kNonClientMetricsSize;
    if (!SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, kNonClientMetricsSize, &metrics_, 0)) {
        return false;
    }
    return SystemParametersInfoA(SPI_GETICONTITLELOGFONT, sizeof(iconFont_), &iconFont_, 0) != 0;
}

LOGFONTA cNCMetrics::FontDescription(CNCMetricsFontTypes eFontNum) const noexcept {
    switch (eFontNum) {
        case IconFont:
            return iconFont_;
        case CaptionFont:
            return metrics_.lfCaptionFont;
        case SMCaptionFont:
            return metrics_.lfSmCaptionFont;
        case MenuFOnt:
            return metrics_.lfMenuFont;
        case StatusFont:
            return metrics_.lfStatusFont;
        case MessageFont:
            return metrics_.lfMessageFont;
    }
    return LOGFONTA{};
}

HFONT cNCMetrics::FontHandle(CNCMetricsFontTypes eFontNum) {
    if (!IsFontType(eFontNum)) vberr::RaiseSubscriptOutOfRange("cNCMetrics");
    OwnedFont& slot = fonts_[static_cast<std::size_t>(eFontNum - 1)];
    if (!slot) {
        const LOGFONTA description = FontDescription(eFontNum);
        slot.reset(CreateFontIndirectA(&description));
    }
    return slot.get();
}

HFONT cNCMetrics::BoldenedFontHandle(CNCMetricsFontTypes eFontNum) const noexcept {
    LOGFONTA description = FontDescription(eFontNum);
    description.lfWeight = description.lfWeight < kBold ? kBold : kHeavy;
    return CreateFontIndirectA(&description);
}

void cNCMetrics::ClearUp() noexcept {
    for (OwnedFont& font : fonts_)
        font.reset();
}

}  // namespace arbolet::windows
