#include <tests/platform/ContextTestSupport.h>
#include <tests/support/PathBuilder.h>
#include <vxr/platform/graphics/Pattern.h>

namespace vxr::test {

namespace {

TEST(ContextGolden, StrokesWithCapsJoinsAndDashes)
{
    const auto context = whitePage(128, 96);
    context->scale(0.75f, 0.5f);
    const LineStyle styles[]
        = { { .width = 6 }, { .width = 6, .cap = LineCap::Round, .join = LineJoin::Round, .dash = { 10, 9 } },
              { .width = 6, .cap = LineCap::Square, .join = LineJoin::Bevel } };
    for (const LineStyle& style : styles) {
        context->strokePath(pathOf("M10 20 C40 100 60 -60 80 40 L60 50"), style);
        context->translate(35, 55);
    }
    EXPECT_TRUE(matchesGolden(*context, "context-strokes"));
}

// Under a turned and stretched transform the shadows still fall to the lower right.
TEST(ContextGolden, LayersCastOneShadowToTheLowerRight)
{
    const auto context = whitePage(128, 96);
    context->setShadow({ 6, -6 }, 8, ColorValue::gray(0, 0.6f));
    context->rotate(0.3f);
    context->scale(1.4f, 0.8f);
    context->beginTransparencyLayer();
    paint(*context, red, { 20, 10, 30, 40 });
    context->setFillColor(ColorValue::rgb(0, 0.6f, 0, 0.5f));
    context->fillPath(*Path::pathWithOvalInRect({ 35, 20, 40, 40 }), WindingRule::NonZero);
    context->endTransparencyLayer();
    context->setAlpha(0.6f);
    context->setStrokeColor(blue);
    context->strokePath(*Path::pathWithRect({ 58, 30, 18, 50 }), { .width = 5 });
    EXPECT_TRUE(matchesGolden(*context, "context-shadows"));
}

// Tiles of a picture-like cell at fractional steps, turned, in an even-odd ring.
TEST(ContextGolden, PatternsFillInBaseSpace)
{
    const auto context = whitePage(128, 96);
    AffineTransform matrix = AffineTransform::makeTranslation(64, 48);
    matrix.rotate(0.4f).scale(1.3f, 1.1f);
    const auto pattern = std::make_shared<Pattern>(Rect(0, 0, 9, 7), matrix, 10.5f, 8.25f, [](Context& c) {
        paint(c, ColorValue::rgb(1, 0.8f, 0), { 0, 0, 20, 20 });
        c.setFillColor(blue);
        c.fillPath(*Path::pathWithOvalInRect({ 1, 1, 4, 4 }), WindingRule::NonZero);
        paint(c, red, { 6, 5, 5, 5 }); // cut off at the cell's edge
    });
    const auto ring = Path::pathWithOvalInRect({ 2, 2, 124, 92 });
    ring->appendOvalInRect({ 40, 30, 48, 36 });
    context->setFillPattern(pattern, 1);
    context->fillPath(*ring, WindingRule::EvenOdd);
    context->setStrokePattern(pattern, 0.5f);
    context->strokePath(*Path::pathWithRect({ 52, 40, 24, 16 }), { .width = 6 });
    EXPECT_TRUE(matchesGolden(*context, "context-patterns"));
}

TEST(ContextGolden, ShadingsBlendAndExtend)
{
    const auto context = whitePage(128, 96);
    const auto function = functionOf([](void*, const float* t, float* out) {
        out[0] = *t < 0.5f ? 1 : 0.2f; // jumps in the middle
        out[1] = *t;
        out[2] = 1 - *t;
        out[3] = 1;
    });
    const float hints[] = { 0.5f };
    const auto rgb = ColorSpace::deviceRGB();
    const std::shared_ptr<const Shading> shadings[] = {
        Shading::createAxial(rgb, { 10, 5 }, { 50, 30 }, function, true, false, hints),
        Shading::createAxial(rgb, { 20, 0 }, { 40, 0 }, function, true, true, hints),
        Shading::createRadial(rgb, { 25, 25 }, 4, { 32, 22 }, 20, function, true, false, hints),
        Shading::createRadial(rgb, { 12, 12 }, 10, { 44, 34 }, 5, function, false, true, hints),
    };
    for (int i = 0; i < 4; ++i) {
        StateSaver saved(*context);
        context->translate(i % 2 ? 64.0f : 0, i < 2 ? 48.0f : 0);
        context->clipToRect({ 1, 1, 62, 46 });
        context->drawShading(*shadings[i]);
    }
    EXPECT_TRUE(matchesGolden(*context, "context-shadings"));
}

} // namespace

} // namespace vxr::test
