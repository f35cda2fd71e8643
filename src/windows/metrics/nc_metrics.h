// cNCMetrics: the system's non-client metrics (border, scroll bar, caption and menu sizes) and
// the six system fonts, handed out as font handles. The owner-drawn popup menu draws with the
// menu font and its bold variant from here.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>

#include "windows/base/gdi_handles.h"

namespace arbolet::windows {

enum CNCMetricsFontTypes : std::int32_t {
    IconFont = 1,
    CaptionFont = 2,
    SMCaptionFont = 3,
    MenuFOnt = 4,
    StatusFont = 5,
    MessageFont = 6,
};

// The 8-bit non-client metrics record as systems before Vista define it: 340 bytes, without the
// padded border width that later headers append.
struct NonClientMetrics340 {
    UINT cbSize;
    int iBorderWidth;
    int iScrollWidth;
    int iScrollHeight;
    int iCaptionWidth;
    int iCaptionHeight;
    LOGFONTA lfCaptionFont;
    int iSmCaptionWidth;
    int iSmCaptionHeight;
    LOGFONTA lfSmCaptionFont;
    int iMenuWidth;
    int iMenuHeight;
    LOGFONTA lfMenuFont;
    LOGFONTA lfStatusFont;
    LOGFONTA lfMessageFont;
};
static_assert(sizeof(NonClientMetrics340) == 340);

class cNCMetrics {
  public:
    cNCMetrics() noexcept;
    ~cNCMetrics() { ClearUp(); }
    cNCMetrics(const cNCMetrics&) = delete;
    cNCMetrics& operator=(const cNCMetrics&) = delete;

    // Reads the metrics afresh, releasing the fonts made from earlier ones. True only when both
    // the metrics and the icon-title font could be read.
    bool GetMetrics() noexcept;
    // The font of a type, created once and owned by this object.
    HFONT FontHandle(CNCMetricsFontTypes eFontNum);
    // A new bold (or, for fonts already bold, heavy) font of a type, owned by the caller. A type
    // outside the six gives a bold system default font.
    HFONT BoldenedFontHandle(CNCMetricsFontTypes eFontNum) const noexcept;

    std::int32_t CaptionHeight() const noexcept { return metrics_.iCaptionHeight; }
    std::int32_t CaptionWIdth() const noexcept { return metrics_.iCaptionWidth; }
    std::int32_t MenuHeight() const noexcept { return metrics_.iMenuHeight; }
    std::int32_t MenuWidth() const noexcept { return metrics_.iMenuWidth; }
    std::int32_t ScrollHeight() const noexcept { return metrics_.iScrollHeight; }
    std::int32_t ScrollWidth() const noexcept { return metrics_.iScrollWidth; }
    std::int32_t SMCaptionHeight() const noexcept { return metrics_.iSmCaptionHeight; }
    std::int32_t SMCaptionWIdth() const noexcept { return metrics_.iSmCaptionWidth; }
    std::int32_t BorderWidth() const noexcept { return metrics_.iBorderWidth; }

    // Deletes the cached fonts.
    void ClearUp() noexcept;

    // The description a font type is made from; an all-zero one outside the six types.
    LOGFONTA FontDescription(CNCMetricsFontTypes eFontNum) const noexcept;

  private:
    NonClientMetrics340 metrics_;
    LOGFONTA iconFont_;
    std::array<OwnedFont, 6> fonts_;
};

}  // namespace arbolet::windows
