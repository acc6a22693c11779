#include <vxr/images/VXRPageRendering.h>

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/PDFDocument.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

constexpr int sharedPixels = 2; ///< as far as the sampling of turned images reaches

} // namespace

VXRPageRendering::VXRPageRendering(const Key& key, int width, int height)
    : mKey(key)
    , mWidth(width)
    , mHeight(height)
    , mMargin(key.isTurned ? sharedPixels : 0)
{
}

VXRPageRendering::VXRPageRendering(const std::shared_ptr<const Image>& whole, Size media)
    : VXRPageRendering({ static_cast<double>(whole->width()) / media.width,
                           static_cast<double>(whole->height()) / media.height, {}, false },
        whole->width(), whole->height())
{
    mAreaSide = std::max(mWidth, mHeight);
    mAreas[{ 0, 0 }] = whole;
}

Rect VXRPageRendering::pixelsOf(Place place) const
{
    const int left = place.first * mAreaSide, top = place.second * mAreaSide;
    const int right = std::min(left + mAreaSide, mWidth), bottom = std::min(top + mAreaSide, mHeight);
    return { static_cast<float>(left - mMargin), static_cast<float>(top - mMargin),
        static_cast<float>(right - left + 2 * mMargin), static_cast<float>(bottom - top + 2 * mMargin) };
}

std::vector<VXRPageRendering::Place> VXRPageRendering::placesWithin(
    double left, double top, double right, double bottom) const
{
    const auto index = [this](double pixels, int count) {
        return static_cast<int>(std::clamp<double>(std::floor(pixels / mAreaSide), 0, count));
    };
    const int columns = (mWidth + mAreaSide - 1) / mAreaSide, rows = (mHeight + mAreaSide - 1) / mAreaSide;
    const int lastColumn = index(right + mAreaSide, columns), lastRow = index(bottom + mAreaSide, rows);
    std::vector<Place> places;
    for (int row = index(top, rows); row < lastRow; ++row)
        for (int column = index(left, columns); column < lastColumn; ++column)
            places.emplace_back(column, row);
    return places;
}

bool VXRPageRendering::hasAreas(const std::vector<Place>& places) const
{
    return std::ranges::all_of(places, [this](const Place& place) { return mAreas.contains(place); });
}

bool VXRPageRendering::isComplete() const
{
    const auto across
        = [this](int pixels) { return static_cast<std::size_t>((pixels + mAreaSide - 1) / mAreaSide); };
    return mAreas.size() == across(mWidth) * across(mHeight);
}

std::size_t VXRPageRendering::bytesUsed() const
{
    std::size_t bytes = 0;
    for (const auto& [place, image] : mAreas)
        bytes += image->layout().bytesPerRow * static_cast<std::size_t>(image->height());
    return bytes;
}

std::shared_ptr<const Image> VXRPageRendering::area(
    const PDFDocument& document, Place place, std::string* reason)
{
    if (const auto found = mAreas.find(place); found != mAreas.end())
        return found->second;
    const Rect pixels = pixelsOf(place);
    auto image = document.renderArea({ static_cast<float>(mKey.scaleX), static_cast<float>(mKey.scaleY) },
        static_cast<int>(pixels.minX()), static_cast<int>(pixels.minY()), static_cast<int>(pixels.size.width),
        static_cast<int>(pixels.size.height), mKey.offset, reason);
    if (image)
        mAreas.emplace(place, image);
    return image;
}

// Where areas are not upright each device pixel must be one area's alone: each is drawn with what it shares,
// cut hard at its own edges. Those along the page's edge are not cut there.
void VXRPageRendering::drawAreas(Context& context, const Rect& rect, const std::vector<Place>& places) const
{
    const double unitX = rect.size.width / static_cast<double>(mWidth),
                 unitY = rect.size.height / static_cast<double>(mHeight);
    const auto inRect = [&](const Rect& pixels) {
        const auto x = [&](double at) { return static_cast<float>(rect.minX() + at * unitX); };
        const auto y = [&](double at) { return static_cast<float>(rect.maxY() - at * unitY); };
        const float left = x(pixels.minX()), right = x(pixels.maxX()), top = y(pixels.minY()),
                    bottom = y(pixels.maxY());
        return Rect { left, bottom, right - left, top - bottom };
    };
    const bool isOne = mWidth <= mAreaSide && mHeight <= mAreaSide;
    for (const Place& place : places) {
        const auto found = mAreas.find(place);
        if (found == mAreas.end())
            continue;
        const Rect pixels = pixelsOf(place);
        StateSaver saved(context);
        if (!isOne) {
            const auto margin = static_cast<float>(mMargin);
            const bool isLeft = place.first == 0, isTop = place.second == 0;
            const bool isRight = pixels.maxX() - margin >= static_cast<float>(mWidth),
                       isBottom = pixels.maxY() - margin >= static_cast<float>(mHeight);
            const float left = pixels.minX() + (isLeft ? 0 : margin),
                        top = pixels.minY() + (isTop ? 0 : margin);
            const float right = pixels.maxX() - (isRight ? 0 : margin),
                        bottom = pixels.maxY() - (isBottom ? 0 : margin);
            context.setShouldAntialias(false);
            context.clipToRect(inRect({ left, top, right - left, bottom - top }));
            context.setShouldAntialias(true);
        }
        context.drawImage(inRect(pixels), *found->second);
    }
}

void VXRPageRendering::drawAllAreas(Context& context, const Rect& rect) const
{
    std::vector<Place> places;
    for (const auto& [place, image] : mAreas)
        places.push_back(place);
    drawAreas(context, rect, places);
}

} // namespace vxr
