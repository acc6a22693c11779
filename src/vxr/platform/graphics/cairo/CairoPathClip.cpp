#include <vxr/platform/graphics/cairo/CairoPathClip.h>

#include <vector>

namespace vxr {

namespace {

struct DevicePoint {
    double x, y;
};
using Polyline = std::vector<DevicePoint>;

DevicePoint between(DevicePoint a, DevicePoint b, double t)
{
    return { a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t };
}

/// Turns the sub-paths of a path into polylines in device space, one after the other.
class DeviceFlattener {
public:
    /// Curves that lie wholly on one side of `visible` are split `unseenDepth` times: not at all where
    /// only their ends matter, some times where their length does.
    DeviceFlattener(const cairo_matrix_t& matrix, const DeviceBox& visible, double tolerance, int unseenDepth)
        : mMatrix(matrix)
        , mVisible(visible)
        , mTolerance(tolerance)
        , mUnseenDepth(unseenDepth)
    {
    }

    /// Calls `take(polyline, closed)` for each sub-path whose coordinates are all finite.
    template <class Take> void walk(const Path& path, Take take)
    {
        struct Walk {
            DeviceFlattener& to;
            Take& take;

            void finish(bool closed)
            {
                if (to.mFinite && to.mLine.size() > 1)
                    take(to.mLine, closed);
            }
            void moveTo(Point p)
            {
                finish(false);
                to.mLine.clear();
                to.mFinite = true;
                lineTo(p);
            }
            void lineTo(Point p) { to.mLine.push_back(to.map(p)); }
            void curveTo(Point a, Point b, Point p) { to.add(to.map(a), to.map(b), to.map(p)); }
            void close()
            {
                finish(true);
                to.mLine.resize(std::min<std::size_t>(to.mLine.size(), 1)); // what follows starts there
            }
        } walk { *this, take };
        path.visit(walk);
        walk.finish(false);
    }

private:
    static constexpr int maxDepth = 64;

    DevicePoint map(Point p)
    {
        mFinite = mFinite && std::isfinite(p.x) && std::isfinite(p.y);
        return { mMatrix.xx * p.x + mMatrix.xy * p.y + mMatrix.x0,
            mMatrix.yx * p.x + mMatrix.yy * p.y + mMatrix.y0 };
    }

    void add(DevicePoint control1, DevicePoint control2, DevicePoint end)
    {
        if (!mFinite)
            return;
        if (mLine.empty())
            mLine.push_back(control1);
        split(mLine.back(), control1, control2, end, 0);
    }

    bool isOnOneSide(DevicePoint a, DevicePoint b, DevicePoint c, DevicePoint d) const
    {
        const auto [lowX, highX] = std::minmax({ a.x, b.x, c.x, d.x });
        const auto [lowY, highY] = std::minmax({ a.y, b.y, c.y, d.y });
        return highX < mVisible.x0 || lowX > mVisible.x1 || highY < mVisible.y0 || lowY > mVisible.y1;
    }

    // The control points' distance from the thirds of the chord bounds the curve's from the chord.
    bool isFlat(DevicePoint a, DevicePoint b, DevicePoint c, DevicePoint d) const
    {
        const double x1 = std::abs(3 * b.x - 2 * a.x - d.x), y1 = std::abs(3 * b.y - 2 * a.y - d.y);
        const double x2 = std::abs(3 * c.x - a.x - 2 * d.x), y2 = std::abs(3 * c.y - a.y - 2 * d.y);
        return std::max(x1, x2) + std::max(y1, y2) <= 4 * mTolerance;
    }

    void split(DevicePoint a, DevicePoint b, DevicePoint c, DevicePoint d, int depth)
    {
        const bool done = isOnOneSide(a, b, c, d) ? depth >= mUnseenDepth : depth >= maxDepth;
        if (done || isFlat(a, b, c, d)) {
            mLine.push_back(d);
            return;
        }
        const DevicePoint ab = between(a, b, 0.5), bc = between(b, c, 0.5), cd = between(c, d, 0.5);
        const DevicePoint abc = between(ab, bc, 0.5), bcd = between(bc, cd, 0.5);
        const DevicePoint middle = between(abc, bcd, 0.5);
        split(a, ab, abc, middle, depth + 1);
        split(middle, bcd, cd, d, depth + 1);
    }

    const cairo_matrix_t& mMatrix;
    const DeviceBox& mVisible;
    double mTolerance;
    int mUnseenDepth;
    Polyline mLine;
    bool mFinite = true;
};

/// Cuts a polygon off where `axis` exceeds `bound`, times `sign`. Edges that run along the cut enclose
/// nothing, so winding numbers on the kept side stay what they were.
void cutPolygon(Polyline& polygon, double DevicePoint::*axis, double bound, double sign, Polyline& scratch)
{
    scratch.clear();
    const auto isInside = [&](DevicePoint p) { return sign * p.*axis <= sign * bound; };
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const DevicePoint from = polygon[i], to = polygon[i + 1 == polygon.size() ? 0 : i + 1];
        const bool fromInside = isInside(from);
        if (fromInside)
            scratch.push_back(from);
        if (fromInside != isInside(to)) {
            DevicePoint crossing = between(from, to, (bound - from.*axis) / (to.*axis - from.*axis));
            crossing.*axis = bound;
            scratch.push_back(crossing);
        }
    }
    polygon.swap(scratch);
}

/// The part of a segment within a box, as a range of its parameter; none when `to` is below `from`. The
/// points at its ends lie on the box exactly, however far the segment goes.
struct VisibleRange {
    double from = 0, to = 1;
    DevicePoint first, last;

    VisibleRange(DevicePoint a, DevicePoint b, const DeviceBox& box)
        : first(a)
        , last(b)
    {
        cut(a, b, &DevicePoint::x, box.x0, box.x1);
        cut(a, b, &DevicePoint::y, box.y0, box.y1);
    }

    bool isEmpty() const { return to < from; }

private:
    void cut(DevicePoint a, DevicePoint b, double DevicePoint::*axis, double low, double high)
    {
        const double start = a.*axis, delta = b.*axis - start;
        if (delta == 0) {
            if (start < low || start > high)
                to = -1;
            return;
        }
        const double entry = delta > 0 ? low : high, exit = delta > 0 ? high : low;
        if (const double t = (entry - start) / delta; t > from) {
            from = t;
            first = between(a, b, t);
            first.*axis = entry;
        }
        if (const double t = (exit - start) / delta; t < to) {
            to = t;
            last = between(a, b, t);
            last.*axis = exit;
        }
    }
};

/// A connected stretch of a polyline that can be seen.
struct Piece {
    Polyline points;
    double distance = 0; ///< from the sub-path's start, in user space
};

class LinePieces {
public:
    LinePieces(const cairo_matrix_t& toDevice, const DeviceBox& visible)
        : mToUser(toDevice)
        , mVisible(visible)
    {
        cairo_matrix_invert(&mToUser);
    }

    std::vector<Piece> cut(const Polyline& line, bool closed)
    {
        std::vector<Piece> pieces;
        double travelled = 0;
        bool connected = false; // the last piece ends where the next segment begins
        const std::size_t segments = line.size() - (closed ? 0 : 1);
        for (std::size_t i = 0; i < segments; ++i) {
            const DevicePoint a = line[i], b = line[i + 1 == line.size() ? 0 : i + 1];
            double dx = b.x - a.x, dy = b.y - a.y;
            const VisibleRange range(a, b, mVisible);
            cairo_matrix_transform_distance(&mToUser, &dx, &dy);
            const double length = std::hypot(dx, dy);
            if (!range.isEmpty()) {
                if (!connected || range.from > 0)
                    pieces.push_back({ { range.first }, travelled + length * range.from });
                pieces.back().points.push_back(range.last);
            }
            connected = !range.isEmpty() && range.to >= 1;
            travelled += length;
        }
        return pieces;
    }

private:
    cairo_matrix_t mToUser;
    const DeviceBox& mVisible;
};

void appendPolyline(cairo_t* cr, const Polyline& line)
{
    cairo_move_to(cr, line[0].x, line[0].y);
    for (std::size_t i = 1; i < line.size(); ++i)
        cairo_line_to(cr, line[i].x, line[i].y);
}

bool samePlace(DevicePoint a, DevicePoint b) { return a.x == b.x && a.y == b.y; }

/// A closed sub-path that can be seen where it starts has a corner there and no ends.
void joinAtStart(cairo_t* cr, std::vector<Piece>& pieces, DevicePoint start)
{
    Polyline& first = pieces.front().points;
    Polyline& last = pieces.back().points;
    if (!samePlace(first.front(), start) || !samePlace(last.back(), start))
        return;
    if (pieces.size() == 1) {
        appendPolyline(cr, first);
        cairo_close_path(cr);
        pieces.clear();
        return;
    }
    last.insert(last.end(), first.begin() + 1, first.end());
    pieces.erase(pieces.begin());
}

void strokeDashedPieces(cairo_t* cr, const std::vector<Piece>& pieces, const cairo_matrix_t& toDevice)
{
    std::vector<double> dashes(static_cast<std::size_t>(cairo_get_dash_count(cr)));
    double phase = 0;
    cairo_get_dash(cr, dashes.data(), &phase);
    for (const Piece& piece : pieces) {
        cairo_identity_matrix(cr);
        appendPolyline(cr, piece.points);
        cairo_set_matrix(cr, &toDevice);
        cairo_set_dash(cr, dashes.data(), static_cast<int>(dashes.size()), phase + piece.distance);
        cairo_stroke(cr);
    }
    cairo_set_dash(cr, dashes.data(), static_cast<int>(dashes.size()), phase);
}

} // namespace

void appendClippedArea(
    cairo_t* cr, const Path& path, const cairo_matrix_t& toDevice, const DeviceBox& visible, double tolerance)
{
    Polyline polygon, scratch;
    DeviceFlattener flattener(toDevice, visible, tolerance, 0);
    flattener.walk(path, [&](const Polyline& line, bool) {
        polygon = line;
        cutPolygon(polygon, &DevicePoint::x, visible.x1, 1, scratch);
        cutPolygon(polygon, &DevicePoint::x, visible.x0, -1, scratch);
        cutPolygon(polygon, &DevicePoint::y, visible.y1, 1, scratch);
        cutPolygon(polygon, &DevicePoint::y, visible.y0, -1, scratch);
        if (polygon.size() < 3)
            return;
        appendPolyline(cr, polygon);
        cairo_close_path(cr);
    });
}

void strokeClippedLine(
    cairo_t* cr, const Path& path, const cairo_matrix_t& toDevice, const DeviceBox& visible, double tolerance)
{
    constexpr int unseenDepthOfDashes = 10;
    const bool dashed = cairo_get_dash_count(cr) > 0;
    DeviceFlattener flattener(toDevice, visible, tolerance, dashed ? unseenDepthOfDashes : 0);
    LinePieces cutter(toDevice, visible);
    cairo_new_path(cr);
    cairo_identity_matrix(cr);
    flattener.walk(path, [&](const Polyline& line, bool closed) {
        std::vector<Piece> pieces = cutter.cut(line, closed);
        if (pieces.empty())
            return;
        if (dashed)
            return strokeDashedPieces(cr, pieces, toDevice);
        if (closed)
            joinAtStart(cr, pieces, line.front());
        for (const Piece& piece : pieces)
            appendPolyline(cr, piece.points);
    });
    cairo_set_matrix(cr, &toDevice);
    if (!dashed)
        cairo_stroke(cr);
}

} // namespace vxr
