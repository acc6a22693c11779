#pragma once

#include <vxr/platform/graphics/path/PathStrokeRun.h>

namespace vxr {

/// Writes the outline of stroked runs.
///
/// The stroked area is the union of convex pieces: a quadrilateral for each segment, a wedge for each turn, a
/// cap for each end. All run in the same direction, so that under the nonzero rule none cancels another, and
/// pieces that share an edge are written as one outline: forth along the left side and back along the right.
/// On the inner side of a turn the outline goes through the vertex itself, which keeps the pieces whole
/// however sharp the turn and however short the segments.
class PathStroker {
public:
    PathStroker(const LineStyle&, double tolerance, Path& outline);

    void stroke(const StrokeRun&);

private:
    enum class Turn { Styled, Round };

    bool isSwept(const StrokeVertex& from, const StrokeVertex& to) const;
    void segment(const StrokeVertex& from, const StrokeVertex& to);
    void corner(const StrokeVertex&);
    void turn(Vec2 p, Vec2 direction, Turn);
    void addOffsets(Vec2 p);
    void addArc(std::vector<Vec2>& points, Vec2 center, Vec2 from, double angle) const;
    void addCap(std::vector<Vec2>& points, Vec2 p, Vec2 direction) const;
    void dot(Vec2 p);
    void finishOpen(const StrokeRun&);
    void write(const std::vector<Vec2>& points);

    const LineStyle& mStyle;
    double mRadius;
    double mMostTurn; ///< in radians: the longest step of an arc within the tolerance
    double mLeastCosine; ///< of the angle between a swept segment's tangents and its chord
    double mNegligible; ///< sine of a turn too small to be seen
    Path& mOutline;

    Vec2 mDirection; ///< across which the latest offsets lie
    std::vector<Vec2> mLeft, mRight; ///< both in the run's direction
};

} // namespace vxr
