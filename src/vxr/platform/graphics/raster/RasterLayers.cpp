#include <vxr/platform/graphics/pixels/SpanKernels.h>
#include <vxr/platform/graphics/raster/RasterEngine.h>

#include <cstring>
#include <utility>

namespace vxr {

namespace {

constexpr int maxLayerSide = 32767;
constexpr int farthestCaster = 8192; ///< pixels beyond the clip that still cast into it

/// The pixels of a layer where they lie.
class LayerSource final : public SpanSource {
public:
    explicit LayerSource(const PixelTarget& layer)
        : mLayer(layer)
    {
    }
    const std::uint32_t* span(int x, int y, int, std::uint32_t*) override { return mLayer.at(x, y); }

private:
    const PixelTarget& mLayer;
};

} // namespace

void RasterEngine::pushLayer()
{
    Target layer;
    IntRect extents = state.castsShadow() ? casterExtents() : mClip.box;
    if (extents.isEmpty())
        extents = {};
    layer.pixels.extents = extents;
    layer.pixels.stride = extents.width();
    const std::size_t size
        = 4 * static_cast<std::size_t>(extents.width()) * static_cast<std::size_t>(extents.height());
    mTargets.reserve(mTargets.size() + 1);
    if (size > 0)
        layer.memory = mLayerMemory.take(size);
    layer.pixels.pixels = reinterpret_cast<std::uint32_t*>(layer.memory.bytes);
    mTargets.push_back(layer);
    mClip = { extents, nullptr };
    state.clip = { double(extents.x0), double(extents.y0), double(extents.x1), double(extents.y1) };
}

void RasterEngine::popLayer(LayerEnd end)
{
    /// Gives the layer's memory back, whatever happens.
    struct Ended {
        RasterEngine& engine;
        const Target layer;

        explicit Ended(RasterEngine& e)
            : engine(e)
            , layer(e.mTargets.back())
        {
            engine.mTargets.pop_back();
        }
        ~Ended() { engine.releaseLayer(layer); }
    };
    const Ended ended(*this);
    const Target& layer = ended.layer;
    didRestoreState();
    if (end != LayerEnd::Drop && !mClip.box.isEmpty()) {
        if (end == LayerEnd::Compose && state.operation == CompositeOperation::Copy) {
            // A layer's copy takes the place of everything within the clip.
            startPainting(CompositeOperation::Clear);
            mPainter.fill(mClip.box);
        }
        if (state.castsShadow())
            drawShadowOf(layer);
        if (end == LayerEnd::Compose)
            drawLayer(layer);
    }
}

void RasterEngine::releaseLayer(Target layer)
{
    for (int y = layer.ink.y0; y < layer.ink.y1; ++y)
        std::memset(layer.pixels.at(layer.ink.x0, y), 0, 4 * static_cast<std::size_t>(layer.ink.width()));
    mLayerMemory.giveBack(layer.memory);
}

void RasterEngine::drawLayer(const Target& layer)
{
    const IntRect seen = intersection(layer.ink, mClip.box);
    if (seen.isEmpty())
        return;
    if (state.operation == CompositeOperation::Clear)
        return eraseWith(layer, seen);
    LayerSource source(layer.pixels);
    startPainting(CompositeOperation::SourceOver);
    mPainter.setSource(source, channelByte(state.alpha));
    noteInk(seen);
    mPainter.fill(seen);
}

// What a layer clears is what it covers.
void RasterEngine::eraseWith(const Target& layer, const IntRect& seen)
{
    startPainting(CompositeOperation::Clear);
    std::vector<std::uint8_t>& coverage = mLayerMask;
    coverage.resize(static_cast<std::size_t>(seen.width()));
    for (int y = seen.y0; y < seen.y1; ++y) {
        const std::uint32_t* row = layer.pixels.at(seen.x0, y);
        for (std::size_t i = 0; i < coverage.size(); ++i)
            coverage[i] = static_cast<std::uint8_t>(row[i] >> 24);
        spanKernels().fadeMask(coverage.data(), coverage.size(), channelByte(state.alpha));
        mPainter.mask(seen.x0, y, seen.width(), coverage.data());
    }
}

// The shadow is given in base space: scaled and turned by the base transform alone. It moves by whole pixels,
// so that it looks the same wherever it is drawn from.
RasterEngine::DeviceShadow RasterEngine::deviceShadow() const
{
    const float farthest = 1 << 20;
    const AffineTransform& base = baseTransform();
    const Size offset = base.map(state.shadow.offset);
    const double scale = std::sqrt(std::abs(base.determinant()));
    const double sigma = std::min<double>(state.shadow.blur * scale / 3, maxBlurSigma);
    if (!std::isfinite(offset.width) || !std::isfinite(offset.height) || !std::isfinite(sigma))
        return {};
    const auto whole
        = [=](float v) { return static_cast<int>(std::floor(std::clamp(v, -farthest, farthest) + 0.5)); };
    return { whole(offset.width), -whole(offset.height), static_cast<float>(sigma),
        static_cast<int>(std::ceil(3 * sigma)) + 1 };
}

// What lies outside of the clip may cast its shadow into it.
IntRect RasterEngine::casterExtents() const
{
    const DeviceShadow shadow = deviceShadow();
    const IntRect& clip = mClip.box;
    if (clip.isEmpty())
        return {};
    const IntRect casters = clip.moved(-shadow.dx, -shadow.dy).grown(shadow.reach);
    const int room = (maxLayerSide - std::max(clip.width(), clip.height())) / 2;
    return intersection(unionOf(clip, casters), clip.grown(std::clamp(room, 0, farthestCaster)));
}

void RasterEngine::drawShadowOf(const Target& layer)
{
    const DeviceShadow shadow = deviceShadow();
    const IntRect& ink = layer.ink;
    if (ink.isEmpty())
        return;
    const IntRect shown = intersection(ink.grown(shadow.reach).moved(shadow.dx, shadow.dy), mClip.box);
    if (shown.isEmpty())
        return;
    // Only what casts into `shown` counts, and it needs room to spread.
    const IntRect near = shown.moved(-shadow.dx, -shadow.dy).grown(shadow.reach);
    const IntRect area = intersection(ink.grown(shadow.reach), near);
    const auto width = static_cast<std::size_t>(area.width());
    mLayerMask.assign(width * static_cast<std::size_t>(area.height()), 0);
    const auto maskAt = [&](int x, int y) {
        return mLayerMask.data() + static_cast<std::size_t>(y - area.y0) * width
            + static_cast<std::size_t>(x - area.x0);
    };
    const IntRect casting = intersection(ink, area);
    for (int y = casting.y0; y < casting.y1; ++y) {
        const std::uint32_t* from = layer.pixels.at(casting.x0, y);
        std::uint8_t* to = maskAt(casting.x0, y);
        for (int i = 0; i < casting.width(); ++i)
            to[i] = static_cast<std::uint8_t>(from[i] >> 24);
    }
    const auto stride = static_cast<std::ptrdiff_t>(width);
    blurA8(mLayerMask.data(), stride, area.width(), area.height(), shadow.sigma, mLayerMask.data(), stride,
        mBlurMemory);

    startPainting(CompositeOperation::SourceOver);
    const auto& [red, green, blue, alpha] = state.shadow.rgba;
    const double a = double(alpha) * state.alpha;
    mPainter.setColor(std::uint32_t(channelByte(a)) << 24 | std::uint32_t(channelByte(red * a)) << 16
        | std::uint32_t(channelByte(green * a)) << 8 | channelByte(blue * a));
    for (int y = shown.y0; y < shown.y1; ++y)
        mPainter.mask(shown.x0, y, shown.width(), maskAt(shown.x0 - shadow.dx, y - shadow.dy));
    noteInk(shown);
}

} // namespace vxr
