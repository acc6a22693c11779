#include <vxr/strokes/VXRStroke.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include <utility>

namespace vxr {

std::shared_ptr<VXRStroke> VXRStroke::stroke() { return strokeWithColorWidth(Color::blackColor(), 1); }

std::shared_ptr<VXRStroke> VXRStroke::emptyStroke()
{
    auto made = stroke();
    made->setPattern(VXRStrokePattern::emptyPattern());
    return made;
}

std::shared_ptr<VXRStroke> VXRStroke::strokeWithColorWidth(std::shared_ptr<Color> color, float width)
{
    return strokeWithColorWidthCapJoinPattern(
        std::move(color), width, 0, 0, VXRStrokePattern::solidPattern());
}

std::shared_ptr<VXRStroke> VXRStroke::strokeWithColorWidthCapJoinPattern(
    std::shared_ptr<Color> color, float width, int cap, int join, std::shared_ptr<VXRStrokePattern> pattern)
{
    return std::make_shared<VXRStroke>(std::move(color), width, cap, join, std::move(pattern));
}

VXRStroke::VXRStroke(
    std::shared_ptr<Color> color, float width, int cap, int join, std::shared_ptr<VXRStrokePattern> pattern)
    : mColor(std::move(color))
    , mWidth(width)
    , mCap(cap)
    , mJoin(join)
    , mPattern(std::move(pattern))
{
}

VXRStroke::~VXRStroke() = default;

void VXRStroke::setColor(std::shared_ptr<Color> color) { mColor = std::move(color); }

void VXRStroke::setPattern(std::shared_ptr<VXRStrokePattern> pattern) { mPattern = std::move(pattern); }

bool VXRStroke::shouldRender() const
{
    return mWidth > 0 && (!mPattern || mPattern->patternType() != VXRStrokePatternEmpty);
}

void VXRStroke::applyToBezierPathInsideStroke(Path& path, bool insideStroke) const
{
    // Codes that no path knows are kept here and drawn as the default.
    const auto known = [](int code) { return code >= 0 && code <= 2 ? code : 0; };
    path.setLineWidth(insideStroke ? 2 * mWidth : mWidth);
    path.setLineCap(static_cast<LineCap>(known(mCap)));
    path.setLineJoin(static_cast<LineJoin>(known(mJoin)));
    path.setMiterLimit(mMiterLimit);
    if (mPattern)
        mPattern->applyToBezierPathLineWidth(path, mWidth); // the visible width, doubled or not
}

void VXRStroke::applyInteriorWrapPropertiesToBezierPathInsideStroke(Path& path, bool insideStroke) const
{
    applyToBezierPathInsideStroke(path, insideStroke);
}

bool VXRStroke::hasTransparentColor() const { return !mColor || mColor->alphaComponent() == 0; }

void VXRStroke::setCurrentColor(const VXRCanvasRole* canvas) const
{
    if (canvas && canvas->rendersBlackAndWhite())
        VXRSetColor(*Color::blackColor());
    else if (mColor)
        VXRSetColor(*mColor);
}

Rect VXRStroke::boundsOfStrokedPath(Path& path) const
{
    applyToBezierPathInsideStroke(path, false);
    return boundsIncludingStroke(path);
}

VXRStroke::Drawing VXRStroke::drawingOn(const VXRCanvasRole* canvas, bool insideStroke)
{
    if (!canvas)
        return { insideStroke, 1, false };
    return { insideStroke, canvas->viewScale(), canvas->rendersBlackAndWhite() };
}

void VXRStroke::drawOutline(Path& path, const Drawing& drawing) const
{
    applyToBezierPathInsideStroke(path, drawing.insideStroke);
    path.stroke();
}

void VXRStroke::paintShape(VXRPaintedShape& shape)
{
    const VXRCanvasRole* canvas = shape.canvas();
    if (!shouldRender())
        return;
    const int destination = canvas ? canvas->renderingDestination() : VXRDestinationDirect;
    const bool mayClip = !canvas || destination != VXRDestinationCompositor || !canvas->usesCompositor();
    const bool interior = shape.wantsInteriorStroke();
    {
        const auto path = shape.transformedPath();
        if (mayClip && interior)
            path->addClip();
        const bool blackAndWhite = canvas && canvas->rendersBlackAndWhite();
        if (!blackAndWhite && destination == VXRDestinationNonScreen && hasTransparentColor())
            return;
        setCurrentColor(canvas);
        drawOutline(*path, drawingOn(canvas, interior));
    }
    // Up to half a point wide, what is left outside is below a device pixel.
    if (!mayClip && mWidth > 0.5f && interior)
        eraseOutside(shape);
}

/// Clears the outer half of an inside stroke where the outline must not become a clip: everything between
/// the outline and a rectangle around all that was stroked.
void VXRStroke::eraseOutside(VXRPaintedShape& shape) const
{
    const auto path = shape.transformedPath();
    const float margin = mWidth + 10.0f + reachBeyondLine();
    const Rect grown = insetRect(shape.alignmentBounds(), -margin, -margin);
    path->appendRect(grown);
    path->setWindingRule(WindingRule::EvenOdd);
    path->addClip();
    fillRectUsingOperation(grown, CompositeOperation::Clear);
}

void VXRStroke::paintShapeWithNormalClip(VXRPaintedShape& shape)
{
    const bool interior = shape.wantsInteriorStroke();
    // Before the test below: a stroke that paints nothing leaves the clip as well.
    if (interior)
        shape.clip();
    if (!shouldRender())
        return;
    const auto path = shape.transformedPath();
    const VXRCanvasRole* canvas = shape.canvas();
    if (!(canvas && canvas->rendersBlackAndWhite()) && hasTransparentColor())
        return;
    setCurrentColor(canvas);
    drawOutline(*path, drawingOn(canvas, interior));
}

void VXRStroke::drawSwatchInRect(const Rect& rect)
{
    if (mColor)
        mColor->drawSwatchInRect(rect);
}

bool VXRStroke::isEqual(const Object& object) const
{
    if (this == &object)
        return true;
    if (!isOfReceiversClass(object))
        return false;
    const auto& other = static_cast<const VXRStroke&>(object);
    if (mWidth != other.mWidth || mCap != other.mCap || mJoin != other.mJoin
        || mMiterLimit != other.mMiterLimit)
        return false;
    if (!mPattern || !other.mPattern || !mPattern->isEqual(*other.mPattern))
        return false;
    return mColor && other.mColor ? mColor->isEquivalent(*other.mColor) : !mColor && !other.mColor;
}

std::shared_ptr<VXRStroke> VXRStroke::copyWithZone() const
{
    auto copy = makeOfSameClass(mColor, mWidth, mCap, mJoin, mPattern ? mPattern->copyWithZone() : nullptr);
    copy->setMiterLimit(mMiterLimit);
    return copy; // the mask stays behind: it belongs to the owner of this stroke
}

std::shared_ptr<VXRStroke> VXRStroke::makeOfSameClass(std::shared_ptr<Color> color, float width, int cap,
    int join, std::shared_ptr<VXRStrokePattern> pattern) const
{
    return std::make_shared<VXRStroke>(std::move(color), width, cap, join, std::move(pattern));
}

bool VXRStroke::isOfReceiversClass(const Object& other) const
{
    return dynamic_cast<const VXRStroke*>(&other) != nullptr;
}

} // namespace vxr
