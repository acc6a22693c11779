#include "Convert.h"

namespace app {

vxr::Point pointFrom(svg::Vec v) { return { static_cast<float>(v.x), static_cast<float>(v.y) }; }

vxr::AffineTransform transformFrom(const svg::Matrix& m)
{
    return { static_cast<float>(m.a), static_cast<float>(m.b), static_cast<float>(m.c),
        static_cast<float>(m.d), static_cast<float>(m.e), static_cast<float>(m.f) };
}

std::shared_ptr<vxr::Color> colorFrom(const svg::Rgba& c)
{
    return vxr::Color::colorWithCalibratedRGB(
        static_cast<float>(c.r), static_cast<float>(c.g), static_cast<float>(c.b), static_cast<float>(c.a));
}

svg::Rgba rgbaFrom(const vxr::Color& color)
{
    const auto rgb = color.colorUsingColorSpaceName(vxr::NSCalibratedRGBColorSpace);
    if (!rgb)
        return { 1, 1, 1, 1 };
    return { rgb->redComponent(), rgb->greenComponent(), rgb->blueComponent(), rgb->alphaComponent() };
}

vxr::WindingRule windingRuleFrom(svg::FillRule rule)
{
    return rule == svg::FillRule::EvenOdd ? vxr::WindingRule::EvenOdd : vxr::WindingRule::NonZero;
}

std::shared_ptr<vxr::Path> pathFrom(const svg::Outline& outline, svg::FillRule rule)
{
    auto path = vxr::Path::path();
    path->reserve(outline.verbs().size());
    path->setWindingRule(windingRuleFrom(rule));
    std::size_t next = 0;
    const auto point = [&] { return pointFrom(outline.points()[next++]); };
    for (svg::Verb verb : outline.verbs()) {
        switch (verb) {
        case svg::Verb::Move:
            path->moveTo(point());
            break;
        case svg::Verb::Line:
            path->lineTo(point());
            break;
        case svg::Verb::Cubic: {
            const vxr::Point control1 = point();
            const vxr::Point control2 = point();
            path->curveTo(control1, control2, point());
            break;
        }
        case svg::Verb::Close:
            path->close();
            break;
        }
    }
    return path;
}

} // namespace app
