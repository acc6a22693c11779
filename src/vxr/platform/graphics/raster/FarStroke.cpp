#include <vxr/platform/graphics/raster/FarStroke.h>

#include <vector>

namespace vxr {

namespace {

constexpr double farthest = 40000; ///< pixels from 0; bitmaps end at 32767
constexpr double cutFrom = 1 << 17; ///< what stays nearer is stroked as it is
constexpr int mostDepth = 64; ///< of halvings of a curve
constexpr int unseenDepth = 10; ///< where only its length counts

Vec2 between(Vec2 a, Vec2 b, double t) { return a + (b - a) * t; }

/// The part of a segment within a square around 0, as a range of its parameter. The points at its ends lie on
/// the square exactly, however far the segment goes.
struct VisibleRange {
    double from = 0, to = 1;
    Vec2 first, last;

    VisibleRange(Vec2 a, Vec2 b, double bound)
        : first(a)
        , last(b)
    {
        cut(a, b, &Vec2::x, bound);
        cut(a, b, &Vec2::y, bound);
    }
    bool isEmpty() const { return to < from; }

private:
    void cut(Vec2 a, Vec2 b, double Vec2::*axis, double bound)
    {
        const double start = a.*axis, delta = b.*axis - start;
        if (delta == 0) {
            if (std::abs(start) > bound)
                to = -1;
            return;
        }
        const double entry = delta > 0 ? -bound : bound;
        if (const double t = (entry - start) / delta; t > from) {
            from = t;
            first = between(a, b, t);
            first.*axis = entry;
        }
        if (const double t = (-entry - start) / delta; t < to) {
            to = t;
            last = between(a, b, t);
            last.*axis = -entry;
        }
    }
};

struct Piece {
    std::vector<Vec2> points; ///< device space
    double distance = 0;
};

/// Gathers the pieces of one sub-path after another.
class Cutter {
public:
    Cutter(const DeviceMatrix& toDevice, double bound, double tolerance,
        const std::function<void(const Path&, double)>& take)
        : mToDevice(toDevice)
        , mToUser(toDevice.inverted())
        , mBound(bound)
        , mTolerance(tolerance)
        , mTake(take)
    {
    }

    void move(Vec2 p)
    {
        finish();
        mPen = mStart = mToDevice.map(p);
    }
    void line(Vec2, Vec2 to) { segmentTo(mToDevice.map(to)); }
    void curve(const Cubic& c)
    {
        split(mPen, mToDevice.map(c.control1), mToDevice.map(c.control2), mToDevice.map(c.end), 0);
    }
    void close(Vec2, Vec2)
    {
        segmentTo(mStart);
        joinAtStart();
        finish();
    }
    void finish()
    {
        for (const Piece& piece : mPieces)
            take(piece, false);
        mPieces.clear();
        mConnected = false;
        mTravelled = 0;
        mPen = mStart;
    }

private:
    void segmentTo(Vec2 to)
    {
        const Vec2 from = mPen, step = to - from;
        const VisibleRange range(from, to, mBound);
        const double x = mToUser.xx * step.x + mToUser.xy * step.y;
        const double y = mToUser.yx * step.x + mToUser.yy * step.y;
        const double length = std::hypot(x, y);
        if (!range.isEmpty()) {
            if (!mConnected || range.from > 0)
                mPieces.push_back({ { range.first }, mTravelled + length * range.from });
            mPieces.back().points.push_back(range.last);
        }
        mConnected = !range.isEmpty() && range.to >= 1;
        mTravelled += length;
        mPen = to;
    }

    void split(Vec2 a, Vec2 b, Vec2 c, Vec2 d, int depth)
    {
        const auto [lowX, highX] = std::minmax({ a.x, b.x, c.x, d.x });
        const auto [lowY, highY] = std::minmax({ a.y, b.y, c.y, d.y });
        const bool isSeen = highX >= -mBound && lowX <= mBound && highY >= -mBound && lowY <= mBound;
        // The control points' distance from the thirds of the chord bounds the curve's from the chord.
        const Vec2 u = b * 3 - a * 2 - d, v = c * 3 - a - d * 2;
        const bool isFlat = std::max(std::abs(u.x), std::abs(v.x)) + std::max(std::abs(u.y), std::abs(v.y))
            <= 4 * mTolerance;
        if (isFlat || depth >= (isSeen ? mostDepth : unseenDepth))
            return segmentTo(d);
        const auto [first, second] = Cubic { a, b, c, d }.halves();
        split(first.start, first.control1, first.control2, first.end, depth + 1);
        split(second.start, second.control1, second.control2, second.end, depth + 1);
    }

    /// A closed sub-path that can be seen where it starts has a corner there and no ends.
    void joinAtStart()
    {
        if (mPieces.empty() || mPieces.front().points.front() != mStart
            || mPieces.back().points.back() != mStart)
            return;
        if (mPieces.size() == 1) {
            take(mPieces.front(), true);
            mPieces.clear();
            return;
        }
        auto& first = mPieces.front().points;
        auto& last = mPieces.back().points;
        last.insert(last.end(), first.begin() + 1, first.end());
        mPieces.erase(mPieces.begin());
    }

    void take(const Piece& piece, bool closed)
    {
        Path path;
        path.moveTo(mToUser.map(piece.points.front()).point());
        for (std::size_t i = 1; i < piece.points.size(); ++i)
            path.lineTo(mToUser.map(piece.points[i]).point());
        if (closed)
            path.close();
        mTake(path, piece.distance);
    }

    DeviceMatrix mToDevice, mToUser;
    double mBound, mTolerance;
    const std::function<void(const Path&, double)>& mTake;
    std::vector<Piece> mPieces;
    Vec2 mStart, mPen;
    double mTravelled = 0;
    bool mConnected = false; ///< the last piece ends where the next segment begins
};

} // namespace

bool FarStroke::isFar(const Path& path, const DeviceMatrix& m)
{
    for (const Point p : path.points()) {
        const Vec2 mapped = m.map(p);
        if (std::abs(mapped.x) > cutFrom || std::abs(mapped.y) > cutFrom)
            return true;
    }
    return false;
}

void FarStroke::cut(const Path& path, const DeviceMatrix& toDevice, double reach, double tolerance,
    const std::function<void(const Path&, double)>& take)
{
    Cutter cutter(toDevice, farthest + reach, tolerance, take);
    walkFinite(path, cutter);
    cutter.finish();
}

} // namespace vxr
