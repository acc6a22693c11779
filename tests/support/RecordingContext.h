#pragma once

#include <vxr/platform/graphics/Context.h>

#include <functional>
#include <string>
#include <vector>

namespace vxr::test {

/// Short text of a number: up to four decimals, no trailing zeros, never -0.
std::string text(float value);
std::string text(Point);
std::string text(const Rect&);
std::string text(const AffineTransform&);
std::string text(const LineStyle&);
std::string text(const Path&); ///< `[M0 0 L10 0 C1 2 3 4 5 6 Z]`
std::string text(const ColorValue&); ///< red, green, blue, alpha as the output takes them

/// A context that draws nothing and writes each call as a line of text:
///
///     save, restore, begin-layer, end-layer, clear-shadow
///     concat M11 M12 M21 M22 TX TY, set-base (the same six)
///     clip [PATH], clip even-odd [PATH], clip-rect X Y W H
///     fill [PATH], fill even-odd [PATH], fill-rect X Y W H, clear-rect X Y W H
///     stroke width=W cap=C join=J miter=M dash=A,B+PHASE [PATH]   what is the default is left out
///     set-fill-color R G B A, set-stroke-color R G B A            both at once: set-color R G B A
///     set-fill-pattern cell=X Y W H matrix=(six) step=X Y alpha=A, set-stroke-pattern (the same)
///     set-line-style (like stroke), set-flatness F, set-alpha A, set-antialias on|off
///     set-operation clear|copy|over, set-interpolation LEAST MOST
///     set-shadow offset=X Y blur=B color=R G B A
///     draw-image X Y W H of WIDTHxHEIGHT
///     draw-shading axial X Y to X Y [POSITION: R G B A, ...], draw-shading radial X Y RADIUS to ...
class RecordingContext : public Context {
public:
    /// What can be seen at first, in default user space.
    explicit RecordingContext(const Rect& visible = { 0, 0, 1000, 1000 });
    ~RecordingContext() override;

    const std::vector<std::string>& lines() const { return mLines; }
    std::string recorded() const; ///< the lines, each ended by a newline
    void clear() { mLines.clear(); }

    using Context::fillPath;
    using Context::strokePath;
    void saveState() override;
    void restoreState() override;
    AffineTransform currentTransform() const override { return mState.transform; }
    AffineTransform baseTransform() const override { return mBase; }
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
    const LineStyle& lineStyle() const override { return mState.lineStyle; }
    void setLineStyle(const LineStyle&) override;
    float flatness() const override { return mState.flatness; }
    void setFlatness(float) override;
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
    struct State {
        AffineTransform transform;
        Rect clip; ///< bounds in device space
        LineStyle lineStyle;
        float flatness = Path::defaultFlatness;
    };

    void write(std::string line);
    void push(const char* line);
    void pop(const char* line);
    void clipToBounds(const Rect& userSpace);

    std::vector<std::string> mLines;
    AffineTransform mBase;
    State mState;
    std::vector<State> mSaved;
};

/// What `draw` draws into the current context, a line a call.
std::string recordingOf(const std::function<void()>& draw, bool drawsToScreen = true);

} // namespace vxr::test
