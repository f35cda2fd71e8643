// ANSI styles for terminal output (see terminal_style.h).
#include "cli/terminal_style.h"

#include <array>

namespace arbolet::cli {
namespace {

struct Rgb {
    int red;
    int green;
    int blue;
};

// The usual xterm values of the sixteen basic colours, in SGR order (30-37, then 90-97).
constexpr std::array<Rgb, 16> kBasic = {{{0, 0, 0},
                                         {205, 0, 0},
                                         {0, 205, 0},
                                         {205, 205, 0},
                                         {0, 0, 238},
                                         {205, 0, 205},
                                         {0, 205, 205},
                                         {229, 229, 229},
                                         {127, 127, 127},
                                         {255, 0, 0},
                                         {0, 255, 0},
                                         {255, 255, 0},
                                         {92, 92, 255},
                                         {255, 0, 255},
                                         {0, 255, 255},
                                         {255, 255, 255}}};

std::string Basic(Rgb colour) {
    std::size_t best = 0;
    int bestDistance = 1 << 30;
    for (std::size_t i = 0; i < kBasic.size(); ++i) {
        const int r = colour.red - kBasic[i].red;
        const int g = colour.green - kBasic[i].green;
        const int b = colour.blue - kBasic[i].blue;
        const int distance = r * r + g * g + b * b;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    const int code = best < 8 ? 30 + static_cast<int>(best) : 90 + static_cast<int>(best - 8);
    return "\x1b[" + std::to_string(code) + 'm';
}

std::string Palette(Rgb colour) {
    const auto level = [](int value) { return (value * 5 + 127) / 255; };
    const int index = 16 + 36 * level(colour.red) + 6 * level(colour.green) + level(colour.blue);
    return "\x1b[38;5;" + std::to_string(index) + 'm';
}

bool Contains(const char* text, std::string_view part) {
    return text != nullptr && std::string_view(text).find(part) != std::string_view::npos;
}

}  // namespace

ColourDepth DepthFromEnvironment(const char* term, const char* colorTerm) {
    if (Contains(colorTerm, "truecolor") || Contains(colorTerm, "24bit"))
        return ColourDepth::TrueColour;
    if (Contains(term, "256color")) return ColourDepth::Palette256;
#ifdef _WIN32
    // The Windows console takes 24-bit colour and sets no TERM.
    if (term == nullptr) return ColourDepth::TrueColour;
#endif
    return ColourDepth::Basic;
}

bool ColourByDefault(bool isTerminal, const char* term, const char* noColor) {
    const bool noColourAsked = noColor != nullptr && *noColor != '\0';
    const bool dumb = term != nullptr && std::string_view(term) == "dumb";
    return isTerminal && !noColourAsked && !dumb;
}

std::string AnsiForeground(std::int32_t colour, ColourDepth depth) {
    if (colour == 0) return {};
    const Rgb rgb{colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF};
    if (depth == ColourDepth::Basic) return Basic(rgb);
    if (depth == ColourDepth::Palette256) return Palette(rgb);
    return "\x1b[38;2;" + std::to_string(rgb.red) + ';' + std::to_string(rgb.green) + ';' +
           std::to_string(rgb.blue) + 'm';
}

}  // namespace arbolet::cli
