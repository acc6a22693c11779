#include <tests/platform/ContextTestSupport.h>

#include <cmath>
#include <functional>
#include <random>

// What is drawn doesn't depend on how much of it is seen.

namespace vxr::test {

namespace {

constexpr int side = 120;

/// Pixels within `seen`, in the bitmap's own rows, of a drawing clipped to it; the others are transparent.
Picture seenPart(const Rect& seen, const std::function<void(Context&)>& draw)
{
    const auto context = BitmapContext::createBitmap(side, side);
    context->clipToRect(seen);
    draw(*context);
    return pictureOf(*context);
}

/// `picture` with nothing left beyond `seen`.
Picture cutOut(Picture picture, const Rect& seen)
{
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            if (x < seen.minX() || x >= seen.maxX() || side - 1 - y < seen.minY()
                || side - 1 - y >= seen.maxY())
                picture.pixels[std::size_t(y * side + x)] = 0;
    return picture;
}

constexpr Rect everything { 0, 0, side, side };
constexpr Rect parts[] = { { 0, 50, side, 1 }, { 10, 30, 7, 60 }, { 61, 0, 40, 45 }, { 0, 80, 90, 40 } };

/// A star of long slanting edges that cross every part.
void drawStar(Context& context)
{
    Path star;
    for (int i = 0; i < 14; ++i) {
        const float radius = i % 2 ? 11.3f : 58.7f, angle = 0.37f + float(i) * float(M_PI) / 7;
        const Point p { 60 + radius * std::cos(angle), 60 + radius * std::sin(angle) };
        i ? star.lineTo(p) : star.moveTo(p);
    }
    star.close();
    context.setFillColor(ColorValue::rgb(0.2f, 0.5f, 0.9f, 0.7f));
    context.fillPath(star, WindingRule::NonZero);
    LineStyle line;
    line.width = 1.7f;
    context.setStrokeColor(ColorValue::rgb(0.9f, 0.1f, 0.1f, 0.6f));
    context.strokePath(star, line);
}

/// The law that the library's own engine keeps: what a pixel shows doesn't depend on the clip. Other engines
/// cut outlines where they leave it.
TEST(ClipLaw, DashedCornersStayWhateverIsSeen)
{
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        const auto whole
            = [&](int low, int high) { return float(low + int(random() % unsigned(high - low))); };
        // The first corner lies where a dash begins or ends.
        const float on = whole(4, 12), off = whole(4, 12);
        const float width = whole(1, 4) * (on + off) + (round % 2 ? on : 0);
        Path path;
        path.appendRect({ whole(5, 30), whole(5, 30), width, whole(30, 80) });
        LineStyle line;
        line.width = 4;
        line.dash = { on, off };
        const auto draw = [&](Context& context) { context.strokePath(path, line); };
        const Picture expected = seenPart(everything, draw);
        for (const Rect& part : parts)
            EXPECT_EQ(compare(seenPart(part, draw), cutOut(expected, part)).largest, 0) << "round " << round;
    }
}

TEST(ClipLaw, LayersAndShadowsAreTheSameWhateverIsSeen)
{
    for (const bool castsShadow : { false, true }) {
        const auto draw = [&](Context& context) {
            if (castsShadow)
                context.setShadow({ 5, -4 }, 6, black);
            context.beginTransparencyLayer();
            drawStar(context);
            context.endTransparencyLayer();
        };
        const Picture expected = seenPart(everything, draw);
        for (const Rect& part : parts)
            EXPECT_EQ(compare(seenPart(part, draw), cutOut(expected, part)).largest, 0) << castsShadow;
    }
}

/// A clip of whole pixels is blended by loops of our own, any other by the engine.
TEST(ContextClip, LayersAreBlendedAlikeWhateverTheKindOfClip)
{
    for (const float alpha : { 1.0f, 0.37f }) {
        Picture drawn[2];
        for (const bool byPath : { false, true }) {
            const auto context = BitmapContext::createBitmap(side, side);
            paint(*context, ColorValue::rgb(1, 0.8f, 0.3f, 0.9f), { 0, 20, 100, 60 });
            Path diamond; // around everything
            for (const Point corner : { Point { 60, -70 }, { 190, 60 }, { 60, 190 }, { -70, 60 } })
                diamond.isEmpty() ? diamond.moveTo(corner) : diamond.lineTo(corner);
            if (byPath)
                context->clipToPath(diamond, WindingRule::NonZero);
            context->setAlpha(alpha);
            context->beginTransparencyLayer();
            drawStar(*context);
            context->endTransparencyLayer();
            drawn[byPath] = pictureOf(*context);
        }
        EXPECT_EQ(compare(drawn[0], drawn[1]).largest, 0) << alpha;
    }
}

} // namespace

} // namespace vxr::test
