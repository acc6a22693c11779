#include <vxr/platform/polygons/OutlineLinks.h>

namespace vxr {

int OutlineLinks::start(bool insideAbove)
{
    mPieces.push_back({ insideAbove });
    return int(mPieces.size()) - 1;
}

void OutlineLinks::join(gpc_vertex point, std::span<const Meeting> turn)
{
    const int at = int(mPoints.size());
    mPoints.push_back(point);
    const auto endOf = [](const Meeting& m) { return m.piece * 2 + m.isEnd; };
    for (std::size_t i = 0; i < turn.size(); ++i) {
        const Meeting& one = turn[i];
        mPieces[std::size_t(one.piece)].points[one.isEnd] = at;
        if (!one.insideFollows)
            continue;
        const Meeting& other = turn[(i + 1) % turn.size()];
        mPieces[std::size_t(one.piece)].next[one.isEnd] = endOf(other);
        mPieces[std::size_t(other.piece)].next[other.isEnd] = endOf(one);
    }
}

} // namespace vxr
