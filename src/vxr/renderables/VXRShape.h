#pragma once

#include <vxr/platform/graphics/path/Path.h>
#include <vxr/protocols/VXRPaintedShape.h>
#include <vxr/renderables/VXRRenderable.h>

#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace vxr {

class VXRLineEnd;
class VXRShapePainter;
class VXRStroke;

/// A style of a shape: its fill or its stroke.
using VXRRenderableStyle = std::variant<std::shared_ptr<VXRShapePainter>, std::shared_ptr<VXRStroke>>;

/// The renderable for a vector path: filled, outlined, with line ends where the path is open.
///
/// The path's bounds start at (0, 0) and have the natural size, so the placement of the outline lives in
/// the transform alone. A new shape is white with the default stroke and has no path.
class VXR_EXPORT VXRShape : public VXRRenderable, public VXRPaintedShape {
public:
    // Each makes a `Class`, which has a default constructor.
    template <class Class = VXRShape>
    static std::shared_ptr<Class> shapeWithBezierPath(std::shared_ptr<Path> path)
    {
        auto shape = std::make_shared<Class>();
        shape->setPath(std::move(path));
        return shape;
    }
    template <class Class = VXRShape> static std::shared_ptr<Class> shapeWithRect(const Rect& rect)
    {
        return shapeWithBezierPath<Class>(Path::pathWithRect(rect));
    }
    template <class Class = VXRShape> static std::shared_ptr<Class> shapeWithOvalInRect(const Rect& rect)
    {
        return shapeWithBezierPath<Class>(Path::pathWithOvalInRect(rect));
    }

    VXRShape();
    ~VXRShape() override; ///< the fill is told that it has no owner any more

    // Path.
    std::shared_ptr<Path> path() const override { return mPath; }
    void setPath(std::shared_ptr<Path> path) { setPathPreserveOffset(std::move(path), true); }
    /// Takes the path object itself and moves it to the origin: whoever keeps it sees it moved. With
    /// `preserve` the outline stays where it was given on the canvas, otherwise the transform is kept.
    /// None is a programming error.
    void setPathPreserveOffset(std::shared_ptr<Path> path, bool preserve);
    std::shared_ptr<Path> transformedPath() const override; ///< empty while the shape has no path

    // Styles.
    const std::shared_ptr<VXRShapePainter>& fill() const { return mFill; }
    void setFill(std::shared_ptr<VXRShapePainter>); ///< may be none; never changes the covered area
    const std::shared_ptr<VXRStroke>& stroke() const { return mStroke; }
    void setStroke(std::shared_ptr<VXRStroke>); ///< may be none
    bool wantsInteriorStroke() const override { return mInteriorStroke; }
    void setWantsInteriorStroke(bool); ///< the stroke lies inside the path instead of over it
    bool alwaysStrokesWhenBlackAndWhite() const { return mStrokeWhenBlackAndWhite; }
    /// In black and white, a hairline where the stroke itself paints nothing. A plain store.
    void setAlwaysStrokesWhenBlackAndWhite(bool flag) { mStrokeWhenBlackAndWhite = flag; }
    std::vector<VXRRenderableStyle> styles() const; ///< those that there are, the fill first

    // Line ends: the head sits at the end of an open path, the tail at its start.
    const std::shared_ptr<VXRLineEnd>& headLineEnd() const { return lineEnds().head; }
    void setHeadLineEnd(std::shared_ptr<VXRLineEnd>); ///< may be none
    const std::shared_ptr<VXRLineEnd>& tailLineEnd() const { return lineEnds().tail; }
    void setTailLineEnd(std::shared_ptr<VXRLineEnd>); ///< may be none
    bool pathIsOpen() const; ///< one sub-path whose ends differ; without one line ends are ignored
    Point headPoint() const;
    float headAngle() const; ///< radians that turn a line end's +y tip away from the path
    Point tailPoint() const;
    float tailAngle() const;
    /// In the current context's present colour. None draws nothing and covers the zero rectangle.
    void renderLineEndStyleAtPointAngle(const VXRLineEnd*, Point, float radians) const;
    Rect alignmentBoundsForLineEndAtPointAngle(const VXRLineEnd*, Point, float radians) const;

    void clip() const override; ///< of the current context to the transformed path

    // The renderable's operations.
    Rect computeAlignmentBounds() const override; ///< with stroke and line ends
    void renderIntoContext(Context&) override;
    /// On the fill or outline; on an open line within half its width, two local units more for a line
    /// less than 5 wide.
    bool containsPoint(Point) const override;
    /// Whether the outline meets the rectangle. The inside does not count: selection by rectangle takes
    /// what it crosses or encloses, not what it lies within.
    bool intersectsRect(const Rect&) const override;
    Rect hitBounds() const override; ///< with the grace of thin lines
    bool tellsOfChangedBounds() const override;
    void setDynamicallyTransforming(bool) override;
    void addBitmapsToRenderingQualityInfo(VXRBitmapRenderingQualityInfo&) override;

    // Asked by painters and by layers alike.
    VXRCanvasRole* canvas() const override { return VXRRenderable::canvas(); }
    AffineTransform transform() const override { return VXRRenderable::transform(); }
    Size naturalSize() const override { return VXRRenderable::naturalSize(); }
    Point center() const override { return VXRRenderable::center(); }
    float angle() const override { return VXRRenderable::angle(); }
    Rect alignmentBounds() const override { return VXRRenderable::alignmentBounds(); }
    std::optional<bool> axisAlignment() const override { return isAxisAligned(); }

protected:
    float computePaintedOutset() const override; ///< the corners of square caps
    /// The outline of a line end where it is drawn.
    std::shared_ptr<Path> placedPath(const VXRLineEnd&, Point, float radians) const;
    float strokeWidth() const; ///< 0 without a stroke

private:
    struct LineEnds {
        std::shared_ptr<VXRLineEnd> head, tail;
    };
    const LineEnds& lineEnds() const;
    void setLineEnd(std::shared_ptr<VXRLineEnd> LineEnds::*which, std::shared_ptr<VXRLineEnd> lineEnd);

    std::shared_ptr<Path> mPath;
    std::shared_ptr<VXRShapePainter> mFill;
    std::shared_ptr<VXRStroke> mStroke;
    bool mInteriorStroke = false;
    bool mStrokeWhenBlackAndWhite = false;
    std::unique_ptr<LineEnds> mLineEnds; ///< most shapes have none
};

} // namespace vxr
