#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <cstddef>
#include <span>
#include <vector>

namespace vxr {

/// Joins directed pieces of an area's outline to contours, as a sweep finds them.
class OutlineLinks {
public:
    /// A piece at a point, with the others there in one turn around it.
    struct Meeting {
        int piece;
        bool isEnd; ///< the piece comes from the left and ends here
        bool insideFollows; ///< inside lies between this piece and the next one of the turn
    };

    /// A piece from here to the right. `insideAbove`: which side of it is inside.
    int start(bool insideAbove);
    /// What meets in one point, counter-clockwise from straight below; the inside on every second gap.
    void join(gpc_vertex point, std::span<const Meeting> turn);

    /// Calls `visit(vertices, isHole)` for each contour. The inside that lies between two pieces at a point
    /// joins them, so that contours touch but don't cross.
    template <class Visit> void visitContours(Visit visit) const;

private:
    struct Piece {
        bool insideAbove;
        int points[2] { -1, -1 }; ///< of its left and its right end
        int next[2] { -1, -1 }; ///< there, the piece that it is joined to, times two, plus its end
    };

    std::vector<Piece> mPieces;
    std::vector<gpc_vertex> mPoints;
};

template <class Visit> void OutlineLinks::visitContours(Visit visit) const
{
    std::vector<bool> visited(mPieces.size());
    std::vector<gpc_vertex> contour;
    for (std::size_t first = 0; first < mPieces.size(); ++first) {
        if (visited[first])
            continue;
        // Pieces come in the order of their left ends, so this is the lower one of the two that meet in the
        // contour's leftmost point. The inside is kept on the left.
        const bool isHole = !mPieces[first].insideAbove;
        contour.clear();
        auto at = first;
        int end = isHole;
        do {
            visited[at] = true;
            const Piece& piece = mPieces[at];
            contour.push_back(mPoints[std::size_t(piece.points[end])]);
            const int next = piece.next[1 - end];
            at = std::size_t(next) / 2;
            end = next % 2;
        } while (at != first);
        visit(std::span<const gpc_vertex>(contour), isHole);
    }
}

} // namespace vxr
