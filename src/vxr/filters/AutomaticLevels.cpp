#include <vxr/filters/AutomaticLevels.h>

#include <vxr/filters/FilterPipeline.h>
#include <vxr/filters/FilterSource.h>

#include <numeric>
#include <vector>

namespace vxr {

FilterOperation LevelPoints::operation() const
{
    std::array<float, 3> scale, offset;
    for (std::size_t c = 0; c < 3; ++c) {
        scale[c] = 1 / (white[c] - black[c]);
        offset[c] = -black[c] * scale[c];
    }
    return FilterOperation::lines(scale, offset);
}

LevelHistogram LevelHistogram::ofSource(const FilterSource& source)
{
    LevelHistogram histogram;
    const auto width = static_cast<std::size_t>(source.width());
    constexpr FilterFormat rgba { 8, 4, false, { 0, 1, 2, 3 }, FilterFormat::Alpha::Straight };
    constexpr FilterFormat gray { 8, 1, true, { 0, 0, 0, 0 }, FilterFormat::Alpha::None };
    std::vector<std::uint8_t> colors(4 * width), luminances(width);
    FilterPipeline toColors(
        {}, source.width(), source.height(), source.format(), rgba, [&](int) { return colors.data(); });
    FilterPipeline toLuminances(
        {}, source.width(), source.height(), source.format(), gray, [&](int) { return luminances.data(); });
    for (int y = 0; y < source.height(); ++y) {
        const void* const row = source.row(y);
        toColors.push(row);
        toLuminances.push(row);
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* const pixel = colors.data() + 4 * x;
            const double weight = pixel[3];
            for (std::size_t c = 0; c < 3; ++c)
                histogram.counts[c][pixel[c]] += weight;
            histogram.counts[3][luminances[x]] += weight;
        }
    }
    return histogram;
}

namespace {

/// The lowest level with more than `limit` at it and below, from either end.
template <class Iterator> int levelBeyond(Iterator first, Iterator last, double limit)
{
    double sum = 0;
    int level = 0;
    for (; first != last; ++first, ++level) {
        sum += *first;
        if (sum > limit)
            break;
    }
    return level;
}

} // namespace

LevelPoints LevelHistogram::points(VXRAutomaticLevels kind, float clipFraction) const
{
    LevelPoints points;
    for (std::size_t c = 0; c < 3 && kind != VXRAutomaticLevels::Off; ++c) {
        const auto& levels = counts[kind == VXRAutomaticLevels::PerChannel ? c : 3];
        const double limit = std::accumulate(levels.begin(), levels.end(), 0.0) * double { clipFraction };
        const int black = levelBeyond(levels.begin(), levels.end(), limit);
        const int white = 255 - levelBeyond(levels.rbegin(), levels.rend(), limit);
        if (white <= black)
            continue;
        points.black[c] = float(black) / 255;
        points.white[c] = float(white) / 255;
    }
    return points;
}

} // namespace vxr
