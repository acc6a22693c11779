#pragma once

#include <apps/import/pict/PictPixels.h>

#include <array>
#include <optional>

#include <cairo.h>

namespace vxr::importing {

/// What a shape is filled with: eight rows of eight bits in the foreground and background colours, or an
/// image that repeats.
struct PictPattern {
    std::array<std::uint8_t, 8> bits { 255, 255, 255, 255, 255, 255, 255, 255 };
    std::optional<PictPixels> pixels;

    static PictPattern solid() { return {}; }
    static PictPattern blank() { return { {}, {} }; }
    static PictPattern read(PictReader&); ///< eight bytes
    static PictPattern readPixelPattern(PictReader&);
};

struct PictColors {
    PictColor foreground { 0, 0, 0 };
    PictColor background { 1, 1, 1 };
    PictColor operation { 0.5, 0.5, 0.5 }; ///< weighs the source in the blend mode
    PictColor highlight { 0.7, 0.8, 1 };
};

/// Fills the current path, which is gone afterwards. Transfer modes are said by what the page can do: copies
/// and "or" by paint that covers, exclusive "or" by the difference with white, arithmetic ones by the blend
/// mode that comes nearest.
void fillPathWithPattern(cairo_t*, const PictPattern&, int mode, const PictColors&);
/// Exchanges black and white, and every colour with its complement.
void invertPath(cairo_t*);
/// Draws the part `source` of an image into `target`, within the clip.
void drawPixels(
    cairo_t*, const PictPixels&, const PictRect& source, const PictRect& target, int mode, const PictColors&);

/// Sets the operator and the colour for marks of the foreground, such as text. False when the mode leaves
/// nothing.
bool setMarkingSource(cairo_t*, int mode, const PictColors&);

} // namespace vxr::importing
