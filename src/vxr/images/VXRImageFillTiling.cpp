#include <vxr/host/utility/VXUSystemVersion.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/images/VXRImageRenderer.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/pictures/PlatformImage.h>
#include <vxr/protocols/VXRCanvasRole.h>

#include <cmath>

namespace vxr {

namespace {

constexpr float largestMegaTile = 64;
constexpr double mostTiles = 1e6; ///< drawn one by one; more could not be told apart

using HeldFill = std::shared_ptr<VXRImageFill>;

} // namespace

void drawPattern(void* info, Context& context)
{
    const VXRImageFill& fill = **static_cast<HeldFill*>(info);
    if (!fill.renderer())
        return;
    context.translate(0, fill.renderer()->naturalSize().height);
    context.scale(1, -1);
    context.setShouldAntialias(false);
    context.setInterpolationQuality(InterpolationQuality::High);
    fill.renderer()->drawTileInContext(context);
}

void releaseInfo(void* info) { delete static_cast<HeldFill*>(info); }

void VXRImageFill::_paintTiledFillInRect(const Rect& rect)
{
    if (!mRenderer)
        return;
    if (useQuartzPattern())
        _paintTilePattern(currentDrawingPort(), rect);
    else
        _paintTilesOneByOne(currentDrawingPort(), rect);
}

void VXRImageFill::_paintTilePattern(Context& context, const Rect& rect)
{
    constexpr int lastVersionWithPatternsInDeviceSpace = 4159;
    if (canvas() && canvas()->renderingDestination() == VXRDestinationNonScreen)
        mRenderer->cacheState();
    AffineTransform matrix = context.currentTransform();
    if (GetSystemVersion() > lastVersionWithPatternsInDeviceSpace) {
        const auto fromDevice = context.baseTransform().inverted();
        matrix = fromDevice ? concat(matrix, *fromDevice) : matrix;
    }
    const Size tile = naturalSize();
    if (!(tile.width > 0 && tile.height > 0))
        return;
    const std::shared_ptr<void> info(new HeldFill(shared_from_this()), releaseInfo);
    context.setFillPattern(std::make_shared<Pattern>(Rect { { 0, 0 }, tile }, matrix, tile.width, tile.height,
                               [info](Context& cell) { drawPattern(info.get(), cell); }),
        1);
    context.fillRect(rect);
}

void VXRImageFill::_paintTilesOneByOne(Context& context, const Rect& rect)
{
    const auto mega = _megaTile();
    const Size tile = mega ? mega->size() : naturalSize();
    if (!(tile.width > 0 && tile.height > 0)
        || double(rect.size.width) * rect.size.height / (double(tile.width) * tile.height) > mostTiles)
        return;
    const Point start { std::floor(rect.minX()), std::floor(rect.minY()) };
    const float endX = std::floor((rect.minX() + rect.size.width) / tile.width + 1) * tile.width;
    const float endY = std::floor(1 + (rect.minY() + rect.size.height) / tile.height) * tile.height;
    context.clipToRect(rect);
    context.setShouldAntialias(false);
    context.setInterpolationQuality(InterpolationQuality::High);
    const Point error = _errorForPointContext(start, context);
    for (float y = start.y - error.y; y < endY; y += tile.height)
        for (float x = start.x - error.x; x < endX; x += tile.width) {
            StateSaver saved(context);
            context.translate(x, y);
            context.translate(0, tile.height);
            context.scale(1, -1);
            if (mega)
                mega->drawInRect({ { 0, 0 }, tile });
            else
                mRenderer->drawInRect({ { 0, 0 }, tile });
        }
}

std::shared_ptr<const ImageRep> VXRImageFill::_megaTile() const
{
    const Size tile = naturalSize();
    if (!(tile.width > 0 && tile.height > 0 && tile.width < largestMegaTile && tile.height < largestMegaTile))
        return nullptr;
    const auto single = PlatformImage::imageWithSizeDrawing(tile, [&](Context&) {
        mRenderer->drawInRect({ { 0, 0 }, tile });
    });
    const Size size { std::floor(largestMegaTile / tile.width) * tile.width,
        std::floor(largestMegaTile / tile.height) * tile.height };
    const auto filled = !single ? nullptr : PlatformImage::imageWithSizeDrawing(size, [&](Context& context) {
        for (float y = 0; y < size.height; y += tile.height)
            for (float x = 0; x < size.width; x += tile.width)
                single->drawInRect({ { x, y }, tile });
        static_cast<void>(context);
    });
    return filled ? filled->representation() : nullptr;
}

} // namespace vxr
