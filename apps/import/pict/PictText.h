#pragma once

#include <apps/import/pict/PictInk.h>

#include <map>
#include <string>

namespace vxr::importing {

/// How text is drawn.
struct PictTextStyle {
    int font = 0;
    int face = 0; ///< bits: 1 bold, 2 italic, 4 underline, 8 outline, 16 shadow, 32 condensed, 64 extended
    int mode = 1;
    int size = 12; ///< 0 means 12
    double extraOfSpaces = 0; ///< units added to each space
    double extraOfCharacters = 0;
    double scaleX = 1, scaleY = 1;
    std::map<int, std::string> fontNames; ///< as the picture gives them
};

/// Draws the text with its baseline starting at `origin`. The bytes are those of the picture.
void drawText(
    cairo_t*, std::span<const std::byte> text, PictPoint origin, const PictTextStyle&, const PictColors&);

/// The picture's eight-bit text in UTF-8; control characters are left out.
std::string utf8Text(std::span<const std::byte> text);

} // namespace vxr::importing
