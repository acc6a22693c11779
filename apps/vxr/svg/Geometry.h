#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace app::svg {

/// Position or offset. The import layer works in double precision and rounds to the model's single
/// precision once, at the end.
struct Vec {
    double x = 0;
    double y = 0;

    friend constexpr bool operator==(const Vec&, const Vec&) = default;
    friend constexpr Vec operator+(Vec a, Vec b) { return { a.x + b.x, a.y + b.y }; }
    friend constexpr Vec operator-(Vec a, Vec b) { return { a.x - b.x, a.y - b.y }; }
    friend constexpr Vec operator*(Vec a, double k) { return { a.x * k, a.y * k }; }
};

/// Axis-aligned box, empty until `include` grows it.
struct Box {
    double minX = std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    bool isNone() const { return !(minX <= maxX && minY <= maxY); }
    double width() const { return maxX - minX; }
    double height() const { return maxY - minY; }
    Box grown(double by) const { return { minX - by, minY - by, maxX + by, maxY + by }; }
    void include(Vec p)
    {
        minX = std::min(minX, p.x);
        minY = std::min(minY, p.y);
        maxX = std::max(maxX, p.x);
        maxY = std::max(maxY, p.y);
    }
    void include(const Box& other)
    {
        if (other.isNone())
            return;
        include(Vec { other.minX, other.minY });
        include(Vec { other.maxX, other.maxY });
    }
};

/// The map x' = a x + c y + e, y' = b x + d y + f.
struct Matrix {
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    static Matrix translation(double dx, double dy) { return { 1, 0, 0, 1, dx, dy }; }
    static Matrix scaling(double sx, double sy) { return { sx, 0, 0, sy, 0, 0 }; }
    static Matrix rotation(double radians);

    Vec map(Vec p) const { return { a * p.x + c * p.y + e, b * p.x + d * p.y + f }; }
    double determinant() const { return a * d - b * c; }
    /// False for singular matrices and those with components that are not finite.
    bool isInvertible() const;
    Matrix inverse() const; ///< the identity for a singular matrix
    /// Whether the map is a rotation, reflection and uniform scale.
    bool isSimilarity() const;
    double largestScale() const; ///< the larger singular value

    friend bool operator==(const Matrix&, const Matrix&) = default;
};

/// `inner` applied first.
Matrix operator*(const Matrix& outer, const Matrix& inner);

enum class Verb : std::uint8_t { Move, Line, Cubic, Close };

/// A path of moves, lines, cubic curves and closes in absolute coordinates.
class Outline {
public:
    void moveTo(Vec);
    void lineTo(Vec);
    void cubicTo(Vec control1, Vec control2, Vec end);
    /// The elliptical arc from the current point as SVG's appendix describes it: radii too small are
    /// grown, a missing radius gives a line.
    void arcTo(Vec radii, double xAxisDegrees, bool largeArc, bool sweep, Vec end);
    void close();
    void append(const Outline&);

    bool isEmpty() const { return mVerbs.empty(); }
    const std::vector<Verb>& verbs() const { return mVerbs; }
    const std::vector<Vec>& points() const { return mPoints; }
    /// Whether the verb at `index` ends between two pieces of one arc, where the drawing has no vertex.
    bool endsInsideArc(std::size_t index) const;
    Vec currentPoint() const { return mCurrent; }

    /// Tight bounds of the drawn segments after `matrix`: extremes of curves, not their control points.
    Box bounds(const Matrix& matrix = {}) const;
    /// Twice the signed area of the polygon through all end points, sub-paths closed: tells which way
    /// round an outline runs.
    double signedArea() const;
    Outline transformed(const Matrix&) const;
    Outline reversed() const; ///< with each sub-path's direction reversed
    /// Sub-paths of zero length become lines of that length along the x axis, so that renderers draw their
    /// caps.
    Outline withDotsOfLength(double length) const;

    static Outline rectangle(double x, double y, double width, double height, double rx, double ry);
    static Outline ellipse(Vec center, double rx, double ry);

private:
    std::vector<Verb> mVerbs;
    std::vector<Vec> mPoints;
    std::vector<std::size_t> mInsideArc; ///< ascending indices of verbs
    Vec mCurrent;
    Vec mStart;
};

} // namespace app::svg
