#include <vxr/renderables/VXRShape.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/Context.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>
#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>
#include <cmath>
#include <typeinfo>

namespace vxr {

VXRShape::VXRShape()
    : mFill(Color::whiteColor())
    , mStroke(VXRStroke::stroke())
{
}

VXRShape::~VXRShape()
{
    if (mFill)
        mFill->setOwner(nullptr);
}

// Path.

void VXRShape::setPathPreserveOffset(std::shared_ptr<Path> newPath, bool preserve)
{
    if (!newPath)
        raiseAssertion("VXRShape", 81, "path must be non-nil");
    autoErase();
    mPath = std::move(newPath);
    mPath->fit(); // a shape's path seldom grows
    const Point origin = mPath->bounds().origin;
    mPath->transformUsingAffineTransform(AffineTransform::makeTranslation(-origin.x, -origin.y));
    if (preserve)
        offsetTo(origin);
    setNaturalSize(mPath->bounds().size);
    invalidateBoundingBox();
    autoInvalidate();
}

std::shared_ptr<Path> VXRShape::transformedPath() const
{
    return mPath ? mPath->transformedBy(transform()) : Path::path();
}

// Styles.

void VXRShape::setFill(std::shared_ptr<VXRShapePainter> newFill)
{
    if (mFill)
        mFill->setOwner(nullptr);
    mFill = std::move(newFill);
    if (mFill)
        mFill->setOwner(this);
    autoInvalidate();
}

void VXRShape::setStroke(std::shared_ptr<VXRStroke> newStroke)
{
    autoErase();
    mStroke = std::move(newStroke);
    invalidateBoundingBox();
    autoInvalidate();
}

void VXRShape::setWantsInteriorStroke(bool flag)
{
    if (flag == mInteriorStroke)
        return;
    // The cached bounds survive this change.
    autoErase();
    mInteriorStroke = flag;
    autoInvalidate();
}

std::vector<VXRRenderableStyle> VXRShape::styles() const
{
    std::vector<VXRRenderableStyle> styles;
    if (mFill)
        styles.emplace_back(mFill);
    if (mStroke)
        styles.emplace_back(mStroke);
    return styles;
}

float VXRShape::strokeWidth() const { return mStroke ? mStroke->width() : 0; }

void VXRShape::setDynamicallyTransforming(bool flag)
{
    VXRRenderable::setDynamicallyTransforming(flag);
    if (mFill)
        mFill->setDynamicallyTransforming(flag);
}

void VXRShape::addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo& info)
{
    if (mFill)
        mFill->addBitmapsToRenderingQualityInfoShape(info, *this);
}

// Bounds.

Rect VXRShape::computeAlignmentBounds() const
{
    if (!mPath)
        return {};
    const auto path = transformedPath();
    Rect bounds = path->bounds();
    if (mStroke && !mInteriorStroke && mStroke->shouldRender()) {
        bounds = unionRect(bounds, mStroke->boundsOfStrokedPath(*path));
    }
    const auto& [head, tail] = lineEnds();
    if ((tail || head) && pathIsOpen()) {
        if (tail)
            bounds = unionRect(
                bounds, alignmentBoundsForLineEndAtPointAngle(tail.get(), tailPoint(), tailAngle()));
        if (head)
            bounds = unionRect(
                bounds, alignmentBoundsForLineEndAtPointAngle(head.get(), headPoint(), headAngle()));
    }
    return bounds;
}

float VXRShape::computePaintedOutset() const
{
    // A square cap's corner reaches half a diagonal from the line's end; the bounds count half a width.
    const bool square = mStroke && mStroke->cap() == static_cast<int>(LineCap::Square) && !mInteriorStroke
        && mStroke->shouldRender();
    return square ? mStroke->width() * 0.20710678f : 0;
}

// Drawing.

void VXRShape::clip() const { transformedPath()->addClip(); }

void VXRShape::renderIntoContext(Context& context)
{
    // Every part of a shape casts the shadow.
    if (renderingMode() == VXRRenderingModeShadowless)
        return;
    const StateSaver saved(context);
    if (mFill)
        mFill->paintShape(*this);
    if (mStroke)
        mStroke->paintShape(*this);
    const auto& [head, tail] = lineEnds();
    if ((tail || head) && pathIsOpen()) {
        if (tail)
            renderLineEndStyleAtPointAngle(tail.get(), tailPoint(), tailAngle());
        if (head)
            renderLineEndStyleAtPointAngle(head.get(), headPoint(), headAngle());
    }
    if (mStrokeWhenBlackAndWhite && canvas() && canvas()->rendersBlackAndWhite()
        && !(mStroke && mStroke->shouldRender())) {
        const auto path = transformedPath();
        path->setLineWidth(1);
        VXRSetColor(*Color::blackColor());
        path->stroke();
    }
}

// Hits.

bool VXRShape::containsPoint(Point p) const
{
    const auto local = localPointForHitTest(p);
    if (!local || !mPath)
        return false;
    const bool closed = effectivelyClosed(*mPath);
    if ((mFill || closed) && mPath->containsPoint(*local))
        return true;
    if (closed)
        return false;
    // Thin lines have a grace of two units on each side. In local units: it scales with the transform.
    float width = strokeWidth();
    if (width < 5)
        width += 4;
    const auto line = mPath->copy();
    if (mStroke)
        mStroke->applyToBezierPathInsideStroke(*line, false);
    line->setLineWidth(width);
    return outlineStrokeContainsPoint(*line, *local);
}

Rect VXRShape::hitBounds() const
{
    const Rect erasable = erasableBounds();
    if (!mPath || effectivelyClosed(*mPath))
        return erasable;
    // The line that is hit may be wider than what is drawn, or drawn only within the path; corners reach
    // further.
    const float width = strokeWidth(), miter = std::max(mStroke ? mStroke->miterLimit() : 0, 10.0f);
    const AffineTransform t = transform();
    const float unit = std::max(std::abs(t.m11) + std::abs(t.m21), std::abs(t.m12) + std::abs(t.m22));
    const float reach = (width < 5 ? (width + 4) * 0.5f : width * 0.5f) * miter * unit;
    return insetRect(erasable, -reach, -reach);
}

/// A class of its own may do as it likes.
bool VXRShape::tellsOfChangedBounds() const
{
    const std::type_info& type = typeid(*this);
    return type == typeid(VXRShape) || type == typeid(VXRStar) || type == typeid(VXRRegularPolygon);
}

namespace {

/// Looks for a segment of a flat path that meets a rectangle.
struct OutlineMeetsRect {
    Rect rect;
    bool found = false;
    Point current {}, start {};

    void moveTo(Point p) { current = start = p; }
    void lineTo(Point p)
    {
        found = found || VXRLineIntersectsRect(current, p, rect);
        current = p;
    }
    void curveTo(Point, Point, Point)
    {
        VXULog_Fn(
            VXULogLevelWarning, "VXRShape.cpp", "Warning: VXRShape got illegal NSCurveToBezierPathElement");
    }
    void close() { found = found || VXRLineIntersectsRect(current, start, rect); }
};

} // namespace

bool VXRShape::intersectsRect(const Rect& rect) const
{
    if (!rectsIntersect(rect, geometricBounds()))
        return false;
    OutlineMeetsRect outline { rect };
    transformedPath()->bezierPathByFlatteningPath()->visit(outline);
    return outline.found;
}

// Line ends of an open shape.

const VXRShape::LineEnds& VXRShape::lineEnds() const
{
    static const LineEnds none;
    return mLineEnds ? *mLineEnds : none;
}

void VXRShape::setLineEnd(std::shared_ptr<VXRLineEnd> LineEnds::*which, std::shared_ptr<VXRLineEnd> lineEnd)
{
    autoErase();
    if (!mLineEnds && lineEnd)
        mLineEnds = std::make_unique<LineEnds>();
    if (mLineEnds)
        (*mLineEnds).*which = std::move(lineEnd);
    invalidateBoundingBox();
    autoInvalidate();
}

void VXRShape::setHeadLineEnd(std::shared_ptr<VXRLineEnd> lineEnd)
{
    setLineEnd(&LineEnds::head, std::move(lineEnd));
}

void VXRShape::setTailLineEnd(std::shared_ptr<VXRLineEnd> lineEnd)
{
    setLineEnd(&LineEnds::tail, std::move(lineEnd));
}

bool VXRShape::pathIsOpen() const { return mPath && isOpen(*mPath); }

namespace {

constexpr double quarterTurn = 1.5707963267948966;

/// From an end back to its control point, and a quarter turn on to the decoration's own direction.
float outwardAngle(Point control, Point end)
{
    return static_cast<float>(VXRAngleFromDelta(control.x - end.x, control.y - end.y) + quarterTurn);
}

/// The segments of the last run; one of no length at the origin for a path that has none.
std::vector<VXRPathSegment> lastRun(const VXRShape& shape)
{
    auto runs = pathAsSegments(*shape.transformedPath());
    return runs.empty() ? std::vector<VXRPathSegment>(1) : std::move(runs.back().segments);
}

} // namespace

Point VXRShape::headPoint() const { return lastRun(*this).back().end; }

float VXRShape::headAngle() const
{
    const VXRPathSegment last = lastRun(*this).back();
    return outwardAngle(last.in, last.end);
}

Point VXRShape::tailPoint() const { return lastRun(*this).front().start; }

float VXRShape::tailAngle() const
{
    const VXRPathSegment first = lastRun(*this).front();
    return outwardAngle(first.out, first.start);
}

/// The decoration's outline where it is drawn. Thick strokes have decorations that grow at 60 % of the
/// width's growth.
std::shared_ptr<Path> VXRShape::placedPath(const VXRLineEnd& lineEnd, Point p, float radians) const
{
    const float width = strokeWidth();
    const float scale = width <= 1 ? width : static_cast<float>((double { width } - 1) * 0.6 + 1);
    AffineTransform placement;
    placement.translate(p.x, p.y).scale(scale).rotate(radians);
    placement.translate(-lineEnd.endPoint().x, -lineEnd.endPoint().y);
    return lineEnd.path() ? lineEnd.path()->transformedBy(placement) : Path::path();
}

void VXRShape::renderLineEndStyleAtPointAngle(const VXRLineEnd* lineEnd, Point p, float radians) const
{
    if (!lineEnd)
        return;
    const auto path = placedPath(*lineEnd, p, radians);
    if (lineEnd->isFilled()) {
        path->fill();
        return;
    }
    path->setLineWidth(strokeWidth());
    path->setLineJoin(LineJoin::Round);
    path->stroke();
}

Rect VXRShape::alignmentBoundsForLineEndAtPointAngle(const VXRLineEnd* lineEnd, Point p, float radians) const
{
    if (!lineEnd)
        return {};
    const Rect bounds = placedPath(*lineEnd, p, radians)->bounds();
    if (lineEnd->isFilled())
        return bounds;
    const float half = strokeWidth() * 0.5f;
    return insetRect(bounds, -half, -half);
}

} // namespace vxr
