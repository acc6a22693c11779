#include <vxr/platform/graphics/PatternCells.h>

#include <vxr/platform/graphics/Context.h>

#include <algorithm>
#include <cmath>

namespace vxr {

double usablePatternStep(float step, float cellSide)
{
    const double length = std::abs(step);
    return length > 0 && std::isfinite(length) ? length : cellSide;
}

void drawPatternCell(Context& context, const Pattern& pattern, Point offset)
{
    const Rect& cell = pattern.cell();
    const bool apart
        = std::abs(pattern.xStep()) > cell.size.width && std::abs(pattern.yStep()) > cell.size.height;
    StateSaver saved(context);
    context.translate(offset.x, offset.y);
    context.setShouldAntialias(apart);
    context.clipToRect(cell);
    context.setShouldAntialias(true);
    pattern.drawCell(context);
}

void drawPatternPeriod(Context& context, const Pattern& pattern, float xScale, float yScale)
{
    constexpr int maxOverlap = 8; // cells that may overlap along one axis
    const Rect& cell = pattern.cell();
    const double xStep = usablePatternStep(pattern.xStep(), cell.size.width);
    const double yStep = usablePatternStep(pattern.yStep(), cell.size.height);
    AffineTransform transform = AffineTransform::makeScale(xScale, yScale);
    context.setBaseTransform(transform.translate(-cell.minX(), -cell.minY()));
    const auto reach = [](double side, double step) {
        return static_cast<int>(std::min<double>(std::ceil(side / step) - 1, maxOverlap));
    };
    // A cell larger than its step extends into the following cells.
    for (int j = -reach(cell.size.height, yStep); j <= 0; ++j)
        for (int i = -reach(cell.size.width, xStep); i <= 0; ++i)
            drawPatternCell(
                context, pattern, { static_cast<float>(i * xStep), static_cast<float>(j * yStep) });
}

} // namespace vxr
