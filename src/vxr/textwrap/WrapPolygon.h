#pragma once

#include <vxr/geometry/VXRPolygon.h>

#include <cstdint>
#include <vector>

namespace vxr {

/// The polygon of a path that many lines wrap around, organised so that a line is clipped only against the
/// few edges at its height.
class WrapPolygon {
public:
    explicit WrapPolygon(const Path& path);
    explicit WrapPolygon(VXRPolygonOwner polygon);

    const gpc_polygon& whole() const { return *mPolygon; }

    bool isFinite() const { return mIsFinite; }
    double extent() const { return mExtent; } ///< the largest absolute coordinate

    /// A polygon with the same interior and edges as the whole between the heights `low` and `high`. A run of
    /// vertices that stays beyond one of the heights is replaced by its end points, whose connection stays
    /// beyond it too. Valid until the next call.
    const gpc_polygon& near(double low, double high);

private:
    /// The position of a vertex or block of vertices relative to the band.
    enum class Side : std::int8_t { Below = -1, Across = 0, Above = 1 };

    struct Block {
        double low, high;
    };

    class RunShortener;

    void indexBlocks();
    void appendNear(const gpc_vertex_list& contour, const Block* blocks, double low, double high);

    static constexpr int blockSize = 32;

    VXRPolygonOwner mPolygon;
    bool mIsFinite = true;
    double mExtent = 0;
    std::vector<Block> mBlocks; ///< height ranges of `blockSize` vertices each, contour by contour
    std::vector<gpc_vertex> mNearVertices;
    std::vector<int> mNearHoles;
    std::vector<gpc_vertex_list> mNearContours;
    gpc_polygon mNear {};
};

} // namespace vxr
