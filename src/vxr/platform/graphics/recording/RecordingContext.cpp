#include <vxr/platform/graphics/recording/RecordingContext.h>

#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/Shading.h>
#include <vxr/platform/graphics/recording/RecordedText.h>
#include <vxr/platform/graphics/recording/RecordingEngine.h>

#include <fmt/format.h>

#include <utility>

namespace vxr {

using recorded::text;

namespace {

const char* word(WindingRule rule) { return rule == WindingRule::EvenOdd ? "even-odd " : ""; }

const char* word(CompositeOperation operation)
{
    static constexpr const char* words[] = { "clear", "copy", "over" };
    return words[static_cast<int>(operation)];
}

const char* word(InterpolationQuality quality)
{
    static constexpr const char* words[] = { "default", "none", "low", "high" };
    return words[static_cast<int>(quality)];
}

std::string patternText(const std::shared_ptr<const Pattern>& pattern, float alpha)
{
    return pattern ? text(*pattern, alpha) : "none";
}

} // namespace

RecordingContext::RecordingContext(const Rect& visible)
    : mEngine(std::make_unique<RecordingEngine>(visible))
{
}

RecordingContext::~RecordingContext() = default;

// The recording.

std::vector<std::string> RecordingContext::lines() const
{
    const std::string fill = "set-fill-color ", stroke = "set-stroke-color ";
    std::vector<std::string> lines;
    for (const Call& call : mCalls) {
        std::string line = call.text();
        if (line.starts_with(stroke) && !lines.empty() && lines.back() == fill + line.substr(stroke.size()))
            lines.back() = "set-color " + line.substr(stroke.size());
        else
            lines.push_back(std::move(line));
    }
    return lines;
}

std::string RecordingContext::recorded() const
{
    std::string all;
    for (const std::string& line : lines())
        all += line + '\n';
    return all;
}

void RecordingContext::clear() { mCalls.clear(); }

void RecordingContext::replay(Context& target) const
{
    for (const Call& call : mCalls)
        call.make(target);
}

void RecordingContext::record(std::function<std::string()> text, std::function<void(Context&)> make)
{
    mCalls.push_back({ std::move(text), std::move(make) });
}

void RecordingContext::record(const char* text, void (Context::*call)())
{
    record([text] { return std::string(text); }, [call](Context& c) { (c.*call)(); });
}

// State.

void RecordingContext::saveState()
{
    record("save", &Context::saveState);
    mEngine->saveState();
}

void RecordingContext::restoreState()
{
    record("restore", &Context::restoreState);
    mEngine->restoreState();
}

std::size_t RecordingContext::stateDepth() const { return mEngine->stateDepth(); }

void RecordingContext::unwindToDepth(std::size_t depth)
{
    if (stateDepth() <= depth)
        return;
    const std::size_t open = stateDepth() - depth;
    record([open] { return fmt::format("unwind {}", open); },
        [open](Context& c) { c.unwindToDepth(c.stateDepth() > open ? c.stateDepth() - open : 0); });
    mEngine->unwindToDepth(depth);
}

AffineTransform RecordingContext::currentTransform() const { return mEngine->state.transform; }

AffineTransform RecordingContext::baseTransform() const { return mEngine->baseTransform(); }

void RecordingContext::setBaseTransform(const AffineTransform& t)
{
    record([t] { return "set-base " + text(t); }, [t](Context& c) { c.setBaseTransform(t); });
    mEngine->setBaseTransform(t);
}

void RecordingContext::concatTransform(const AffineTransform& t)
{
    record([t] { return "concat " + text(t); }, [t](Context& c) { c.concatTransform(t); });
    mEngine->concatTransform(t);
}

void RecordingContext::clipToPath(const Path& path, WindingRule rule)
{
    record(
        [rule, p = std::shared_ptr<const Path>(path.copy())] {
            return std::string("clip ") + word(rule) + text(*p);
        },
        [rule, p = std::shared_ptr<const Path>(path.copy())](Context& c) { c.clipToPath(*p, rule); });
    mEngine->clipToPath(path, rule);
}

void RecordingContext::clipToRect(const Rect& r)
{
    record([r] { return "clip-rect " + text(r); }, [r](Context& c) { c.clipToRect(r); });
    mEngine->clipToRect(r);
}

Rect RecordingContext::clipBounds() const { return mEngine->clipBounds(); }

// Drawing.

void RecordingContext::fillPath(const Path& path, WindingRule rule)
{
    const std::shared_ptr<const Path> p = path.copy();
    record([rule, p] { return std::string("fill ") + word(rule) + text(*p); },
        [rule, p](Context& c) { c.fillPath(*p, rule); });
}

void RecordingContext::strokePath(const Path& path, const LineStyle& style)
{
    const std::shared_ptr<const Path> p = path.copy();
    record([style, p] { return "stroke " + text(style) + ' ' + text(*p); },
        [style, p](Context& c) { c.strokePath(*p, style); });
}

void RecordingContext::fillRect(const Rect& r)
{
    record([r] { return "fill-rect " + text(r); }, [r](Context& c) { c.fillRect(r); });
}

void RecordingContext::clearRect(const Rect& r)
{
    record([r] { return "clear-rect " + text(r); }, [r](Context& c) { c.clearRect(r); });
}

void RecordingContext::drawImage(const Rect& r, const Image& image)
{
    const auto kept = image.shared_from_this();
    record(
        [r, kept] { return fmt::format("draw-image {} of {}x{}", text(r), kept->width(), kept->height()); },
        [r, kept](Context& c) { c.drawImage(r, *kept); });
}

void RecordingContext::drawShading(const Shading& shading)
{
    const auto copy = shading.copy();
    record([copy] { return "draw-shading " + text(*copy); }, [copy](Context& c) { c.drawShading(*copy); });
}

void RecordingContext::beginTransparencyLayer()
{
    record("begin-layer", &Context::beginTransparencyLayer);
    mEngine->beginLayer();
}

void RecordingContext::endTransparencyLayer()
{
    record("end-layer", &Context::endTransparencyLayer);
    mEngine->endLayer();
}

// Style.

void RecordingContext::setFillColor(const ColorValue& color)
{
    record(
        [color] { return "set-fill-color " + text(color); }, [color](Context& c) { c.setFillColor(color); });
}

void RecordingContext::setStrokeColor(const ColorValue& color)
{
    record([color] { return "set-stroke-color " + text(color); },
        [color](Context& c) { c.setStrokeColor(color); });
}

void RecordingContext::setFillPattern(std::shared_ptr<const Pattern> pattern, float alpha)
{
    record([=] { return "set-fill-pattern " + patternText(pattern, alpha); },
        [=](Context& c) { c.setFillPattern(pattern, alpha); });
}

void RecordingContext::setStrokePattern(std::shared_ptr<const Pattern> pattern, float alpha)
{
    record([=] { return "set-stroke-pattern " + patternText(pattern, alpha); },
        [=](Context& c) { c.setStrokePattern(pattern, alpha); });
}

const LineStyle& RecordingContext::lineStyle() const { return mEngine->state.line; }

void RecordingContext::setLineStyle(const LineStyle& style)
{
    record(
        [style] { return "set-line-style " + text(style); }, [style](Context& c) { c.setLineStyle(style); });
    mEngine->state.line = style;
}

float RecordingContext::flatness() const { return mEngine->state.flatness; }

void RecordingContext::setFlatness(float devicePixels)
{
    record([=] { return "set-flatness " + text(devicePixels); },
        [=](Context& c) { c.setFlatness(devicePixels); });
    mEngine->state.flatness = devicePixels > 0 ? devicePixels : Path::defaultFlatness;
}

void RecordingContext::setAlpha(float alpha)
{
    record([=] { return "set-alpha " + text(alpha); }, [=](Context& c) { c.setAlpha(alpha); });
}

void RecordingContext::setCompositeOperation(CompositeOperation operation)
{
    record([=] { return std::string("set-operation ") + word(operation); },
        [=](Context& c) { c.setCompositeOperation(operation); });
}

void RecordingContext::setShouldAntialias(bool on)
{
    record([=] { return std::string(on ? "set-antialias on" : "set-antialias off"); },
        [=](Context& c) { c.setShouldAntialias(on); });
}

void RecordingContext::setInterpolationQualityRange(InterpolationQuality least, InterpolationQuality most)
{
    record([=] { return fmt::format("set-interpolation {} {}", word(least), word(most)); },
        [=](Context& c) { c.setInterpolationQualityRange(least, most); });
}

void RecordingContext::setShadow(Size offset, float blur, const ColorValue& color)
{
    record(
        [=] {
            return fmt::format("set-shadow offset={} {} blur={} color={}", text(offset.width),
                text(offset.height), text(blur), text(color));
        },
        [=](Context& c) { c.setShadow(offset, blur, color); });
}

void RecordingContext::clearShadow() { record("clear-shadow", &Context::clearShadow); }

} // namespace vxr
