#include <vxr/platform/graphics/raster/RasterEngine.h>

#include <vxr/platform/graphics/raster/FarStroke.h>
#include <vxr/platform/graphics/raster/PatternSource.h>
#include <vxr/platform/graphics/raster/RasterFactory.h>

#include <utility>

namespace vxr {

namespace {

/// The part of the flatness by which curves may be off: with edges smoothed over a pixel more can be seen.
constexpr double shareOfFlatness = 1 / 18.0;

constexpr double farthestReach
    = 1 << 17; ///< of strokes whose centre lines are cut; those of larger pens cost no more

std::array<Point, 4> cornersOf(const Rect& r)
{
    return { r.origin, { r.maxX(), r.minY() }, { r.maxX(), r.maxY() }, { r.minX(), r.maxY() } };
}

DeviceBox deviceBoxOf(const IntRect& r) { return { double(r.x0), double(r.y0), double(r.x1), double(r.y1) }; }

std::uint32_t premultiplied(const std::array<float, 4>& rgba, float alpha)
{
    const double a = double(rgba[3]) * alpha;
    const auto byte = [](double v) { return static_cast<std::uint32_t>(v * 255 + 0.5); };
    return byte(a) << 24 | byte(rgba[0] * a) << 16 | byte(rgba[1] * a) << 8 | byte(rgba[2] * a);
}

/// Half the width times what a miter or a square cap multiplies it by, in the transform's largest scale.
double strokeReach(const LineStyle& style, const DeviceMatrix& m)
{
    const double miter = style.join == LineJoin::Miter && style.miterLimit > 1 ? style.miterLimit : 1;
    return style.width * 0.5 * std::max(miter, M_SQRT2)
        * std::sqrt(m.xx * m.xx + m.xy * m.xy + m.yx * m.yx + m.yy * m.yy);
}

/// Where in the dashes a line goes on that has been cut `distance` behind its start.
float phaseAfter(const LineStyle& style, double distance)
{
    double period = 0;
    for (const float length : style.dash)
        period += length;
    if (style.dash.size() % 2)
        period *= 2;
    return period > 0 ? static_cast<float>(std::fmod(style.dashPhase + distance, period)) : style.dashPhase;
}

} // namespace

std::unique_ptr<DrawingEngine> makeRasterEngine(
    std::uint8_t* pixels, int width, int height, std::size_t bytesPerRow)
{
    return std::make_unique<RasterEngine>(reinterpret_cast<std::uint32_t*>(pixels),
        static_cast<std::ptrdiff_t>(bytesPerRow / 4), IntRect { 0, 0, width, height }, height);
}

RasterEngine::RasterEngine(
    std::uint32_t* pixels, std::ptrdiff_t stride, const IntRect& extents, double deviceHeight)
{
    mTargets.push_back({ { pixels, stride, extents }, {}, {} });
    mClip = { extents, nullptr };
    startSurface(deviceBoxOf(extents), deviceHeight);
}

// Layers that are still open go with what was drawn into them.
RasterEngine::~RasterEngine()
{
    for (; mTargets.size() > 1; mTargets.pop_back())
        releaseLayer(mTargets.back());
}

void RasterEngine::didRestoreState()
{
    mClip = std::move(mSavedClips.back());
    mSavedClips.pop_back();
}

double RasterEngine::tolerance() const
{
    return std::clamp(static_cast<double>(state.flatness) * shareOfFlatness, 0.01, 100.0);
}

void RasterEngine::noteInk(const IntRect& box)
{
    if (isInLayer() && !intersection(box, mClip.box).isEmpty())
        mTargets.back().ink = unionOf(mTargets.back().ink, intersection(box, mClip.box));
}

// Clips.

void RasterEngine::narrowClip(RasterClip clip, const DeviceBox& bounds)
{
    mClip = std::move(clip);
    state.clip = mClip.box.isEmpty() ? DeviceBox {} : intersection(state.clip, bounds);
}

void RasterEngine::cutClip(const FixedBox& box)
{
    const auto pixel = [this](std::int32_t v) {
        return state.antialias ? v / double(subpixels) : std::ceil((v - subpixels / 2) / double(subpixels));
    };
    const DeviceBox bounds { pixel(box.upperLeft.x), pixel(box.upperLeft.y), pixel(box.lowerRight.x),
        pixel(box.lowerRight.y) };
    const DeviceBox around = intersection(bounds.roundedOut(), deviceBoxOf(mClip.box));
    const IntRect pixels { int(around.x0), int(around.y0), int(around.x1), int(around.y1) };
    if (pixels.isEmpty() || bounds == bounds.roundedOut())
        return narrowClip({ pixels, mClip.mask }, bounds);
    ClipMaker maker(pixels, mClip, mMasks);
    mRaster.start(pixels, true);
    mRaster.fillBox(box, maker);
    narrowClip(maker.take(), bounds);
}

void RasterEngine::cutClipToOutline(WindingRule rule, const DeviceBox& bounds)
{
    const IntRect box = mRaster.box();
    if (box.isEmpty())
        return narrowClip({}, {});
    ClipMaker maker(box, mClip, mMasks);
    mRaster.finish(rule, maker);
    narrowClip(maker.take(), bounds);
}

void RasterEngine::clipToPath(const Path& path, WindingRule rule)
{
    if (!canDraw())
        return narrowClip({}, {});
    const DeviceMatrix toDevice = matrix();
    if (const auto box = uprightBox(path, toDevice))
        return cutClip(*box);
    mRaster.start(mClip.box, state.antialias);
    OutlineFeeder(toDevice, tolerance(), mRaster).addArea(path);
    cutClipToOutline(rule, deviceBounds(path.points()));
}

void RasterEngine::clipToRect(const Rect& rect)
{
    if (!canDraw())
        return narrowClip({}, {});
    const DeviceMatrix toDevice = matrix();
    if (const auto box = uprightBox(rect, toDevice))
        return cutClip(*box);
    mRaster.start(mClip.box, state.antialias);
    OutlineFeeder(toDevice, tolerance(), mRaster).addRect(rect);
    cutClipToOutline(WindingRule::NonZero, deviceBounds(cornersOf(rect)));
}

// Fills and strokes.

bool RasterEngine::setPaint(const Paint& paint, const IntRect& area)
{
    startPainting(state.operation);
    if (!paint.pattern || state.operation == CompositeOperation::Clear) {
        mPainter.setColor(premultiplied(paint.rgba, state.alpha));
        return true;
    }
    mPattern = makePatternSource(*paint.pattern, baseTransform(), deviceHeight(), area);
    if (mPattern)
        mPainter.setSource(*mPattern, 255);
    return mPattern != nullptr;
}

void RasterEngine::fillOutline(WindingRule rule, const Paint& paint)
{
    const IntRect box = mRaster.box();
    if (box.isEmpty() || !setPaint(paint, box))
        return;
    noteInk(box);
    mRaster.finish(rule, mPainter);
    mPattern.reset();
}

void RasterEngine::fillBox(const FixedBox& box, const Paint& paint)
{
    mRaster.start(mClip.box, state.antialias);
    const IntRect pixels = mRaster.boxOf(box);
    if (pixels.isEmpty() || !setPaint(paint, pixels))
        return;
    noteInk(pixels);
    mRaster.fillBox(box, mPainter);
    mPattern.reset();
}

void RasterEngine::fillPath(const Path& path, WindingRule rule)
{
    if (!canDraw())
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { fillPath(path, rule); });
    if (drawPatternWithAlpha(state.fill, [&] { fillPath(path, rule); }))
        return;
    const DeviceMatrix toDevice = matrix();
    if (const auto box = uprightBox(path, toDevice))
        return fillBox(*box, state.fill);
    mRaster.start(mClip.box, state.antialias);
    OutlineFeeder(toDevice, tolerance(), mRaster).addArea(path);
    fillOutline(rule, state.fill);
}

void RasterEngine::fillRect(const Rect& rect)
{
    if (!canDraw())
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { fillRect(rect); });
    if (drawPatternWithAlpha(state.fill, [&] { fillRect(rect); }))
        return;
    const DeviceMatrix toDevice = matrix();
    if (const auto box = uprightBox(rect, toDevice))
        return fillBox(*box, state.fill);
    mRaster.start(mClip.box, state.antialias);
    OutlineFeeder(toDevice, tolerance(), mRaster).addRect(rect);
    fillOutline(WindingRule::NonZero, state.fill);
}

void RasterEngine::strokePath(const Path& path, const LineStyle& style)
{
    if (!canDraw() || !(style.width > 0) || !std::isfinite(style.width))
        return;
    if (state.castsShadow())
        return drawWithShadow([&] { strokePath(path, style); });
    if (drawPatternWithAlpha(state.stroke, [&] { strokePath(path, style); }))
        return;
    const DeviceMatrix toDevice = matrix();
    mRaster.start(mClip.box, state.antialias);
    OutlineFeeder feeder(toDevice, tolerance(), mRaster);
    const double error = tolerance() / std::sqrt(std::abs(toDevice.determinant()));
    const double reach = strokeReach(style, toDevice);
    if (reach > farthestReach || !FarStroke::isFar(path, toDevice)) {
        mStroker.stroke(path, style, error, feeder);
    } else {
        FarStroke::cut(path, toDevice, reach, tolerance(), [&](const Path& piece, double distance) {
            LineStyle dashed = style;
            dashed.dashPhase = phaseAfter(style, distance);
            mStroker.stroke(piece, dashed, error, feeder);
        });
    }
    fillOutline(WindingRule::NonZero, state.stroke);
}

void RasterEngine::clearRect(const Rect& rect)
{
    if (!canDraw())
        return;
    const DeviceMatrix toDevice = matrix();
    mRaster.start(mClip.box, state.antialias);
    startPainting(CompositeOperation::Clear);
    if (const auto box = uprightBox(rect, toDevice))
        return mRaster.fillBox(*box, mPainter);
    OutlineFeeder(toDevice, tolerance(), mRaster).addRect(rect);
    mRaster.finish(WindingRule::NonZero, mPainter);
}

void RasterEngine::fillSource(const IntRect& box, SpanSource& source, std::uint8_t fade)
{
    startPainting(state.operation);
    mPainter.setSource(source, fade);
    noteInk(box);
    mPainter.fill(box);
}

} // namespace vxr
