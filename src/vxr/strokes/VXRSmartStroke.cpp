#include <vxr/strokes/VXRSmartStroke.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/protocols/VXRStrokeBundleSource.h>
#include <vxr/strokes/BundleLayout.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace vxr {

std::shared_ptr<VXRSmartStroke> VXRSmartStroke::smartStrokeWithNameSourceColorWidth(
    const std::string& name, VXRStrokeBundleSource* source, std::shared_ptr<Color> color, float width)
{
    auto stroke
        = std::make_shared<VXRSmartStroke>(std::move(color), width, 0, 0, VXRStrokePattern::solidPattern());
    stroke->setNameFromSource(name, source);
    stroke->setRandomSeed(newRandomSeed());
    return stroke;
}

std::uint32_t VXRSmartStroke::newRandomSeed() { return static_cast<std::uint32_t>(random()); }

void VXRSmartStroke::setNameFromSource(const std::string& name, VXRStrokeBundleSource* source)
{
    mName = name;
    mBundle = source ? source->strokeBundleForName(name) : nullptr;
    mLaid = nullptr;
}

void VXRSmartStroke::setRandomSeed(std::uint32_t seed)
{
    mRandomSeed = seed;
    mLaid = nullptr;
}

std::vector<VXRSmartStroke::Layer> VXRSmartStroke::layersForOutline(
    const Path& outline, bool insideStroke) const
{
    const float lineWidth = insideStroke ? 2 * width() : width();
    if (!mBundle || !(lineWidth > 0) || !std::isfinite(lineWidth))
        return {};
    const auto same = [](auto a, auto b) { return std::equal(a.begin(), a.end(), b.begin(), b.end()); };
    if (mLaid && mLaid->width == lineWidth && same(mLaid->outline.kinds(), outline.kinds())
        && same(mLaid->outline.points(), outline.points()))
        return mLaid->layers;
    BundleLayout layout(*mBundle, lineWidth, mRandomSeed);
    layout.layAlong(outline);
    auto layers = layout.takeLayers();
    mLaid = std::make_shared<Laid>(Laid { outline, lineWidth, layers });
    return layers;
}

void VXRSmartStroke::drawOutline(Path& path, const Drawing& drawing) const
{
    if (!mBundle)
        return VXRStroke::drawOutline(path, drawing);
    for (const Layer& layer : layersForOutline(path, drawing.insideStroke)) {
        if (drawing.blackAndWhite) {
            const auto grey = layer.color ? layer.color->grayscaleColor() : nullptr;
            VXRSetColor(grey && grey->whiteComponent() > 0.5f ? *Color::whiteColor() : *Color::blackColor());
        } else if (const auto& ink = layer.color ? layer.color : color()) {
            VXRSetColor(*ink->colorWithAlphaComponent(ink->alphaComponent() * layer.opacity));
        }
        layer.path->fill();
    }
}

float VXRSmartStroke::reachBeyondLine() const
{
    return mBundle ? (mBundle->halfHeight() + mBundle->overhang()) * 2 * width() : 0;
}

Rect VXRSmartStroke::boundsOfStrokedPath(Path& path) const
{
    if (!mBundle)
        return VXRStroke::boundsOfStrokedPath(path);
    Rect bounds = path.bounds();
    for (const Layer& layer : layersForOutline(path, false))
        bounds = unionRect(bounds, layer.path->bounds());
    applyToBezierPathInsideStroke(path, false);
    return bounds;
}

void VXRSmartStroke::applyInteriorWrapPropertiesToBezierPathInsideStroke(Path& path, bool insideStroke) const
{
    applyToBezierPathInsideStroke(path, insideStroke);
    if (!mBundle)
        return;
    path.setLineWidth(std::max(path.lineWidth(), path.lineWidth() * 2 * mBundle->halfHeight()));
    path.setLineDash(nullptr, 0, 0);
}

bool VXRSmartStroke::isEqual(const Object& object) const
{
    if (this == &object)
        return true;
    if (!VXRStroke::isEqual(object))
        return false;
    const auto& other = static_cast<const VXRSmartStroke&>(object);
    return mName == other.mName && mRandomSeed == other.mRandomSeed;
}

std::shared_ptr<VXRStroke> VXRSmartStroke::copyWithZone() const
{
    auto copy = VXRStroke::copyWithZone();
    auto& made = static_cast<VXRSmartStroke&>(*copy);
    made.mName = mName;
    made.mBundle = mBundle;
    made.mRandomSeed = mRandomSeed;
    return copy;
}

std::shared_ptr<VXRStroke> VXRSmartStroke::makeOfSameClass(std::shared_ptr<Color> color, float width, int cap,
    int join, std::shared_ptr<VXRStrokePattern> pattern) const
{
    return std::make_shared<VXRSmartStroke>(std::move(color), width, cap, join, std::move(pattern));
}

bool VXRSmartStroke::isOfReceiversClass(const Object& other) const
{
    return dynamic_cast<const VXRSmartStroke*>(&other) != nullptr;
}

} // namespace vxr
