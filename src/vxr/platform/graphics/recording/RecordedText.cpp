#include <vxr/platform/graphics/recording/RecordedText.h>

#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/graphics/Shading.h>

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace vxr::recorded {

namespace {

std::string rgbaText(const std::array<float, 4>& rgba)
{
    return text(rgba[0]) + ' ' + text(rgba[1]) + ' ' + text(rgba[2]) + ' ' + text(rgba[3]);
}

/// Writes the elements of a path with a letter each.
struct PathWriter {
    std::string line;

    void moveTo(Point p) { add("M" + text(p)); }
    void lineTo(Point p) { add("L" + text(p)); }
    void curveTo(Point c1, Point c2, Point p) { add('C' + text(c1) + ' ' + text(c2) + ' ' + text(p)); }
    void close() { add("Z"); }

private:
    void add(const std::string& element) { line += (line.empty() ? "" : " ") + element; }
};

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
    PathWriter writer;
    visitElements(path.kinds(), path.points().data(), writer);
    return '[' + writer.line + ']';
}

std::string text(const ColorValue& color) { return rgbaText(color.toRGBA()); }

std::string text(const Pattern& pattern, float alpha)
{
    return fmt::format("cell={} matrix={} step={} {} alpha={}", text(pattern.cell()), text(pattern.matrix()),
        text(pattern.xStep()), text(pattern.yStep()), text(alpha));
}

std::string text(const Shading& shading)
{
    const bool radial = shading.kind() == Shading::Kind::Radial;
    const auto end = [&](Point p, float radius) { return radial ? text(p) + ' ' + text(radius) : text(p); };
    std::string stops;
    for (const ShadingStop& stop : shading.stops())
        stops += (stops.empty() ? "" : ", ") + text(stop.position) + ": " + rgbaText(stop.rgba);
    return fmt::format("{} {} to {} [{}]", radial ? "radial" : "axial",
        end(shading.start(), shading.startRadius()), end(shading.end(), shading.endRadius()), stops);
}

} // namespace vxr::recorded
