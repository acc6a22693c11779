#include <vxr/strokes/VXRManipulatedStroke.h>

#include <vxr/geometry/PathAdditions.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <algorithm>
#include <utility>

namespace vxr {

std::shared_ptr<VXRManipulatedStroke> VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(
    std::shared_ptr<Color> color, float width, Manipulations manipulations,
    std::shared_ptr<VXRPathStroker> stroker)
{
    auto stroke = std::make_shared<VXRManipulatedStroke>(
        std::move(color), width, 0, 0, VXRStrokePattern::solidPattern());
    stroke->setManipulations(std::move(manipulations));
    stroke->setStroker(std::move(stroker));
    return stroke;
}

void VXRManipulatedStroke::setManipulations(Manipulations manipulations)
{
    mManipulations = std::move(manipulations);
    mPainted = nullptr;
}

void VXRManipulatedStroke::setStroker(std::shared_ptr<VXRPathStroker> stroker)
{
    mStroker = std::move(stroker);
    mPainted = nullptr;
}

std::vector<VXRPaintedPath> VXRManipulatedStroke::paintedPathsForOutlineScale(
    const Path& outline, float scale, bool insideStroke) const
{
    VXRStrokeSetting setting;
    setting.lineWidth = insideStroke ? 2 * width() : width();
    setting.scale = scale;
    setting.join = static_cast<LineJoin>(std::clamp(join(), 0, 2));
    const auto same = [](auto a, auto b) { return std::equal(a.begin(), a.end(), b.begin(), b.end()); };
    if (mPainted && mPainted->setting.lineWidth == setting.lineWidth && mPainted->setting.scale == scale
        && mPainted->setting.join == setting.join && same(mPainted->outline.kinds(), outline.kinds())
        && same(mPainted->outline.points(), outline.points()))
        return mPainted->paths;

    VXRPaintedPath painted { outline.copy(), false, 1 };
    for (const auto& manipulation : mManipulations)
        painted = manipulation->manipulatedPath(painted, setting);
    auto paths = mStroker ? mStroker->paintedPaths(painted, setting) : std::vector { painted };
    mPainted = std::make_shared<Painted>(Painted { outline, setting, paths });
    return paths;
}

void VXRManipulatedStroke::drawOutline(Path& path, const Drawing& drawing) const
{
    for (const VXRPaintedPath& painted :
        paintedPathsForOutlineScale(path, drawing.scale, drawing.insideStroke)) {
        if (painted.isArea) {
            painted.path->fill();
            continue;
        }
        const auto line = painted.path->copy();
        applyToBezierPathInsideStroke(*line, drawing.insideStroke);
        line->setLineWidth(line->lineWidth() * painted.widthFactor);
        line->stroke();
    }
}

float VXRManipulatedStroke::reach() const
{
    float sum = mStroker ? mStroker->reachForLineWidth(width()) : 0;
    for (const auto& manipulation : mManipulations)
        sum += manipulation->reachForLineWidth(width());
    return sum;
}

/// The paths that are painted at scale 1, and what another scale may change.
Rect VXRManipulatedStroke::boundsOfStrokedPath(Path& path) const
{
    if (mManipulations.empty() && !mStroker)
        return VXRStroke::boundsOfStrokedPath(path);
    constexpr float scaleSlack = 1;
    Rect bounds = path.bounds();
    for (const VXRPaintedPath& painted : paintedPathsForOutlineScale(path, 1, false)) {
        Rect area = painted.path->bounds();
        if (!painted.isArea) {
            const auto line = painted.path->copy();
            applyToBezierPathInsideStroke(*line, false);
            line->setLineWidth(line->lineWidth() * painted.widthFactor);
            area = boundsIncludingStroke(*line);
        }
        bounds = unionRect(bounds, insetRect(area, -scaleSlack, -scaleSlack));
    }
    applyToBezierPathInsideStroke(path, false);
    return bounds;
}

void VXRManipulatedStroke::applyInteriorWrapPropertiesToBezierPathInsideStroke(
    Path& path, bool insideStroke) const
{
    applyToBezierPathInsideStroke(path, insideStroke);
    path.setLineWidth(path.lineWidth() + 2 * reach());
    path.setLineDash(nullptr, 0, 0);
}

bool VXRManipulatedStroke::isEqual(const Object& object) const
{
    if (this == &object)
        return true;
    if (!VXRStroke::isEqual(object))
        return false;
    const auto& other = static_cast<const VXRManipulatedStroke&>(object);
    const auto equal = [](const auto& a, const auto& b) { return a == b || (a && b && a->isEqual(*b)); };
    return std::equal(mManipulations.begin(), mManipulations.end(), other.mManipulations.begin(),
               other.mManipulations.end(), equal)
        && equal(mStroker, other.mStroker);
}

std::shared_ptr<VXRStroke> VXRManipulatedStroke::copyWithZone() const
{
    auto copy = VXRStroke::copyWithZone();
    auto& made = static_cast<VXRManipulatedStroke&>(*copy);
    Manipulations manipulations;
    for (const auto& manipulation : mManipulations)
        manipulations.push_back(manipulation->copyWithZone());
    made.setManipulations(std::move(manipulations));
    made.setStroker(mStroker ? mStroker->copyWithZone() : nullptr);
    return copy;
}

std::shared_ptr<VXRStroke> VXRManipulatedStroke::makeOfSameClass(std::shared_ptr<Color> color, float width,
    int cap, int join, std::shared_ptr<VXRStrokePattern> pattern) const
{
    return std::make_shared<VXRManipulatedStroke>(std::move(color), width, cap, join, std::move(pattern));
}

bool VXRManipulatedStroke::isOfReceiversClass(const Object& other) const
{
    return dynamic_cast<const VXRManipulatedStroke*>(&other) != nullptr;
}

} // namespace vxr
