#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/path/PathStore.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

namespace vxr {

enum class WindingRule : std::uint8_t { NonZero = 0, EvenOdd = 1 };
enum class LineCap : std::uint8_t { Butt = 0, Round = 1, Square = 2 };
enum class LineJoin : std::uint8_t { Miter = 0, Round = 1, Bevel = 2 };

/// How an outline is stroked. Lengths are in the path's units.
struct LineStyle {
    float width = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    float miterLimit = 10;
    std::vector<float> dash {}; ///< alternating on and off lengths; empty means solid
    float dashPhase = 0;

    friend bool operator==(const LineStyle&, const LineStyle&) = default;
};

/// One element of a path: its kind and its points (1 for a move or line, 3 for a curve, 0 for a close).
struct PathElement {
    PathElementKind kind = PathElementKind::Close;
    std::array<Point, 3> points {};

    /// The current point after the element. Meaningless for a close.
    Point endPoint() const { return points[kind == PathElementKind::CurveTo ? 2 : 0]; }
};

/// Passes elements in order to `visitor`, by its operations `moveTo(p)`, `lineTo(p)`,
/// `curveTo(control1, control2, end)` and `close()`. `points` holds the points of all elements.
template <class Visitor>
void visitElements(std::span<const PathElementKind> kinds, const Point* points, Visitor&& visitor)
{
    for (const PathElementKind kind : kinds) {
        switch (kind) {
        case PathElementKind::MoveTo:
            visitor.moveTo(*points++);
            break;
        case PathElementKind::LineTo:
            visitor.lineTo(*points++);
            break;
        case PathElementKind::CurveTo:
            visitor.curveTo(points[0], points[1], points[2]);
            points += 3;
            break;
        case PathElementKind::Close:
            visitor.close();
            break;
        }
    }
}

/// Mutable outline of move, line, cubic curve and close elements, with the style used to stroke and fill
/// it. An object with identity: all holders see its changes.
///
/// Verbs and points are contiguous. NaN and infinite coordinates are stored as they are; a sub-path that
/// has any encloses nothing and draws nothing.
class VXR_EXPORT Path final : public Object {
public:
    static constexpr float defaultFlatness = 0.6f;

    Path();
    Path(const Path&);
    Path& operator=(const Path&);
    ~Path() override;

    static std::shared_ptr<Path> path(); ///< a new, empty path
    static std::shared_ptr<Path> pathWithRect(const Rect&);
    static std::shared_ptr<Path> pathWithOvalInRect(const Rect&);
    std::shared_ptr<Path> copy() const; ///< a new path with the same elements and style

    // Building. Without a current point, lineTo acts as moveTo, and a curve starts a sub-path at its first
    // control point.
    void moveTo(Point);
    void lineTo(Point);
    void curveTo(Point control1, Point control2, Point end);
    /// A following line or curve continues from the start. On an empty path the close draws nothing; it is
    /// kept as the only element until another is added.
    void close();
    void appendRect(const Rect&); ///< counter-clockwise with y up, starting at the origin corner; closed
    void appendOvalInRect(const Rect&); ///< four curves, starting at the middle of the right side; closed
    /// A closed sub-path of straight lines. Adds nothing if there are no points.
    void appendPolygon(std::span<const Point> vertices);
    void appendPath(const Path&); ///< elements only; the path may be appended to itself
    void removeAllPoints(); ///< the style stays
    void reserve(std::size_t elements); ///< for lines; a curve has three points
    void fit() { mElements.fit(); } ///< releases memory reserved for further elements

    // Elements.
    bool isEmpty() const { return kinds().empty(); }
    std::size_t elementCount() const { return kinds().size(); }
    /// In constant time. The first element is always a move, or a close that is the only element.
    PathElement elementAtIndex(std::size_t index) const;
    std::span<const PathElementKind> kinds() const { return mElements.kinds(); }
    std::span<const Point> points() const { return mElements.points(); } ///< all points in element order
    /// Visits all elements; see `visitElements`.
    template <class Visitor> void visit(Visitor&& visitor) const
    {
        visitElements(kinds(), points().data(), visitor);
    }
    /// After a close, the start of the sub-path. Empty if the path has no points.
    bool hasCurrentPoint() const { return !points().empty(); }
    Point currentPoint() const;

    // Geometry.
    /// Bounds of all finite points, control points included; the zero rectangle if there are none. Cached.
    Rect bounds() const;
    /// A copy whose curves are replaced by lines within `flatness`, as far as single precision allows. After
    /// 16 million lines each remaining curve becomes 8 lines at most.
    std::shared_ptr<Path> bezierPathByFlatteningPath() const;
    /// Whether `p` is inside by the path's winding rule; open sub-paths count as closed. Points on the
    /// outline may be either; NaN is outside.
    bool containsPoint(Point p) const;
    void transformUsingAffineTransform(const AffineTransform&); ///< in place; line style unchanged
    std::shared_ptr<Path> transformedBy(const AffineTransform&) const; ///< a transformed copy
    /// The area covered by stroking, as an outline for the nonzero rule. Dashes, caps, joins and the miter
    /// limit come from `style`, tangents from the exact curves. `tolerance` is in path units.
    std::shared_ptr<Path> strokedOutline(const LineStyle& style, float tolerance) const;

    // Style.
    const LineStyle& lineStyle() const;
    void setLineStyle(const LineStyle& style) { ownStyle() = style; }
    float lineWidth() const { return lineStyle().width; }
    void setLineWidth(float width) { ownStyle().width = width; }
    LineCap lineCap() const { return lineStyle().cap; }
    void setLineCap(LineCap cap) { ownStyle().cap = cap; }
    LineJoin lineJoin() const { return lineStyle().join; }
    void setLineJoin(LineJoin join) { ownStyle().join = join; }
    float miterLimit() const { return lineStyle().miterLimit; }
    void setMiterLimit(float limit) { ownStyle().miterLimit = limit; }
    /// `count` alternating on and off lengths; 0 means solid.
    void setLineDash(const float* lengths, int count, float phase);
    float flatness() const { return mFlatness; }
    void setFlatness(float flatness) { mFlatness = flatness; }
    WindingRule windingRule() const { return mWindingRule; }
    void setWindingRule(WindingRule rule) { mWindingRule = rule; }

    // Drawing into the current graphics context (see GraphicsContext) in the path's own style.
    void fill() const;
    void stroke() const;
    void addClip() const; ///< intersects the clip with the path's interior

    std::string description() const override;

private:
    void copyStyle(const Path&);
    LineStyle& ownStyle();
    void append(PathElementKind, std::initializer_list<Point>);

    PathStore mElements;
    std::unique_ptr<LineStyle> mStyle; ///< null for the default
    float mFlatness = defaultFlatness;
    WindingRule mWindingRule = WindingRule::NonZero;
    std::uint32_t mSubpathStart = 0; ///< index of the first point of the current sub-path

    // Bounds of the finite points among the first mMeasured points; points appended later are added on
    // demand.
    mutable std::uint32_t mMeasured = 0;
    mutable Point mLeast, mMost;
};

} // namespace vxr
