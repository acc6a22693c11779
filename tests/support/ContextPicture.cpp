#include <tests/support/PictureCompare.h>

namespace vxr::test {

Picture pictureOf(const CairoContext& context)
{
    Picture picture { context.width(), context.height(), {} };
    const auto* row = reinterpret_cast<const std::uint8_t*>(context.pixels());
    for (int y = 0; y < picture.height; ++y, row += context.bytesPerRow()) {
        const auto* pixels = reinterpret_cast<const std::uint32_t*>(row);
        picture.pixels.insert(picture.pixels.end(), pixels, pixels + picture.width);
    }
    return picture;
}

Pixel pixelAt(const CairoContext& context, int x, int y)
{
    if (x < 0 || y < 0 || x >= context.width() || y >= context.height()) {
        ADD_FAILURE() << "no pixel at " << x << ", " << y;
        return {};
    }
    const auto* row = reinterpret_cast<const std::uint8_t*>(context.pixels())
        + static_cast<std::size_t>(context.height() - 1 - y) * context.bytesPerRow();
    const std::uint32_t value = reinterpret_cast<const std::uint32_t*>(row)[x];
    return { static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255),
        static_cast<int>(value & 255), static_cast<int>(value >> 24) };
}

::testing::AssertionResult matchesGolden(const CairoContext& context, const std::string& name, int tolerance)
{
    return matchesGolden(pictureOf(context), name, tolerance);
}

} // namespace vxr::test
