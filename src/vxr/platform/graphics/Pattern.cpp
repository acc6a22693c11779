#include <vxr/platform/graphics/Pattern.h>

#include <utility>

namespace vxr {

Pattern::Pattern(const Rect& cell, const AffineTransform& matrix, float xStep, float yStep, Draw draw)
    : mCell(cell)
    , mMatrix(matrix)
    , mXStep(xStep)
    , mYStep(yStep)
    , mDraw(std::move(draw))
{
}

Pattern::~Pattern() = default;

} // namespace vxr
