#pragma once

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/Image.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace vxr::test {

/// One pixel of a bitmap, premultiplied as the bitmap holds it.
struct Pixel {
    int red = 0, green = 0, blue = 0, alpha = 0;

    friend bool operator==(const Pixel&, const Pixel&) = default;
};
std::ostream& operator<<(std::ostream&, const Pixel&);

/// The largest difference of two pixels in any channel.
int difference(const Pixel&, const Pixel&);

/// Pixels of a bitmap or image, premultiplied native ARGB, first row on top.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    /// The pixel that covers [x, x + 1] by [y, y + 1] in default user space: y up, from the bottom row.
    Pixel at(int x, int y) const;
};
Picture pictureOf(const BitmapContext&);
Picture pictureOf(const Image&);
std::shared_ptr<const Image> imageOf(const Picture&);

/// The pixel of a bitmap context at [x, x + 1] by [y, y + 1] in default user space, y up.
Pixel pixelAt(const BitmapContext&, int x, int y);

/// How two pictures of one size differ; everything when the sizes do.
struct PictureDifference {
    int largest = 0; ///< in any channel of any pixel
    int pixelsAbove = 0; ///< pixels that differ by more than the tolerance in some channel
};
PictureDifference compare(const Picture&, const Picture&, int tolerance = 0);

/// Whether a picture equals tests/data/NAME.png within `tolerance` per channel. When it does not, or
/// there is no such file, NAME.actual.png and NAME.difference.png stand in the build folder's
/// tests/pictures: look at them, and copy the actual picture over the golden one if it is right.
::testing::AssertionResult matchesGolden(const Picture&, const std::string& name, int tolerance = 2);
::testing::AssertionResult matchesGolden(const BitmapContext&, const std::string& name, int tolerance = 2);

} // namespace vxr::test
