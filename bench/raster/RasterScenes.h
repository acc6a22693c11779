#pragma once

#include <bench/Compare.h>

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/path/Path.h>

#include <array>
#include <memory>
#include <span>
#include <vector>

namespace vxr::bench {

using Rgba = std::array<float, 4>; ///< not premultiplied

/// What a page of 1600 x 1200 pixels, y up, is covered with, as data that every painter takes its own form
/// of.
struct RasterScene {
    static constexpr int width = 1600, height = 1200;
    static constexpr int imageSide = 256;

    struct Fill {
        Path path;
        Rgba color;
    };
    struct Stroke {
        Path path;
        LineStyle style;
        Rgba color;
    };
    /// Colours at 0, 1/2 and 1 of the way from `start` to `end`, or of the radius around `start`.
    struct Gradient {
        Path path;
        bool isRadial;
        Point start, end;
        float radius;
        std::array<Rgba, 3> colors;
    };
    struct Picture {
        std::size_t image;
        AffineTransform place; ///< of the image's pixels, first row on top
    };
    using Image = std::vector<std::uint32_t>; ///< premultiplied ARGB, `imageSide` rows and columns

    std::vector<Fill> fills;
    std::vector<Stroke> strokes;
    std::vector<Gradient> gradients;
    std::vector<Picture> pictures;
    std::vector<Image> images;
    InterpolationQuality quality = InterpolationQuality::Low;
};
using SharedScene = std::shared_ptr<const RasterScene>;

struct RasterLine {
    const char* name;
    double goal; ///< of the time over cairo's, where there is AVX2
    double goalWithout; ///< over that one
    SharedScene (*make)();
};
std::span<const RasterLine> rasterLines();

/// Draws the scene with the library, again and again on one bitmap.
Work paintWithLibrary(const SharedScene&);

} // namespace vxr::bench
