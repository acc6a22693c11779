#include <vxr/textwrap/WrapPolygon.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vxr {

/// Copies a contour's vertices. Of each run outside the band only the first and last are kept.
class WrapPolygon::RunShortener {
public:
    RunShortener(std::vector<gpc_vertex>& kept)
        : mKept(kept)
    {
    }

    void add(const gpc_vertex& v, Side side)
    {
        if (side == mSide && side != Side::Across) {
            mLast = &v;
            return;
        }
        finishRun();
        mSide = side;
        mKept.push_back(v);
    }

    void finishRun()
    {
        if (mLast)
            mKept.push_back(*mLast);
        mLast = nullptr;
    }

private:
    std::vector<gpc_vertex>& mKept;
    Side mSide = Side::Across;
    const gpc_vertex* mLast = nullptr; ///< the last vertex of the current run, unless it is also the first
};

WrapPolygon::WrapPolygon(const Path& path)
    : WrapPolygon(VXRPolygonOwner(polygonFromBezier(path)))
{
}

WrapPolygon::WrapPolygon(VXRPolygonOwner polygon)
    : mPolygon(std::move(polygon))
{
    indexBlocks();
}

void WrapPolygon::indexBlocks()
{
    std::size_t vertices = 0;
    for (int i = 0; i < mPolygon->num_contours; ++i) {
        const gpc_vertex_list& contour = mPolygon->contour[i];
        vertices += std::size_t(contour.num_vertices);
        for (int first = 0; first < contour.num_vertices; first += blockSize) {
            Block block { contour.vertex[first].y, contour.vertex[first].y };
            for (int k = first; k < std::min(first + blockSize, contour.num_vertices); ++k) {
                const gpc_vertex& v = contour.vertex[k];
                mIsFinite = mIsFinite && std::isfinite(v.x) && std::isfinite(v.y);
                mExtent = std::max({ mExtent, std::abs(v.x), std::abs(v.y) });
                block.low = std::min(block.low, v.y);
                block.high = std::max(block.high, v.y);
            }
            mBlocks.push_back(block);
        }
    }
    mNearVertices.reserve(vertices); // the contours point into it, so it must not reallocate
    mNearContours.reserve(std::size_t(mPolygon->num_contours));
    mNearHoles.assign(std::size_t(mPolygon->num_contours), 0);
}

const gpc_polygon& WrapPolygon::near(double low, double high)
{
    // The clipper rejects a polygon with any non-finite coordinate, wherever it is.
    if (!mIsFinite)
        return *mPolygon;
    mNearVertices.clear();
    mNearContours.clear();
    const Block* blocks = mBlocks.data();
    for (int i = 0; i < mPolygon->num_contours; ++i) {
        const gpc_vertex_list& contour = mPolygon->contour[i];
        appendNear(contour, blocks, low, high);
        blocks += (contour.num_vertices + blockSize - 1) / blockSize;
    }
    mNear = { int(mNearContours.size()), mNearHoles.data(), mNearContours.data() };
    return mNear;
}

void WrapPolygon::appendNear(const gpc_vertex_list& contour, const Block* blocks, double low, double high)
{
    const auto sideOf = [&](double from, double to) {
        return to < low ? Side::Below : from > high ? Side::Above : Side::Across;
    };
    const std::size_t firstKept = mNearVertices.size();
    RunShortener shortener(mNearVertices);
    for (int first = 0; first < contour.num_vertices; first += blockSize, ++blocks) {
        const gpc_vertex* v = contour.vertex + first;
        const gpc_vertex* end = contour.vertex + std::min(first + blockSize, contour.num_vertices);
        const Side side = sideOf(blocks->low, blocks->high);
        if (side == Side::Across) {
            for (; v < end; ++v)
                shortener.add(*v, sideOf(v->y, v->y));
        } else {
            shortener.add(*v, side);
            if (end - v > 1)
                shortener.add(end[-1], side);
        }
    }
    shortener.finishRun();
    const auto kept = int(mNearVertices.size() - firstKept);
    if (kept >= 3)
        mNearContours.push_back({ kept, mNearVertices.data() + firstKept });
    else
        mNearVertices.resize(firstKept);
}

} // namespace vxr
