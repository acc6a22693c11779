#include <vxr/platform/polygons/ContourNesting.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <span>

namespace vxr {
namespace {

using Coordinate = ClipperLib::cInt;
__extension__ using WideCoordinate = __int128;

struct Box {
    Coordinate x0 = std::numeric_limits<Coordinate>::max(), y0 = x0;
    Coordinate x1 = std::numeric_limits<Coordinate>::min(), y1 = x1;

    bool contains(const Box& b) const { return x0 <= b.x0 && y0 <= b.y0 && x1 >= b.x1 && y1 >= b.y1; }
};

Box boxOf(const ClipperLib::Path& contour)
{
    Box box;
    for (const auto& p : contour) {
        box.x0 = std::min(box.x0, p.X);
        box.y0 = std::min(box.y0, p.Y);
        box.x1 = std::max(box.x1, p.X);
        box.y1 = std::max(box.y1, p.Y);
    }
    return box;
}

/// Directed upwards: y0 < y1.
struct Edge {
    Coordinate x0, y0, x1, y1;
    int contour;
};

/// The middle of an edge, in doubled coordinates so that it is exact.
struct Probe {
    Coordinate x2, y2;
};

enum class Side { Left, Right, On, Beside };

/// Where `e` passes the height of `p`: left of it, right of it, through it, or not at all.
Side sideOf(const Edge& e, const Probe& p)
{
    if (p.y2 < 2 * e.y0 || p.y2 >= 2 * e.y1)
        return Side::Beside;
    if (2 * std::max(e.x0, e.x1) < p.x2)
        return Side::Left;
    if (2 * std::min(e.x0, e.x1) > p.x2)
        return Side::Right;
    const WideCoordinate along = WideCoordinate(e.x1 - e.x0) * (p.y2 - 2 * e.y0);
    const WideCoordinate offset = WideCoordinate(p.x2 - 2 * e.x0) * (e.y1 - e.y0);
    return along < offset ? Side::Left : along > offset ? Side::Right : Side::On;
}

/// All edges that are not horizontal, those of one contour together, and listed again by bands of
/// height so that a horizontal ray meets few of them.
class EdgeBands {
public:
    EdgeBands(const ClipperLib::Paths& contours, const Box& bounds)
        : mBottom(bounds.y0)
    {
        mFirstEdge.reserve(contours.size() + 1);
        for (std::size_t i = 0; i < contours.size(); ++i) {
            mFirstEdge.push_back(mEdges.size());
            addEdges(contours[i], int(i));
        }
        mFirstEdge.push_back(mEdges.size());
        chooseBandHeight(bounds.y1 - bounds.y0, contours.size());
        fillBands(bounds.y1);
    }

    std::span<const Edge> edgesOf(std::size_t contour) const
    {
        return { mEdges.data() + mFirstEdge[contour], mEdges.data() + mFirstEdge[contour + 1] };
    }

    /// Calls `visit(edge)` for every edge that may pass the probe's height.
    template <class Visit> void visitNear(const Probe& p, Visit visit) const
    {
        const std::size_t band = bandOf(p.y2 >> 1);
        for (std::size_t k = mFirstInBand[band]; k < mFirstInBand[band + 1]; ++k)
            visit(mEdges[mInBand[k]]);
    }

private:
    void addEdges(const ClipperLib::Path& contour, int index)
    {
        auto from = contour.empty() ? ClipperLib::IntPoint() : contour.back();
        for (const auto& to : contour) {
            if (from.Y < to.Y)
                mEdges.push_back({ from.X, from.Y, to.X, to.Y, index });
            else if (to.Y < from.Y)
                mEdges.push_back({ to.X, to.Y, from.X, from.Y, index });
            from = to;
        }
    }

    std::size_t bandOf(Coordinate y) const { return std::size_t((y - mBottom) >> mBandShift); }

    /// As many bands as contours, fewer when tall edges would then be listed too often.
    void chooseBandHeight(Coordinate height, std::size_t contours)
    {
        const auto bands = Coordinate(std::clamp<std::size_t>(contours, 1, 4096));
        mBandShift = int(std::bit_width(std::uint64_t(height / bands)));
        for (;; ++mBandShift) {
            std::size_t listed = 0;
            for (const Edge& e : mEdges)
                listed += bandOf(e.y1) - bandOf(e.y0) + 1;
            if (listed <= 4 * mEdges.size() || (height >> mBandShift) == 0)
                return;
        }
    }

    void fillBands(Coordinate top)
    {
        mFirstInBand.assign(bandOf(top) + 2, 0);
        for (const Edge& e : mEdges)
            for (std::size_t b = bandOf(e.y0); b <= bandOf(e.y1); ++b)
                ++mFirstInBand[b + 1];
        for (std::size_t b = 1; b < mFirstInBand.size(); ++b)
            mFirstInBand[b] += mFirstInBand[b - 1];
        mInBand.resize(mFirstInBand.back());
        std::vector<std::size_t> next(mFirstInBand.begin(), mFirstInBand.end() - 1);
        for (std::size_t i = 0; i < mEdges.size(); ++i)
            for (std::size_t b = bandOf(mEdges[i].y0); b <= bandOf(mEdges[i].y1); ++b)
                mInBand[next[b]++] = std::uint32_t(i);
    }

    Coordinate mBottom;
    int mBandShift = 0;
    std::vector<Edge> mEdges;
    std::vector<std::size_t> mFirstEdge; ///< per contour, and one past the last
    std::vector<std::size_t> mFirstInBand; ///< per band, and one past the last
    std::vector<std::uint32_t> mInBand;
};

/// Parity of the other contours around `contour`. A probe that lies on another contour says nothing
/// about it, so further edges are tried; contours that coincide everywhere don't contain each other.
int holeFlag(const EdgeBands& bands, std::size_t contour)
{
    const auto edges = bands.edgesOf(contour);
    constexpr std::size_t probes = 8;
    const std::size_t step = std::max<std::size_t>(1, edges.size() / probes);
    int parity = 0;
    for (std::size_t i = 0; i < edges.size(); i += step) {
        const Probe probe { edges[i].x0 + edges[i].x1, edges[i].y0 + edges[i].y1 };
        bool touches = false;
        parity = 0;
        bands.visitNear(probe, [&](const Edge& e) {
            if (e.contour == int(contour))
                return;
            const Side side = sideOf(e, probe);
            parity ^= side == Side::Left;
            touches |= side == Side::On;
        });
        if (!touches)
            break;
    }
    return parity;
}

} // namespace

std::vector<int> holeFlags(const ClipperLib::Paths& contours)
{
    std::vector<int> flags(contours.size(), 0);
    std::vector<Box> boxes;
    boxes.reserve(contours.size());
    Box all;
    for (const auto& contour : contours) {
        const Box box = boxOf(contour);
        boxes.push_back(box);
        all = { std::min(all.x0, box.x0), std::min(all.y0, box.y0), std::max(all.x1, box.x1),
            std::max(all.y1, box.y1) };
    }

    // A few contours side by side are the usual result.
    constexpr std::size_t few = 16;
    if (contours.size() <= few) {
        bool nested = false;
        for (std::size_t i = 0; i < boxes.size(); ++i)
            for (std::size_t j = 0; j < boxes.size(); ++j)
                nested |= i != j && boxes[i].contains(boxes[j]);
        if (!nested)
            return flags;
    }

    const EdgeBands bands(contours, all);
    for (std::size_t i = 0; i < contours.size(); ++i)
        flags[i] = holeFlag(bands, i);
    return flags;
}

} // namespace vxr
