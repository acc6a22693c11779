#include <tests/support/RecordingContext.h>

#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/Shading.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace vxr::test {

namespace {

std::string rgbaText(const std::array<float, 4>& rgba)
{
    return text(rgba[0]) + ' ' + text(rgba[1]) + ' ' + text(rgba[2]) + ' ' + text(rgba[3]);
}

std::string patternText(const Pattern& pattern, float alpha)
{
    return fmt::format("cell={} matrix={} step={} {} alpha={}", text(pattern.cell()), text(pattern.matrix()),
        text(pattern.xStep()), text(pattern.yStep()), text(alpha));
}

Rect boundsOf(const AffineTransform& transform, const Rect& r)
{
    const Point corners[] = { transform.map(r.origin), transform.map(Point { r.maxX(), r.minY() }),
        transform.map(Point { r.minX(), r.maxY() }), transform.map(Point { r.maxX(), r.maxY() }) };
    const auto [left, right] = std::ranges::minmax(corners, {}, &Point::x);
    const auto [bottom, top] = std::ranges::minmax(corners, {}, &Point::y);
    return { left.x, bottom.y, right.x - left.x, top.y - bottom.y };
}

const char* word(WindingRule rule) { return rule == WindingRule::EvenOdd ? "even-odd " : ""; }

const char* word(InterpolationQuality quality)
{
    static constexpr const char* words[] = { "default", "none", "low", "high" };
    return words[static_cast<int>(quality)];
}

} // namespace

std::string text(float value)
{
    if (!std::isfinite(value) || std::abs(value) >= 1e7f)
        return fmt::format("{:g}", value);
    std::string digits = fmt::format("{:.4f}", value);
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.')
        digits.pop_back();
    return digits == "-0" ? "0" : digits;
}

std::string text(Point p) { return text(p.x) + ' ' + text(p.y); }

std::string text(const Rect& r)
{
    return text(r.origin) + ' ' + text(r.size.width) + ' ' + text(r.size.height);
}

std::string text(const AffineTransform& m)
{
    return fmt::format(
        "{} {} {} {} {} {}", text(m.m11), text(m.m12), text(m.m21), text(m.m22), text(m.tX), text(m.tY));
}

std::string text(const LineStyle& style)
{
    static constexpr const char* caps[] = { "butt", "round", "square" };
    static constexpr const char* joins[] = { "miter", "round", "bevel" };
    std::string line = "width=" + text(style.width);
    if (style.cap != LineCap::Butt)
        line += std::string(" cap=") + caps[static_cast<int>(style.cap)];
    if (style.join != LineJoin::Miter)
        line += std::string(" join=") + joins[static_cast<int>(style.join)];
    if (style.miterLimit != LineStyle {}.miterLimit)
        line += " miter=" + text(style.miterLimit);
    for (std::size_t i = 0; i < style.dash.size(); ++i)
        line += (i ? "," : " dash=") + text(style.dash[i]);
    if (!style.dash.empty())
        line += '+' + text(style.dashPhase);
    return line;
}

std::string text(const Path& path)
{
    static constexpr char letters[] = { 'M', 'L', 'C', 'Z' };
    static constexpr int counts[] = { 1, 1, 3, 0 };
    std::string line = "[";
    auto point = path.points().begin();
    for (const PathElementKind kind : path.kinds()) {
        const auto index = static_cast<std::size_t>(kind);
        if (line.size() > 1)
            line += ' ';
        line += letters[index];
        for (int i = 0; i < counts[index]; ++i, ++point)
            line += (i ? " " : "") + text(*point);
    }
    return line + ']';
}

std::string text(const ColorValue& color) { return rgbaText(color.toRGBA()); }

RecordingContext::RecordingContext(const Rect& visible) { mState.clip = visible; }

RecordingContext::~RecordingContext() = default;

std::string RecordingContext::recorded() const
{
    std::string all;
    for (const std::string& line : mLines)
        all += line + '\n';
    return all;
}

void RecordingContext::write(std::string line) { mLines.push_back(std::move(line)); }

void RecordingContext::push(const char* line)
{
    write(line);
    mSaved.push_back(mState);
}

void RecordingContext::pop(const char* line)
{
    write(line);
    if (mSaved.empty())
        return;
    mState = mSaved.back();
    mSaved.pop_back();
}

void RecordingContext::saveState() { push("save"); }

void RecordingContext::restoreState() { pop("restore"); }

void RecordingContext::setBaseTransform(const AffineTransform& base)
{
    write("set-base " + text(base));
    mBase = base;
    mState.transform = base;
}

void RecordingContext::concatTransform(const AffineTransform& transform)
{
    write("concat " + text(transform));
    mState.transform.prepend(transform);
}

void RecordingContext::clipToBounds(const Rect& userSpace)
{
    mState.clip = intersectionRect(mState.clip, boundsOf(mState.transform, userSpace));
}

void RecordingContext::clipToPath(const Path& path, WindingRule rule)
{
    write(std::string("clip ") + word(rule) + text(path));
    clipToBounds(path.bounds());
}

void RecordingContext::clipToRect(const Rect& rect)
{
    write("clip-rect " + text(rect));
    clipToBounds(rect);
}

Rect RecordingContext::clipBounds() const
{
    const auto inverse = mState.transform.inverted();
    return inverse && !mState.clip.isEmpty() ? boundsOf(*inverse, mState.clip) : Rect {};
}

void RecordingContext::fillPath(const Path& path, WindingRule rule)
{
    write(std::string("fill ") + word(rule) + text(path));
}

void RecordingContext::strokePath(const Path& path, const LineStyle& style)
{
    write("stroke " + text(style) + ' ' + text(path));
}

void RecordingContext::fillRect(const Rect& rect) { write("fill-rect " + text(rect)); }

void RecordingContext::clearRect(const Rect& rect) { write("clear-rect " + text(rect)); }

void RecordingContext::setFillColor(const ColorValue& color) { write("set-fill-color " + text(color)); }

void RecordingContext::setStrokeColor(const ColorValue& color)
{
    const std::string components = text(color);
    if (!mLines.empty() && mLines.back() == "set-fill-color " + components)
        mLines.back() = "set-color " + components;
    else
        write("set-stroke-color " + components);
}

void RecordingContext::setFillPattern(std::shared_ptr<const Pattern> pattern, float alpha)
{
    write("set-fill-pattern " + patternText(*pattern, alpha));
}

void RecordingContext::setStrokePattern(std::shared_ptr<const Pattern> pattern, float alpha)
{
    write("set-stroke-pattern " + patternText(*pattern, alpha));
}

void RecordingContext::setLineStyle(const LineStyle& style)
{
    write("set-line-style " + text(style));
    mState.lineStyle = style;
}

void RecordingContext::setFlatness(float flatness)
{
    write("set-flatness " + text(flatness));
    mState.flatness = flatness;
}

void RecordingContext::setAlpha(float alpha) { write("set-alpha " + text(alpha)); }

void RecordingContext::setCompositeOperation(CompositeOperation operation)
{
    static constexpr const char* words[] = { "clear", "copy", "over" };
    write(std::string("set-operation ") + words[static_cast<int>(operation)]);
}

void RecordingContext::setShouldAntialias(bool on) { write(on ? "set-antialias on" : "set-antialias off"); }

void RecordingContext::setInterpolationQualityRange(InterpolationQuality least, InterpolationQuality most)
{
    write(fmt::format("set-interpolation {} {}", word(least), word(most)));
}

void RecordingContext::setShadow(Size offset, float blur, const ColorValue& color)
{
    write(fmt::format("set-shadow offset={} {} blur={} color={}", text(offset.width), text(offset.height),
        text(blur), text(color)));
}

void RecordingContext::clearShadow() { write("clear-shadow"); }

void RecordingContext::beginTransparencyLayer() { push("begin-layer"); }

void RecordingContext::endTransparencyLayer() { pop("end-layer"); }

void RecordingContext::drawImage(const Rect& rect, const Image& image)
{
    write(fmt::format("draw-image {} of {}x{}", text(rect), image.width(), image.height()));
}

void RecordingContext::drawShading(const Shading& shading)
{
    const bool radial = shading.kind() == Shading::Kind::Radial;
    const auto end = [&](Point p, float radius) { return radial ? text(p) + ' ' + text(radius) : text(p); };
    std::string stops;
    for (const ShadingStop& stop : shading.stops())
        stops += (stops.empty() ? "" : ", ") + text(stop.position) + ": " + rgbaText(stop.rgba);
    write(fmt::format("draw-shading {} {} to {} [{}]", radial ? "radial" : "axial",
        end(shading.start(), shading.startRadius()), end(shading.end(), shading.endRadius()), stops));
}

std::string recordingOf(const std::function<void()>& draw, bool drawsToScreen)
{
    RecordingContext context;
    const CurrentContextScope scope(context, drawsToScreen, false);
    draw();
    return context.recorded();
}

} // namespace vxr::test
