#pragma once

#include <vxr/platform/graphics/DrawingEngine.h>

namespace vxr {

/// Keeps the state of a recording, and the bounds of its clip, and draws nothing.
class RecordingEngine final : public DrawingEngine {
public:
    explicit RecordingEngine(const Rect& visible)
    {
        startSurface({ visible.minX(), 0, visible.maxX(), visible.size.height }, visible.maxY());
    }

    void clipToPath(const Path& path, WindingRule) override
    {
        state.clip = intersection(state.clip, deviceBounds(path.points()));
    }
    void clipToRect(const Rect& r) override
    {
        const Point corners[]
            = { r.origin, { r.maxX(), r.minY() }, { r.minX(), r.maxY() }, { r.maxX(), r.maxY() } };
        state.clip = intersection(state.clip, deviceBounds(corners));
    }
    void fillPath(const Path&, WindingRule) override { }
    void strokePath(const Path&, const LineStyle&) override { }
    void fillRect(const Rect&) override { }
    void clearRect(const Rect&) override { }
    void drawImage(const Rect&, const Image&) override { }
    void drawShading(const Shading&) override { }

private:
    void pushLayer() override { }
    void popLayer(LayerEnd) override { }
};

} // namespace vxr
