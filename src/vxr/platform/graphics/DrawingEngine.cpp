#include <vxr/platform/graphics/DrawingEngine.h>

#include <vxr/platform/graphics/Image.h>

#include <vxr/platform/graphics/Pattern.h>

#include <utility>

namespace vxr {

DrawingEngine::DrawingEngine() = default;
DrawingEngine::~DrawingEngine() = default;

void DrawingEngine::startSurface(const DeviceBox& extents, double height)
{
    mStack.clear();
    mLayerDepths.clear();
    state = {};
    state.clip = extents;
    mDeviceHeight = height;
    mIsOpen = true;
    setBaseTransform({});
}

void DrawingEngine::stopSurface()
{
    while (isInLayer())
        endLayer();
    mStack.clear();
    mIsOpen = false;
}

void DrawingEngine::saveState()
{
    mStack.push_back(state);
    try {
        didSaveState();
    } catch (...) {
        mStack.pop_back();
        throw;
    }
}

void DrawingEngine::restoreState()
{
    const std::size_t floor = isInLayer() ? mLayerDepths.back() : 0;
    if (mStack.size() <= floor)
        return;
    state = std::move(mStack.back());
    mStack.pop_back();
    didRestoreState();
}

void DrawingEngine::unwindToDepth(std::size_t depth)
{
    while (mStack.size() > depth) {
        if (isInLayer() && mLayerDepths.back() == mStack.size())
            leaveLayer(LayerEnd::Drop);
        else
            restoreState();
    }
}

void DrawingEngine::setBaseTransform(const AffineTransform& t)
{
    mBase = t;
    setTransform(t);
}

void DrawingEngine::setTransform(const AffineTransform& t)
{
    state.transform = t;
    const double d = t.determinant();
    state.drawable = std::isfinite(d) && d != 0 && std::isfinite(t.tX) && std::isfinite(t.tY);
}

Rect DrawingEngine::clipBounds() const
{
    const auto inverse = state.transform.inverted();
    if (!canDraw() || !inverse)
        return {};
    const DeviceBox& box = state.clip;
    const auto top = static_cast<float>(mDeviceHeight - box.y0);
    const auto bottom = static_cast<float>(mDeviceHeight - box.y1);
    const auto left = static_cast<float>(box.x0), right = static_cast<float>(box.x1);
    DeviceBox user = inverseBox();
    for (const Point corner :
        { Point { left, bottom }, Point { right, bottom }, Point { left, top }, Point { right, top } }) {
        const Point p = inverse->map(corner);
        user.include(p.x, p.y);
    }
    const auto x = static_cast<float>(user.x0), y = static_cast<float>(user.y0);
    return { x, y, static_cast<float>(user.x1) - x, static_cast<float>(user.y1) - y };
}

DeviceBox DrawingEngine::deviceBounds(std::span<const Point> points) const
{
    const AffineTransform& t = state.transform;
    DeviceBox box = inverseBox();
    for (const Point p : points) {
        const double x = p.x, y = p.y;
        box.include(t.m11 * x + t.m21 * y + t.tX, mDeviceHeight - (t.m12 * x + t.m22 * y + t.tY));
    }
    return box.x0 <= box.x1 ? box : DeviceBox {};
}

void DrawingEngine::beginLayer()
{
    if (!mIsOpen)
        return;
    mLayerDepths.reserve(mLayerDepths.size() + 1);
    saveState();
    mLayerDepths.push_back(mStack.size());
    try {
        pushLayer();
    } catch (...) { // out of memory
        mLayerDepths.pop_back();
        restoreState();
        throw;
    }
    state.clipIsPixels = true;
    state.alpha = 1;
    state.operation = CompositeOperation::SourceOver;
    state.shadow = {};
}

void DrawingEngine::leaveLayer(LayerEnd end)
{
    while (mStack.size() > mLayerDepths.back())
        restoreState();
    mLayerDepths.pop_back();
    state = std::move(mStack.back());
    mStack.pop_back();
    popLayer(end);
}

void DrawingEngine::endLayer()
{
    if (isInLayer())
        leaveLayer(LayerEnd::Compose);
}

template <class Steps> void DrawingEngine::closingOnFailure(Steps steps)
{
    const std::size_t depth = mStack.size();
    GraphicsState before = state;
    try {
        steps();
    } catch (...) {
        unwindToDepth(depth);
        state = std::move(before);
        throw;
    }
}

// A copy replaces only what it covers, so it is drawn over the shadow that its layer has cast.
void DrawingEngine::drawWithShadow(DrawCall draw)
{
    closingOnFailure([&] {
        const bool copies = state.operation == CompositeOperation::Copy;
        beginLayer();
        draw();
        if (!copies)
            return endLayer();
        leaveLayer(LayerEnd::ShadowOnly);
        const ShadowStyle shadow = std::exchange(state.shadow, {});
        draw();
        state.shadow = shadow;
    });
}

// A copy clears first, so that following drawing has nothing below it.
bool DrawingEngine::drawPatternWithAlpha(const Paint& paint, DrawCall draw)
{
    const float alpha = paint.rgba[3];
    if (!paint.pattern || (alpha * state.alpha >= 1 && state.operation != CompositeOperation::Copy)
        || state.operation == CompositeOperation::Clear)
        return false;
    closingOnFailure([&] {
        GraphicsState before = state;
        state.shadow = {};
        if (state.operation == CompositeOperation::Copy) {
            state.operation = CompositeOperation::Clear;
            draw();
            state.operation = CompositeOperation::SourceOver;
        }
        state.alpha *= alpha;
        beginLayer();
        state.fill.rgba[3] = state.stroke.rgba[3] = 1;
        draw();
        endLayer();
        state = std::move(before);
    });
    return true;
}

// The choice depends on the image at the start of the chain, so that a reduced image looks like the image
// itself. Two pixels per device pixel remain to be averaged: with between one and two, some count twice.
void DrawingEngine::drawImageInDetail(const Rect& rect, const Image& image)
{
    int halvings = -image.halvings();
    if (hasPixels() && !image.layout().smooth && state.quality != InterpolationQuality::None) {
        const AffineTransform& t = state.transform;
        const Size source = image.sourceSize();
        double scale = std::max(std::hypot(t.m11, t.m12) * std::abs(rect.size.width) / source.width,
            std::hypot(t.m21, t.m22) * std::abs(rect.size.height) / source.height);
        for (; scale <= 0.25 && scale > 0; scale *= 2)
            ++halvings;
    }
    const auto reduced = halvings > 0 ? image.reduced(halvings) : nullptr;
    drawImage(rect, reduced ? *reduced : image);
}

} // namespace vxr
