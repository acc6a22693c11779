#pragma once

#include <vxr/platform/graphics/path/ContourSink.h>

#include <cstddef>
#include <vector>

namespace vxr {

/// Writes the outline of a stroke, segment by segment.
///
/// The stroked area is the union of convex pieces: a quadrilateral for each segment, a wedge for each turn, a
/// cap for each end. All run in the same direction, so that under the nonzero rule none cancels another, and
/// pieces that share an edge are written as one contour: forth along the left side and back along the right.
/// On the inner side of a turn the outline goes through the vertex itself, which keeps the pieces whole
/// however sharp the turn and however short the segments. A long run is cut across into several contours,
/// which share the edge of the cut, so that memory does not grow with the run.
///
/// Directions are unit vectors along the outline itself: on a curve its tangents, not the chords of its
/// flattening.
class StrokeOutliner {
public:
    /// For a width that is positive and finite. Keeps the buffers of the stroke before.
    void reset(const LineStyle&, double tolerance, ContourSink&);

    /// Starts a run. Without a segment it is a dot, with no direction when `direction` is zero. The start of
    /// an `unfinished` run gets no cap at the end: the caller adds it, or leads another run into the start.
    void begin(Vec2 p, Vec2 direction, bool unfinished = false);
    /// Goes on to `to`. A `corner` takes the style's join; within a curve every turn is round.
    void segment(Vec2 to, Vec2 out, Vec2 in, bool corner);
    void end(); ///< with a cap
    void close(); ///< joins the run's end to its start, which lies in the same place
    /// Joins the run's end to the start of an unfinished one at `p`.
    void endInto(Vec2 p, Vec2 direction);
    /// The cap of an unfinished run.
    void addStartCap(Vec2 p, Vec2 direction);

private:
    enum class Turn { Styled, Round };

    static constexpr std::size_t longestPiece = 4096; ///< vertices on either side

    bool isSwept(Vec2 chord, Vec2 out, Vec2 in) const;
    void segmentAlongChord(Vec2 to, Vec2 out, Vec2 in);
    void corner(Vec2 out);
    void turn(Vec2 direction, Turn);
    void addOffsets(Vec2 p, Vec2 direction);
    void addArc(std::vector<Vec2>& points, Vec2 from, Vec2 to, bool toLeft) const;
    void addHalfCircle(std::vector<Vec2>& points, Vec2 p, Vec2 from) const;
    void addCap(std::vector<Vec2>& points, Vec2 p, Vec2 direction) const;
    void dot();
    void writePiece();
    void write(const std::vector<Vec2>& contour);

    // The style.
    LineCap mCap {};
    LineJoin mJoin {};
    double mMiterLimit = 0;
    double mRadius = 0;
    double mLeastCosine = 0; ///< squared, of the angle between a swept segment's tangents and its chord
    double mNegligible = 0; ///< sine of a turn too small to be seen
    double mStepCosine = 0, mStepSine = 0; ///< of the longest step of an arc within the tolerance
    int mHalfCircleSteps = 0;
    double mHalfCircleCosine = 0, mHalfCircleSine = 0;
    ContourSink* mSink = nullptr;
    std::size_t mWritten = 0; ///< vertices

    // The run.
    Vec2 mStart, mStartDirection;
    bool mUnfinished = false;
    bool mHasSegment = false;
    bool mCut = false; ///< a piece has been written
    Vec2 mPoint;
    Vec2 mArrival; ///< the outline's own direction at the point
    Vec2 mDirection; ///< across which the latest offsets lie
    std::vector<Vec2> mLeft, mRight; ///< both in the run's direction
};

/// Whether the line across the outline, moving from one vertex to the next, only moves forwards: its ends
/// at either vertex then span a quadrilateral that runs the right way round. Where the outline bends tighter
/// than the half width it doesn't. Nor may the tangents leave the chord by so much that the sides would lie
/// outside of the tolerance, as they do beside a control point that stands close to its end.
inline bool StrokeOutliner::isSwept(Vec2 chord, Vec2 out, Vec2 in) const
{
    const double alongOut = vxr::dot(chord, out), alongIn = vxr::dot(chord, in);
    const double spread = mRadius * std::abs(cross(out, in));
    if (!(alongOut > spread && alongIn > spread))
        return false;
    const double least = mLeastCosine * vxr::dot(chord, chord);
    return alongOut * alongOut >= least && alongIn * alongIn >= least;
}

inline void StrokeOutliner::addOffsets(Vec2 p, Vec2 direction)
{
    const Vec2 normal = leftNormal(direction) * mRadius;
    mLeft.push_back(p + normal);
    mRight.push_back(p - normal);
}

inline void StrokeOutliner::segment(Vec2 to, Vec2 out, Vec2 in, bool isCorner)
{
    if (isCorner && mHasSegment)
        corner(out);
    mHasSegment = true;
    if (isSwept(to - mPoint, out, in)) {
        if (!(out == mDirection))
            turn(out, Turn::Round);
        mPoint = to;
        mArrival = mDirection = in;
        addOffsets(to, in);
    } else {
        segmentAlongChord(to, out, in);
    }
    if (std::max(mLeft.size(), mRight.size()) >= longestPiece)
        writePiece();
}

} // namespace vxr
