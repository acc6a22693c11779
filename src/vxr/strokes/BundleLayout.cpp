#include <vxr/strokes/BundleLayout.h>

#include <vxr/strokes/manipulations/BentDrawing.h>

#include <algorithm>

namespace vxr {

void BundleLayout::layAlong(const Path& outline)
{
    const auto runs = measuredRuns(outline, 0.05, mWidth * 0.5);
    double whole = 0;
    for (const MeasuredRun& run : runs)
        whole += run.length();
    std::size_t elements = 1;
    for (const auto& piece : mBundle.bodies)
        for (const auto& part : piece.parts)
            elements += part.path->elementCount();
    // Bodies are stretched when there would be too many.
    constexpr double mostElements = 400000;
    const double mostBodies = std::max(1.0, mostElements / static_cast<double>(elements));
    for (const MeasuredRun& run : runs)
        layAlong(run, whole / mostBodies);
}

void BundleLayout::layAlong(const MeasuredRun& run, double longestBody)
{
    constexpr std::size_t mostElements = 4000000;
    if (mElements > mostElements)
        return;
    const double length = run.length();
    const auto lengthOf = [&](const auto& pieces) {
        return run.isClosed() || pieces.empty() ? 0 : static_cast<double>(pieces[0].length) * mWidth;
    };
    double head = lengthOf(mBundle.heads), tail = lengthOf(mBundle.tails);
    if (head + tail > length) {
        const double shortened = length / (head + tail);
        head *= shortened;
        tail *= shortened;
    }
    if (head > 0)
        lay(mBundle.heads[0], run, 0, head, false);
    if (length - head - tail > 1e-6 * length)
        layBodies(run, head, length - tail, longestBody);
    if (tail > 0)
        lay(mBundle.tails[0], run, length - tail, tail, false);
}

void BundleLayout::layBodies(const MeasuredRun& run, double from, double to, double longestBody)
{
    const auto& bodies = mBundle.bodies;
    const auto choose = [&] {
        const auto index = static_cast<std::size_t>(mNoise.at(mDraws++) * static_cast<double>(bodies.size()));
        return &bodies[std::min(index, bodies.size() - 1)];
    };
    const auto isTurned = [&] { return mBundle.turns && mNoise.at(mDraws++) < 0.5; };
    if (mBundle.stretchesBody) {
        const auto* body = choose();
        return lay(*body, run, from, to - from, isTurned());
    }
    // As many as fit best, then all stretched alike.
    std::vector<const VXRStrokeBundle::Piece*> chosen;
    double natural = 0;
    while (true) {
        const auto* body = choose();
        const double length = std::max(body->length * mWidth, longestBody);
        if (!chosen.empty() && natural + length * 0.5 > to - from)
            break;
        chosen.push_back(body);
        natural += length;
    }
    const double stretch = (to - from) / natural;
    double start = from;
    for (const auto* body : chosen) {
        const double length = std::max(body->length * mWidth, longestBody) * stretch;
        lay(*body, run, start, length, isTurned());
        start += length;
    }
}

void BundleLayout::lay(
    const VXRStrokeBundle::Piece& piece, const MeasuredRun& run, double start, double length, bool turned)
{
    for (std::size_t i = 0; i < piece.parts.size(); ++i) {
        Path& target = layer(i, piece.parts[i]);
        const std::size_t before = target.elementCount();
        // Turned by half a turn, not reflected: outlines keep running the same way round.
        const double scale = length / static_cast<double>(piece.length);
        appendBentDrawing(target, *piece.parts[i].path, run, turned ? start + length : start,
            turned ? -scale : scale, turned ? -mWidth : mWidth);
        mElements += target.elementCount() - before;
    }
}

Path& BundleLayout::layer(std::size_t index, const VXRStrokeBundle::Part& part)
{
    for (Gathered& gathered : mGathered)
        if (gathered.index == index && gathered.layer.color == part.color
            && gathered.layer.opacity == part.opacity)
            return *gathered.layer.path;
    mGathered.push_back({ index, { Path::path(), part.color, part.opacity } });
    return *mGathered.back().layer.path;
}

std::vector<VXRSmartStroke::Layer> BundleLayout::takeLayers()
{
    std::stable_sort(
        mGathered.begin(), mGathered.end(), [](const auto& a, const auto& b) { return a.index < b.index; });
    std::vector<VXRSmartStroke::Layer> layers;
    for (Gathered& gathered : mGathered)
        layers.push_back(std::move(gathered.layer));
    return layers;
}

} // namespace vxr
