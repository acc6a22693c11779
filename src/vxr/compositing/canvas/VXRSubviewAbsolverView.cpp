#include <vxr/compositing/canvas/VXRSubviewAbsolverView.h>

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/values/IntRect.h>

#include <cmath>

namespace vxr {

namespace {

constexpr float largestPicture = 4096; ///< a side, in pixels; larger subviews draw themselves each time

} // namespace

void VXRSubviewAbsolverView::drawUpright(View& view, Context& context, bool drawsToScreen)
{
    const Rect bounds = view.bounds();
    const StateSaver saved(context);
    if (view.isFlipped()) {
        context.translate(-bounds.minX(), -bounds.minY());
    } else {
        context.scale(1, -1);
        context.translate(-bounds.minX(), -bounds.maxY());
    }
    view.drawTreeIntoContext(context, bounds, drawsToScreen);
}

std::shared_ptr<const Image> VXRSubviewAbsolverView::pictureOfSubview(View& view, float scale)
{
    for (const CachedPicture& known : mSubviewCache)
        if (known.view == &view && known.scale == scale)
            return known.image;
    const Size size = view.bounds().size;
    const float wide = size.width * scale, high = size.height * scale;
    if (!isNearlyWhole(wide) || !isNearlyWhole(high) || !(wide >= 1 && wide <= largestPicture)
        || !(high >= 1 && high <= largestPicture))
        return nullptr;
    const auto bitmap = BitmapContext::createBitmap(int(std::round(wide)), int(std::round(high)));
    bitmap->translate(0, std::round(high));
    bitmap->scale(scale, -scale);
    drawUpright(view, *bitmap, true);
    mSubviewCache.push_back({ &view, scale, bitmap->makeImage() });
    return mSubviewCache.back().image;
}

void VXRSubviewAbsolverView::drawSubviewIntoContext(View& view, Context& context)
{
    const bool toScreen = GraphicsContext::currentContextDrawingToScreen();
    const AffineTransform t = context.currentTransform();
    const bool onPixels = t.m12 == 0 && t.m21 == 0 && t.m11 > 0 && t.m22 == -t.m11 && isNearlyWhole(t.tX)
        && isNearlyWhole(t.tY);
    const auto picture = toScreen && onPixels ? pictureOfSubview(view, t.m11) : nullptr;
    if (!picture) {
        drawUpright(view, context, toScreen);
        return;
    }
    // Images have their first row at the largest y.
    const Size size = view.bounds().size;
    const StateSaver saved(context);
    context.translate(0, size.height);
    context.scale(1, -1);
    context.drawImage({ 0, 0, size.width, size.height }, *picture);
}

} // namespace vxr
