#include "Scene.h"

#include <vxr/platform/graphics/path/Path.h>

#include <cmath>

namespace vxr::demo {

namespace {

/// A five-pointed star drawn in one line, so that its middle is covered twice.
Path pentagram(Point center, float radius)
{
    Path path;
    for (int i = 0; i < 5; ++i) {
        const float angle = static_cast<float>(i) * 2.5132742f - 1.5707964f;
        const Point p { center.x + radius * std::cos(angle), center.y + radius * std::sin(angle) };
        i == 0 ? path.moveTo(p) : path.lineTo(p);
    }
    path.close();
    return path;
}

void drawWindingRules(Context& context)
{
    context.setFillColor(ColorValue::rgb(0.16f, 0.36f, 0.62f));
    context.fillPath(pentagram({ 110, 120 }, 90), WindingRule::NonZero);
    context.setFillColor(ColorValue::rgb(0.80f, 0.36f, 0.20f));
    context.fillPath(pentagram({ 310, 120 }, 90), WindingRule::EvenOdd);
}

} // namespace

std::vector<Scene> pathScenes()
{
    return {
        { "winding-rules", "The nonzero rule fills the middle of the star, the even-odd rule leaves it.",
            { 420, 240 }, drawWindingRules, {} },
    };
}

} // namespace vxr::demo
