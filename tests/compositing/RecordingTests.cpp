#include <tests/compositing/LayerFakes.h>
#include <tests/compositing/PageScene.h>

#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/recording/RecordingContext.h>

#include <gtest/gtest.h>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr int wide = 300, high = 220;

using Draw = std::function<void(Context&)>;

std::vector<std::uint32_t> pixelsOf(const Draw& draw)
{
    std::vector<std::uint32_t> pixels(std::size_t(wide * high));
    const auto context = BitmapContext::createWithPixels(pixels.data(), wide, high, std::size_t(wide) * 4);
    draw(*context);
    return pixels;
}

/// The pixels of a recording that is replayed after the drawing is gone.
std::vector<std::uint32_t> replayedPixelsOf(const Draw& draw)
{
    RecordingContext recording({ 0, 0, wide, high });
    draw(recording);
    return pixelsOf([&](Context& context) { recording.replay(context); });
}

} // namespace

TEST(Recording, ReplaysPagesToTheSameBytes)
{
    for (const float zoom : { 1.0f, 1.37f, 0.1f, 7.0f }) {
        for (unsigned seed = 1; seed <= 12; ++seed) {
            PageScene scene({ wide, high }, { wide, high });
            RandomPage random(seed, { wide, high });
            for (int i = 0; i < 40; ++i)
                scene.canvas->add(random.shape());
            const Draw draw = [&](Context& context) {
                const CurrentContextScope scope(context, false, true);
                context.translate(0, high);
                context.scale(zoom, -zoom);
                scene.canvas->draw({ { 0, 0, wide, high }, context });
            };
            ASSERT_TRUE(samePixels(replayedPixelsOf(draw), pixelsOf(draw), wide)) << zoom << " seed " << seed;
        }
    }
}

TEST(Recording, DrawingThatFailsLeavesWhatItLeavesWithoutOne)
{
    const Draw draw = [](Context& context) {
        context.setFillColor(ColorValue::rgb(1, 0, 0));
        context.fillRect({ 0, 0, 50, 50 });
        try {
            const StateSaver saved(context);
            context.clipToRect({ 20, 20, 100, 100 });
            context.beginTransparencyLayer();
            context.saveState();
            context.setFillColor(ColorValue::rgb(0, 1, 0));
            context.fillRect({ 10, 10, 90, 90 }); // lost with its layer
            throw GenericException("The drawing failed.");
        } catch (const GenericException&) {
        }
        context.fillRect({ 150, 10, 100, 90 });
    };
    EXPECT_TRUE(samePixels(replayedPixelsOf(draw), pixelsOf(draw), wide));
    RecordingContext recording;
    draw(recording);
    EXPECT_EQ(recording.stateDepth(), 0u);
}

TEST(Recording, KeepsWhatWasDrawnAsItWas)
{
    auto gradient
        = VXRAngleGradient::linearGradientWithStartColorEndColor(Color::whiteColor(), Color::blackColor());
    auto shape = VXRShape::shapeWithRect({ 10, 10, 200, 150 });
    shape->setFill(gradient);
    RecordingContext recording({ 0, 0, wide, high });
    const Draw draw = [&](Context& context) {
        const CurrentContextScope scope(context, false, true);
        shape->renderLayeredIntoContext(context);
    };
    draw(recording);
    const auto before = pixelsOf(draw);
    gradient->reverseStopOrder();
    EXPECT_NE(pixelsOf(draw), before);
    EXPECT_EQ(pixelsOf([&](Context& context) { recording.replay(context); }), before);
}
