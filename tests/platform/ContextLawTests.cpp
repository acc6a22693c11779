#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/path/Path.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>

// Two ways to the same picture.

using namespace vxr;

namespace {

constexpr int side = 80;

std::vector<std::uint32_t> drawn(const std::function<void(Context&)>& draw)
{
    const auto bitmap = BitmapContext::createBitmap(side, side);
    bitmap->setFillColor(ColorValue::rgb(0, 0, 0));
    bitmap->setStrokeColor(ColorValue::rgb(0, 0, 0));
    draw(*bitmap);
    return { bitmap->pixels(), bitmap->pixels() + side * side };
}

int largestDifference(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b)
{
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        largest = std::max(largest, std::abs(int(a[i] >> 24) - int(b[i] >> 24)));
    return largest;
}

const Path oval = *Path::pathWithOvalInRect({ 8, 12, 60, 50 });

} // namespace

TEST(ContextLaws, ALayerKeepsToThePathThatClipsIt)
{
    const auto filled = [](bool layered) {
        return drawn([layered](Context& context) {
            context.clipToPath(oval, WindingRule::NonZero);
            if (layered)
                context.beginTransparencyLayer();
            context.fillRect({ 0, 0, side, side });
            if (layered)
                context.endTransparencyLayer();
        });
    };
    EXPECT_LE(largestDifference(filled(true), filled(false)), 1);
}

TEST(ContextLaws, DashesBeginAnewWithEachSubpath)
{
    LineStyle style;
    style.width = 4;
    style.dash = { 7, 5 };
    style.dashPhase = 2;
    Path both, one, other;
    for (Path* path : { &both, &one })
        path->moveTo({ 5, 10 }), path->lineTo({ 70.5f, 20 });
    for (Path* path : { &both, &other })
        path->moveTo({ 5, 60 }), path->lineTo({ 70, 40 });
    const auto together = drawn([&](Context& context) { context.strokePath(both, style); });
    const auto apart = drawn([&](Context& context) {
        context.strokePath(one, style);
        context.strokePath(other, style);
    });
    EXPECT_LE(largestDifference(together, apart), 1);
}

TEST(ContextLaws, AStrokedOutlineIsAsFineAsTheStroke)
{
    LineStyle thin;
    thin.width = 1;
    const auto stroked = drawn([&](Context& context) {
        context.scale(8, 8);
        context.strokePath(*Path::pathWithOvalInRect({ 1.5f, 2, 6, 5 }), thin);
    });
    const auto replaced = drawn([&](Context& context) {
        context.scale(8, 8);
        context.setLineStyle(thin);
        context.beginPath();
        context.addPath(*Path::pathWithOvalInRect({ 1.5f, 2, 6, 5 }));
        context.replacePathWithStrokedPath();
        context.fillPath(WindingRule::NonZero);
    });
    EXPECT_LE(largestDifference(stroked, replaced), 26) << "a tenth of a pixel";
}
