#pragma once

#include <vxr/platform/graphics/Context.h>

#include <memory>
#include <string>
#include <vector>

namespace vxr {

class RecordingEngine;

/// Draws nothing, and keeps the calls: as lines of text, and to be made again to any other context.
///
///     save, restore, begin-layer, end-layer, clear-shadow
///     unwind N                                                    N states that failed drawing left open
///     concat M11 M12 M21 M22 TX TY, set-base (the same six)
///     clip [PATH], clip even-odd [PATH], clip-rect X Y W H
///     fill [PATH], fill even-odd [PATH], fill-rect X Y W H, clear-rect X Y W H
///     stroke width=W cap=C join=J miter=M dash=A,B+PHASE [PATH]   defaults are left out
///     set-fill-color R G B A, set-stroke-color R G B A            both at once: set-color R G B A
///     set-fill-pattern cell=X Y W H matrix=(six) step=X Y alpha=A, set-stroke-pattern (the same)
///     set-line-style (like stroke), set-flatness F, set-alpha A, set-antialias on|off
///     set-operation clear|copy|over, set-interpolation LEAST MOST
///     set-shadow offset=X Y blur=B color=R G B A
///     draw-image X Y W H of WIDTHxHEIGHT
///     draw-shading axial X Y to X Y [POSITION: R G B A, ...], draw-shading radial X Y RADIUS to ...
///
/// Paths, styles and shadings are recorded as they are at the time of the call. Images are kept, and
/// patterns too: their cells are drawn on replay.
class VXR_EXPORT RecordingContext : public Context {
public:
    /// What is visible at first, in default user space.
    explicit RecordingContext(const Rect& visible = { 0, 0, 1000, 1000 });
    ~RecordingContext() override;

    std::vector<std::string> lines() const;
    std::string recorded() const; ///< the lines, each ended by a newline
    void clear(); ///< forgets the calls; the state stays
    /// Makes the calls again, in order. The target ends up in the recording's last state.
    void replay(Context& target) const;

    using Context::fillPath;
    using Context::strokePath;
    void saveState() override;
    void restoreState() override;
    std::size_t stateDepth() const override;
    void unwindToDepth(std::size_t) override;
    AffineTransform currentTransform() const override;
    AffineTransform baseTransform() const override;
    void setBaseTransform(const AffineTransform&) override;
    void concatTransform(const AffineTransform&) override;
    void clipToPath(const Path&, WindingRule) override;
    void clipToRect(const Rect&) override;
    Rect clipBounds() const override;
    void fillPath(const Path&, WindingRule) override;
    void strokePath(const Path&, const LineStyle&) override;
    void fillRect(const Rect&) override;
    void clearRect(const Rect&) override;
    void setFillColor(const ColorValue&) override;
    void setStrokeColor(const ColorValue&) override;
    void setFillPattern(std::shared_ptr<const Pattern>, float alpha) override;
    void setStrokePattern(std::shared_ptr<const Pattern>, float alpha) override;
    const LineStyle& lineStyle() const override;
    void setLineStyle(const LineStyle&) override;
    float flatness() const override;
    void setFlatness(float devicePixels) override;
    void setAlpha(float) override;
    void setCompositeOperation(CompositeOperation) override;
    void setShouldAntialias(bool) override;
    void setInterpolationQualityRange(InterpolationQuality least, InterpolationQuality most) override;
    void setShadow(Size offset, float blur, const ColorValue&) override;
    void clearShadow() override;
    void beginTransparencyLayer() override;
    void endTransparencyLayer() override;
    void drawImage(const Rect&, const Image&) override;
    void drawShading(const Shading&) override;

private:
    /// One call: how it is written, and how it is made.
    struct Call {
        std::function<std::string()> text;
        std::function<void(Context&)> make;
    };
    void record(std::function<std::string()> text, std::function<void(Context&)> make);
    void record(const char* text, void (Context::*call)());

    std::unique_ptr<RecordingEngine> mEngine;
    std::vector<Call> mCalls;
};

} // namespace vxr
