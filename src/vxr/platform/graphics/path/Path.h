#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/AffineTransform.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace vxr {

enum class PathElementKind : std::uint8_t { MoveTo = 0, LineTo = 1, CurveTo = 2, Close = 3 };
enum class WindingRule : std::uint8_t { NonZero = 0, EvenOdd = 1 };
enum class LineCap : std::uint8_t { Butt = 0, Round = 1, Square = 2 };
enum class LineJoin : std::uint8_t { Miter = 0, Round = 1, Bevel = 2 };

/// How an outline is stroked. Lengths are in the path's own units.
struct LineStyle {
    float width = 1;
    LineCap cap = LineCap::Butt;
    LineJoin join = LineJoin::Miter;
    float miterLimit = 10;
    std::vector<float> dash {}; ///< on and off lengths in turn; empty is solid
    float dashPhase = 0;

    friend bool operator==(const LineStyle&, const LineStyle&) = default;
};

/// One element of a path: its kind and its points (1, 1, 3 or none).
struct PathElement {
    PathElementKind kind = PathElementKind::Close;
    std::array<Point, 3> points {};

    /// Where the pen stands after the element. Meaningless for a close.
    Point endPoint() const { return points[kind == PathElementKind::CurveTo ? 2 : 0]; }
};

/// Hands elements to `visitor` in order, by its operations `moveTo(p)`, `lineTo(p)`,
/// `curveTo(control1, control2, end)` and `close()`. `points` are the points of all of them.
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

/// Mutable outline of move, line, cubic curve and close elements, with the style in which it is stroked
/// and filled. An object with identity: whoever holds it sees changes made by others.
///
/// Verbs and points are contiguous. NaN and infinite coordinates are stored as they are; a sub-path that has
/// some holds nothing and draws nothing.
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

    // Building. A line or curve without a current point starts a sub-path at its own first point; of the line
    // that move is all there is.
    void moveTo(Point);
    void lineTo(Point);
    void curveTo(Point control1, Point control2, Point end);
    /// A line or curve that follows continues from the start. On an empty path the close draws nothing and
    /// is kept until something else comes.
    void close();
    void appendRect(const Rect&); ///< counter-clockwise in y-up terms from the origin, closed
    void appendOvalInRect(const Rect&); ///< four curves from the middle of the right side, closed
    /// A closed sub-path of straight lines; nothing for no points.
    void appendPolygon(std::span<const Point> vertices);
    void appendPath(const Path&); ///< the elements only; `*this` is allowed
    void removeAllPoints(); ///< keeps the style
    void reserve(std::size_t elements);

    // Elements.
    bool isEmpty() const { return mKinds.empty(); }
    std::size_t elementCount() const { return mKinds.size(); }
    /// In constant time. The first element is always a move, or a close that stands alone.
    PathElement elementAtIndex(std::size_t index) const;
    std::span<const PathElementKind> kinds() const { return mKinds; }
    std::span<const Point> points() const { return mPoints; } ///< all points in element order
    /// Walks all elements; see `visitElements`.
    template <class Visitor> void visit(Visitor&& visitor) const
    {
        visitElements(mKinds, mPoints.data(), visitor);
    }
    /// Where the pen stands; the sub-path's start after a close. None without any point.
    bool hasCurrentPoint() const { return !mPoints.empty(); }
    Point currentPoint() const;

    // Geometry.
    /// Bounds of all finite points, control points included; the zero rectangle when there are none. Cached.
    Rect bounds() const;
    /// A copy whose curves are lines that stay within `flatness` of them, as far as single precision can
    /// say it. Of the curves after 16 million lines each gives 8 at most.
    std::shared_ptr<Path> bezierPathByFlatteningPath() const;
    /// Whether `p` lies inside by the path's winding rule, open sub-paths closed. Points on the outline
    /// may go either way; NaN is outside.
    bool containsPoint(Point p) const;
    void transformUsingAffineTransform(const AffineTransform&); ///< in place; line style unchanged
    std::shared_ptr<Path> transformedBy(const AffineTransform&) const; ///< a transformed copy
    /// The area that stroking covers, as an outline for the nonzero rule: dashes, caps, joins and the
    /// miter limit taken from `style`, tangents from the curves themselves. `tolerance` is in path units.
    std::shared_ptr<Path> strokedOutline(const LineStyle& style, float tolerance) const;

    // Style.
    const LineStyle& lineStyle() const { return mStyle; }
    void setLineStyle(const LineStyle& style) { mStyle = style; }
    float lineWidth() const { return mStyle.width; }
    void setLineWidth(float width) { mStyle.width = width; }
    LineCap lineCap() const { return mStyle.cap; }
    void setLineCap(LineCap cap) { mStyle.cap = cap; }
    LineJoin lineJoin() const { return mStyle.join; }
    void setLineJoin(LineJoin join) { mStyle.join = join; }
    float miterLimit() const { return mStyle.miterLimit; }
    void setMiterLimit(float limit) { mStyle.miterLimit = limit; }
    /// `count` on and off lengths; a count of 0 is solid.
    void setLineDash(const float* lengths, int count, float phase);
    float flatness() const { return mFlatness; }
    void setFlatness(float flatness) { mFlatness = flatness; }
    WindingRule windingRule() const { return mWindingRule; }
    void setWindingRule(WindingRule rule) { mWindingRule = rule; }

    // Drawing into the current graphics context (see GraphicsContext), with the path's own style.
    void fill() const;
    void stroke() const;
    void addClip() const; ///< intersects the clip with the path's inside

    std::string description() const override;

private:
    std::vector<PathElementKind> mKinds;
    std::vector<Point> mPoints;
    LineStyle mStyle;
    float mFlatness = defaultFlatness;
    WindingRule mWindingRule = WindingRule::NonZero;
    void append(PathElementKind, std::initializer_list<Point>);

    static constexpr std::size_t indexStride = 16;
    std::vector<std::size_t> mPointIndex; ///< where the points of every 16th element start in mPoints
    std::size_t mSubpathStart = 0; ///< index in mPoints of the current sub-path's first point

    // Bounds of the finite points among the first mMeasured ones; what was appended since is added when
    // asked.
    mutable std::size_t mMeasured = 0;
    mutable Point mLeast, mMost;
};

} // namespace vxr
