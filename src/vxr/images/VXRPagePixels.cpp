#include <vxr/images/VXRPagePixels.h>

#include <vxr/host/utility/VXULog.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/PDFDocument.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <unordered_map>

namespace vxr {

namespace {

constexpr std::size_t mostRenderings
    = 3; ///< resolutions kept at a time: that of each view, or of before a zoom
constexpr double mostPixels = 1 << 24; ///< a side of a page at any zoom

std::unordered_map<const PDFDocument*, std::weak_ptr<VXRPagePixels>>& pixelsByDocument()
{
    static auto* all = new std::unordered_map<const PDFDocument*, std::weak_ptr<VXRPagePixels>>;
    return *all;
}

bool& isRenderedLater()
{
    static bool later = false;
    return later;
}

std::deque<std::weak_ptr<VXRPagePixels>>& waitingPixels()
{
    static auto* all = new std::deque<std::weak_ptr<VXRPagePixels>>;
    return *all;
}

/// Of pixels between which a page's corner is placed: more would render it anew at every step.
double inSteps(double device) { return std::round(device * 4) / 4; }

int wholePixels(double side) { return static_cast<int>(std::clamp(std::ceil(side - 1e-3), 1.0, mostPixels)); }

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

void VXRPagePixels::noteBytes()
{
    const std::size_t before = mBytes;
    mBytes = 0;
    for (const VXRPageRendering& rendering : mRenderings)
        mBytes += rendering.bytesUsed();
    if (mBytes != before)
        VXUObjectFlusher::instance().objectAddedData(*this);
    else
        VXUObjectFlusher::instance().objectTouched(*this);
}

void VXRPagePixels::fail(const std::string& reason)
{
    mFailed = true;
    VXULog_Fn(VXULogLevelWarning, "VXRPagePixels.cpp", "A page can't be rendered: " + reason);
}

VXRPageRendering& VXRPagePixels::rendering(const VXRPageRendering::Key& key, int width, int height)
{
    const auto found = std::ranges::find(mRenderings, key, &VXRPageRendering::key);
    if (found != mRenderings.end()) {
        mRenderings.splice(mRenderings.begin(), mRenderings, found);
        return mRenderings.front();
    }
    mRenderings.remove_if([](const VXRPageRendering& old) { return old.isEmpty(); });
    if (mRenderings.size() >= mostRenderings)
        mRenderings.pop_back();
    return mRenderings.emplace_front(key, width, height);
}

bool VXRPagePixels::render(VXRPageRendering& rendering, const std::vector<VXRPageRendering::Place>& places)
{
    std::string reason;
    for (const auto& place : places)
        if (!rendering.area(*mDocument, place, &reason)) {
            fail(reason);
            return false;
        }
    return true;
}

// Later.

bool VXRPagePixels::rendersLater() { return isRenderedLater(); }

void VXRPagePixels::setRendersLater(bool flag) { isRenderedLater() = flag; }

/// There must be something to show meanwhile.
bool VXRPagePixels::isLeftForLater(
    const VXRPageRendering& wanted, const std::vector<VXRPageRendering::Place>& places)
{
    const bool isAnyAtHand
        = std::ranges::any_of(mRenderings, [](const VXRPageRendering& other) { return !other.isEmpty(); });
    if (wanted.hasAreas(places) || mAwaited == wanted.key() || !wanted.isEmpty() || !isAnyAtHand)
        return false;
    if (!mWaiting)
        waitingPixels().push_back(weak_from_this());
    mWaiting = { wanted.key(), wanted.width(), wanted.height(), places };
    return true;
}

bool VXRPagePixels::renderOneWaiting()
{
    if (!mWaiting || mFailed)
        return false;
    VXRPageRendering& wanted = rendering(mWaiting->key, mWaiting->width, mWaiting->height);
    auto& places = mWaiting->places;
    std::erase_if(places, [&](const auto& place) { return wanted.hasAreas({ place }); });
    const bool isAny = !places.empty();
    if (isAny && render(wanted, { places.back() }))
        places.pop_back();
    noteBytes();
    return isAny && !mFailed;
}

bool VXRPagePixels::renderWaiting()
{
    auto& waiting = waitingPixels();
    while (!waiting.empty()) {
        const auto pixels = waiting.front().lock();
        if (pixels && pixels->renderOneWaiting())
            return true;
        waiting.pop_front();
        if (!pixels)
            continue;
        if (pixels->mWaiting)
            pixels->mAwaited = pixels->mWaiting->key;
        pixels->mWaiting.reset();
        NotificationCenter::defaultCenter().post(VXRPagePixelsDidRenderNotification, pixels.get());
    }
    return false;
}

// Drawing.

// Upright and not mirrored: the page's pixels are the device's, beginning at the one that its corner is in.
bool VXRPagePixels::drawUpright(
    Context& context, const Rect& rect, const AffineTransform& t, VXRPageSharpness sharpness, bool& waits)
{
    const Size media = mDocument->box(PDFBox::Media).size;
    const double exactLeft = inSteps(double(t.m11) * rect.minX() + t.tX),
                 exactTop = inSteps(double(t.m22) * rect.maxY() + t.tY);
    const double left = std::floor(exactLeft), top = std::ceil(exactTop);
    const Size offset { static_cast<float>(exactLeft - left), static_cast<float>(top - exactTop) };
    const double width = double(t.m11) * rect.size.width, height = double(t.m22) * rect.size.height;
    VXRPageRendering& wanted = rendering({ width / media.width, height / media.height, offset, false },
        wholePixels(width + double(offset.width)), wholePixels(height + double(offset.height)));
    const Rect seen = intersectionRect(context.clipBounds(), rect);
    if (seen.isEmpty())
        return true;
    const auto places = wanted.placesWithin(t.m11 * double(seen.minX()) + t.tX - left,
        top - (t.m22 * double(seen.maxY()) + t.tY), t.m11 * double(seen.maxX()) + t.tX - left,
        top - (t.m22 * double(seen.minY()) + t.tY));
    waits = sharpness == VXRPageSharpness::Later && isLeftForLater(wanted, places);
    if (waits)
        return drawAtHand(context, rect);
    if (!render(wanted, places))
        return false;
    for (const auto& place : places) {
        const auto image = wanted.area(*mDocument, place, nullptr);
        const double x = (left + place.first * VXRPageRendering::areaSide - t.tX) / t.m11;
        const double y = (top - place.second * VXRPageRendering::areaSide - image->height() - t.tY) / t.m22;
        context.drawImage({ { static_cast<float>(x), static_cast<float>(y) },
                              { static_cast<float>(image->width() / double(t.m11)),
                                  static_cast<float>(image->height() / double(t.m22)) } },
            *image);
    }
    return true;
}

/// At the resolution that the page's sides have on the device.
bool VXRPagePixels::drawTurned(
    Context& context, const Rect& rect, const AffineTransform& t, VXRPageSharpness sharpness, bool& waits)
{
    const Size media = mDocument->box(PDFBox::Media).size;
    const int width = wholePixels(std::hypot(t.m11, t.m12) * rect.size.width),
              height = wholePixels(std::hypot(t.m21, t.m22) * rect.size.height);
    VXRPageRendering& wanted = rendering(
        { static_cast<double>(width) / media.width, static_cast<double>(height) / media.height, {}, true },
        width, height);
    const Rect seen = intersectionRect(context.clipBounds(), rect);
    if (seen.isEmpty())
        return true;
    const double perX = width / double(rect.size.width), perY = height / double(rect.size.height);
    constexpr double around = 2; // pixels beside the edge are mixed into those along it
    const auto places = wanted.placesWithin((seen.minX() - rect.minX()) * perX - around,
        (rect.maxY() - seen.maxY()) * perY - around, (seen.maxX() - rect.minX()) * perX + around,
        (rect.maxY() - seen.minY()) * perY + around);
    waits = sharpness == VXRPageSharpness::Later && isLeftForLater(wanted, places);
    if (waits)
        return drawAtHand(context, rect);
    if (!render(wanted, places))
        return false;
    wanted.drawAreas(context, rect, places);
    return true;
}

/// From the resolution that was drawn last, as fast as while something is dragged.
bool VXRPagePixels::drawAtHand(Context& context, const Rect& rect)
{
    StateSaver saved(context);
    context.setInterpolationQuality(InterpolationQuality::None);
    for (const VXRPageRendering& old : mRenderings)
        if (!old.isEmpty()) {
            old.drawAllAreas(context, rect);
            return true;
        }
    return false;
}

bool VXRPagePixels::drawStretched(Context& context, const Rect& rect)
{
    for (const VXRPageRendering& old : mRenderings)
        if (old.isComplete()) {
            old.drawAllAreas(context, rect);
            return true;
        }
    std::string reason;
    const auto overview = mDocument->overview(&reason);
    if (!overview) {
        fail(reason);
        return false;
    }
    if (mRenderings.size() >= mostRenderings)
        mRenderings.pop_back();
    mRenderings.emplace_front(overview, mDocument->box(PDFBox::Media).size);
    context.drawImage(rect, *overview);
    return true;
}

bool VXRPagePixels::draw(Context& context, const Rect& rect, VXRPageSharpness sharpness)
{
    const Size media = mDocument->box(PDFBox::Media).size;
    if (rect.isEmpty() || !(media.width > 0 && media.height > 0) || mDocument->drawAsVectors(context, rect))
        return false;
    const AffineTransform t = context.currentTransform();
    bool waits = false;
    if (!mFailed && std::isfinite(t.determinant()) && t.determinant() != 0) {
        const bool isUpright = t.m12 == 0 && t.m21 == 0 && t.m11 > 0 && t.m22 > 0;
        if (sharpness == VXRPageSharpness::Stretched)
            drawStretched(context, rect);
        else if (isUpright)
            drawUpright(context, rect, t, sharpness, waits);
        else
            drawTurned(context, rect, t, sharpness, waits);
    }
    if (mFailed) {
        const CurrentContextScope current(context, true, false);
        VXRDummyImageRenderer::brokenImageRendererWithSize(rect.size)->drawInRect(rect);
    }
    noteBytes();
    return waits;
}

} // namespace vxr
