#pragma once

#include <tests/support/PictureCompare.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/Shading.h>

namespace vxr::test {

inline const ColorValue red = ColorValue::rgb(1, 0, 0);
inline const ColorValue green = ColorValue::rgb(0, 1, 0);
inline const ColorValue blue = ColorValue::rgb(0, 0, 1);
inline const ColorValue black = ColorValue::gray(0);

constexpr Pixel clearPixel {};
constexpr Pixel redPixel { 255, 0, 0, 255 };
constexpr Pixel greenPixel { 0, 255, 0, 255 };
constexpr Pixel bluePixel { 0, 0, 255, 255 };

/// Fills a rectangle with a colour, whatever the colour was before.
inline void paint(Context& context, const ColorValue& color, const Rect& rect)
{
    context.setFillColor(color);
    context.fillRect(rect);
}

inline std::shared_ptr<BitmapContext> bitmap(int width = 20, int height = 10)
{
    return BitmapContext::createBitmap(width, height);
}

/// Opaque, so that a shadow's darkness can be read from any channel.
inline std::shared_ptr<BitmapContext> whitePage(int width = 60, int height = 40)
{
    const auto context = bitmap(width, height);
    paint(*context, ColorValue::gray(1), { 0, 0, static_cast<float>(width), static_cast<float>(height) });
    return context;
}

inline std::shared_ptr<const ShadingFunction> functionOf(ShadingFunction::Evaluate evaluate)
{
    return std::make_shared<ShadingFunction>(nullptr, evaluate, nullptr);
}

/// Whether two bitmaps of one size hold the same pixels.
inline bool samePixels(const BitmapContext& a, const BitmapContext& b)
{
    return compare(pictureOf(a), pictureOf(b)).largest == 0;
}

inline bool isBlank(const BitmapContext& context)
{
    return samePixels(context, *bitmap(context.width(), context.height()));
}

} // namespace vxr::test
