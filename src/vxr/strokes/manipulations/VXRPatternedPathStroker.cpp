#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>

#include <vxr/geometry/PathAdditions.h>
#include <vxr/strokes/manipulations/BentDrawing.h>
#include <vxr/strokes/manipulations/DrawnNoise.h>

#include <algorithm>

namespace vxr {

VXRPatternedPathStroker::VXRPatternedPathStroker()
    : VXRPatternedPathStroker(Path::pathWithOvalInRect({ 0.5f, -0.5f, 1, 1 }), 2, false)
{
}

VXRPatternedPathStroker::VXRPatternedPathStroker(std::shared_ptr<Path> motif, float advance, bool bends)
    : mMotif(std::move(motif))
    , mAdvance(advance)
    , mBends(bends)
{
}

std::vector<VXRPaintedPath> VXRPatternedPathStroker::paintedPaths(
    const VXRPaintedPath& painted, const VXRStrokeSetting& setting) const
{
    const double width = finiteOrZero(setting.lineWidth) * painted.widthFactor,
                 advance = finiteOrZero(mAdvance) * width;
    if (painted.isArea)
        return { painted };
    if (!mMotif || mMotif->isEmpty() || !(advance > 0))
        return {};
    const auto runs = measuredRuns(*painted.path, 0.05, mBends ? width * 0.5 : 0);
    double whole = 0;
    for (const MeasuredRun& run : runs)
        whole += run.length();
    // Elements count, not repeats: a motif may have many itself.
    const double elements = static_cast<double>(mMotif->elementCount());
    const double most = std::max(1.0, 4 * mostDrawnPieces / elements);
    const double step = std::max(advance, whole / most);
    auto area = Path::path();
    for (const MeasuredRun& run : runs) {
        const double repeats = std::max(1.0, std::round(run.length() / step));
        const double each = run.length() / repeats, scaleX = each / finiteOrZero(mAdvance);
        for (double i = 0; i < repeats; ++i) {
            // A motif far longer than its advance takes more than its share.
            if (static_cast<double>(area->elementCount()) > 40 * mostDrawnPieces)
                return { { area, true, 1 } };
            if (mBends)
                appendBentDrawing(*area, *mMotif, run, i * each, scaleX, width);
            else
                appendStiffDrawing(*area, *mMotif, run, (i + 0.5) * each, mAdvance * 0.5, width, width);
        }
    }
    return { { area, true, 1 } };
}

float VXRPatternedPathStroker::reachForLineWidth(float lineWidth) const
{
    if (!mMotif || mMotif->isEmpty())
        return 0;
    const double width = finiteOrZero(lineWidth);
    const Rect bounds = mMotif->bounds();
    const double across = std::max(std::fabs(bounds.minY()), std::fabs(bounds.maxY())) * width;
    // What stands out of the motif's own part of the outline goes on straight ahead; the longest stretch is
    // that of a single repeat.
    const double along = mBends
        ? 2 * std::max({ -bounds.minX(), bounds.maxX() - mAdvance, 0.0f }) * width
        : std::max(std::fabs(bounds.minX() - mAdvance / 2), std::fabs(bounds.maxX() - mAdvance / 2)) * width;
    return static_cast<float>(std::max(std::hypot(across * (mBends ? 1.1 : 1), along) - width * 0.5, 0.0));
}

std::shared_ptr<VXRPathStroker> VXRPatternedPathStroker::copyWithZone() const
{
    return std::make_shared<VXRPatternedPathStroker>(*this);
}

bool VXRPatternedPathStroker::isEqual(const Object& other) const
{
    const auto* same = dynamic_cast<const VXRPatternedPathStroker*>(&other);
    if (!same || same->mAdvance != mAdvance || same->mBends != mBends || !mMotif != !same->mMotif)
        return false;
    return mMotif == same->mMotif || vxr::isEqual(*mMotif, *same->mMotif);
}

} // namespace vxr
