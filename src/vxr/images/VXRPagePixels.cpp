#include <vxr/images/VXRPagePixels.h>

#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/PDFDocument.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace vxr {

namespace {

constexpr int areaSide = 512; ///< pixels
constexpr int mostRenderings = 3; ///< resolutions kept at a time: that of each view, or of before a zoom
constexpr double mostTurnedPixels = 4096; ///< a side of a page that is rendered whole
constexpr double mostPixels = 1 << 24; ///< a side of a page at any zoom

std::unordered_map<const PDFDocument*, std::weak_ptr<VXRPagePixels>>& pixelsByDocument()
{
    static auto* all = new std::unordered_map<const PDFDocument*, std::weak_ptr<VXRPagePixels>>;
    return *all;
}

/// Of pixels between which a page's corner is placed: more would render it anew at every step.
double inSteps(double device) { return std::round(device * 4) / 4; }

int areasIn(int pixels) { return (pixels + areaSide - 1) / areaSide; }

} // namespace

std::shared_ptr<VXRPagePixels> VXRPagePixels::pixelsOfDocument(
    const std::shared_ptr<const PDFDocument>& document)
{
    auto& known = pixelsByDocument()[document.get()];
    auto pixels = known.lock();
    if (!pixels) {
        pixels = std::make_shared<VXRPagePixels>(document);
        known = pixels;
    }
    return pixels;
}

VXRPagePixels::VXRPagePixels(std::shared_ptr<const PDFDocument> document)
    : mDocument(std::move(document))
{
}

VXRPagePixels::~VXRPagePixels()
{
    const auto entry = pixelsByDocument().find(mDocument.get());
    if (entry != pixelsByDocument().end() && entry->second.expired())
        pixelsByDocument().erase(entry);
}

void VXRPagePixels::flushLocalData()
{
    mRenderings.clear();
    mBytes = 0;
}

VXRPagePixels::Rendering& VXRPagePixels::renderingForSize(double width, double height, Size offset)
{
    const Size media = mDocument->box(PDFBox::Media).size;
    const double scaleX = width / media.width, scaleY = height / media.height;
    const auto found = std::ranges::find_if(mRenderings,
        [&](const Rendering& r) { return r.scaleX == scaleX && r.scaleY == scaleY && r.offset == offset; });
    if (found != mRenderings.end()) {
        mRenderings.splice(mRenderings.begin(), mRenderings, found);
        return mRenderings.front();
    }
    if (mRenderings.size() >= mostRenderings) {
        for (const auto& [place, image] : mRenderings.back().areas)
            mBytes -= image ? image->layout().bytesPerRow * static_cast<std::size_t>(image->height()) : 0;
        mRenderings.pop_back();
    }
    const auto pixels
        = [](double side) { return static_cast<int>(std::clamp(std::ceil(side - 1e-3), 1.0, mostPixels)); };
    mRenderings.push_front({ scaleX, scaleY, offset, pixels(width + static_cast<double>(offset.width)),
        pixels(height + static_cast<double>(offset.height)), {} });
    return mRenderings.front();
}

std::shared_ptr<const Image> VXRPagePixels::area(Rendering& rendering, int column, int row)
{
    auto& kept = rendering.areas[{ column, row }];
    if (kept)
        return kept;
    const int x = column * areaSide, y = row * areaSide;
    kept = mDocument->renderArea(
        { static_cast<float>(rendering.scaleX), static_cast<float>(rendering.scaleY) }, x, y,
        std::min(areaSide, rendering.width - x), std::min(areaSide, rendering.height - y), rendering.offset);
    if (kept)
        mBytes += kept->layout().bytesPerRow * static_cast<std::size_t>(kept->height());
    return kept;
}

// Upright and not mirrored: the page's pixels are the device's, beginning at the one that its corner is in.
bool VXRPagePixels::drawAligned(Context& context, const Rect& rect, const AffineTransform& t)
{
    const double exactLeft = double(t.m11) * rect.minX() + t.tX,
                 exactTop = double(t.m22) * rect.maxY() + t.tY;
    const double left = std::floor(inSteps(exactLeft)), top = std::ceil(inSteps(exactTop));
    const Size offset { static_cast<float>(inSteps(exactLeft) - left),
        static_cast<float>(top - inSteps(exactTop)) };
    Rendering& rendering
        = renderingForSize(double(t.m11) * rect.size.width, double(t.m22) * rect.size.height, offset);
    const Rect seen = intersectionRect(context.clipBounds(), rect);
    if (seen.isEmpty())
        return true;
    const auto columnOf = [&](double x) { return std::floor((t.m11 * x + t.tX - left) / areaSide); };
    const auto rowOf = [&](double y) { return std::floor((top - (t.m22 * y + t.tY)) / areaSide); };
    const auto within
        = [](double at, int count) { return static_cast<int>(std::clamp<double>(at, 0, count)); };
    const int columns = areasIn(rendering.width), rows = areasIn(rendering.height);
    const int lastColumn = within(columnOf(seen.maxX()) + 1, columns);
    const int lastRow = within(rowOf(seen.minY()) + 1, rows);
    for (int row = within(rowOf(seen.maxY()), rows); row < lastRow; ++row)
        for (int column = within(columnOf(seen.minX()), columns); column < lastColumn; ++column) {
            const auto image = area(rendering, column, row);
            if (!image)
                return false;
            const double x = (left + column * areaSide - t.tX) / t.m11;
            const double y = (top - row * areaSide - image->height() - t.tY) / t.m22;
            context.drawImage({ { static_cast<float>(x), static_cast<float>(y) },
                                  { static_cast<float>(image->width() / double(t.m11)),
                                      static_cast<float>(image->height() / double(t.m22)) } },
                *image);
        }
    return true;
}

/// The page in one piece, at the resolution that its sides have on the device.
bool VXRPagePixels::drawTurned(Context& context, const Rect& rect, const AffineTransform& t)
{
    const double width = std::min<double>(std::hypot(t.m11, t.m12) * rect.size.width, mostTurnedPixels);
    const double height = std::min<double>(std::hypot(t.m21, t.m22) * rect.size.height, mostTurnedPixels);
    Rendering& rendering = renderingForSize(std::ceil(width), std::ceil(height));
    auto& whole = rendering.areas[{ -1, -1 }];
    if (!whole) {
        whole = mDocument->renderArea(
            { static_cast<float>(rendering.scaleX), static_cast<float>(rendering.scaleY) }, 0, 0,
            rendering.width, rendering.height);
        if (whole)
            mBytes += whole->layout().bytesPerRow * static_cast<std::size_t>(whole->height());
    }
    if (whole)
        context.drawImage(rect, *whole);
    return whole != nullptr;
}

bool VXRPagePixels::drawStretched(Context& context, const Rect& rect)
{
    for (const Rendering& rendering : mRenderings) {
        for (const auto& place : { std::pair(-1, -1), std::pair(0, 0) }) {
            const auto found = rendering.areas.find(place);
            const bool isWhole = found != rendering.areas.end() && found->second
                && found->second->width() == rendering.width && found->second->height() == rendering.height;
            if (!isWhole)
                continue;
            context.drawImage(rect, *found->second);
            return true;
        }
    }
    const auto overview = mDocument->overview();
    if (!overview)
        return false;
    Rendering& rendering = renderingForSize(overview->width(), overview->height());
    mBytes += overview->layout().bytesPerRow * static_cast<std::size_t>(overview->height());
    rendering.areas[{ -1, -1 }] = overview;
    context.drawImage(rect, *overview);
    return true;
}

void VXRPagePixels::draw(Context& context, const Rect& rect, bool stretched)
{
    const Size media = mDocument->box(PDFBox::Media).size;
    if (rect.isEmpty() || !(media.width > 0 && media.height > 0) || mDocument->drawAsVectors(context, rect))
        return;
    const AffineTransform t = context.currentTransform();
    const std::size_t before = mBytes;
    const bool isAligned = t.m12 == 0 && t.m21 == 0 && t.m11 > 0 && t.m22 > 0;
    if (!mFailed && std::isfinite(t.determinant()) && t.determinant() != 0)
        mFailed = !(stretched ? drawStretched(context, rect)
                : isAligned   ? drawAligned(context, rect, t)
                              : drawTurned(context, rect, t));
    if (mFailed) {
        const CurrentContextScope current(context, true, false);
        VXRDummyImageRenderer::brokenImageRendererWithSize(rect.size)->drawInRect(rect);
    }
    if (mBytes != before)
        VXUObjectFlusher::instance().objectAddedData(*this);
    else
        VXUObjectFlusher::instance().objectTouched(*this);
}

} // namespace vxr
