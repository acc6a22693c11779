#include <tests/support/FakeCanvas.h>
#include <tests/support/RecordingContext.h>
#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/renderables/VXRGroup.h>
#include <vxr/renderables/VXRReflectionRenderable.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/renderables/VXRStar.h>

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <limits>

using namespace vxr;
using namespace vxr::test;

namespace {

std::shared_ptr<VXRShape> rectangle(const Rect& rect)
{
    auto shape = VXRShape::shapeWithRect(rect);
    shape->setFill(Color::colorWithCalibratedRGB(1, 0, 0));
    shape->setStroke(nullptr);
    return shape;
}

std::shared_ptr<VXRReflectionRenderable> reflectionOf(std::shared_ptr<VXRRenderable> reflected)
{
    auto reflection = std::make_shared<VXRReflectionRenderable>();
    reflection->setRenderableToReflect(std::move(reflected));
    return reflection;
}

std::uint32_t pixelOf(const Image& image, int x, int y)
{
    std::uint32_t pixel;
    std::memcpy(&pixel, image.pixels() + std::size_t(y) * image.layout().bytesPerRow + 4 * std::size_t(x), 4);
    return pixel;
}

constexpr int side = 260;

/// What a renderable draws into the upper left of a flipped canvas.
std::shared_ptr<BitmapContext> drawn(VXRRenderable& renderable, float scale)
{
    const auto bitmap = BitmapContext::createBitmap(int(side * scale), int(side * scale));
    const CurrentContextScope current(*bitmap, true, true);
    bitmap->scale(scale, -scale);
    bitmap->translate(0, -side);
    renderable.renderIntoContext(*bitmap);
    return bitmap;
}

std::shared_ptr<VXRGroup> groupWithShadow()
{
    auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(20, 44, 7);
    star->offsetTo({ 10, 6 });
    star->setFill(VXRAngleGradient::linearGradientWithStartColorEndColor(
        Color::colorWithCalibratedRGB(1, 0.3f, 0), Color::colorWithCalibratedRGB(0, 0.2f, 1, 0.5f)));
    star->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(90, 9, 5, 0.8f, Color::blackColor()));
    return VXRGroup::groupWithRenderables({ rectangle({ 90, 20, 30, 78 }), star });
}

} // namespace

TEST(Reflection, LiesRightBelowItsObjectAtTwoFifthsOfItsHeight)
{
    for (const auto& [bounds, size] : { std::pair(Rect { 10, 20, 60, 100 }, Size { 60, 40 }),
             std::pair(Rect { 0, -7, 30.5f, 500 }, Size { 30.5f, 120 }),
             std::pair(Rect { 3, 4, 0, 0 }, Size { 0, 0 }) }) {
        const auto reflection = reflectionOf(rectangle(bounds));
        EXPECT_EQ(reflection->alignmentBounds(), (Rect { { bounds.minX(), bounds.maxY() + 1 }, size }));
    }
}

TEST(Reflection, FadesByRowsAndIsEmptyBelowTwo)
{
    const struct {
        float height;
        std::vector<unsigned> alphas; ///< by row
    } cases[] = { { 7.5f, { 127, 36, 0 } }, { 5, { 127, 0 } }, { 4.9f, {} }, { 0, {} } };
    for (const auto& c : cases) {
        const auto image = reflectionOf(rectangle({ 5, 5, 4, c.height }))->_reflectedImageRef();
        ASSERT_EQ(image ? image->height() : 0, int(c.alphas.size()));
        for (std::size_t row = 0; row < c.alphas.size(); ++row)
            EXPECT_EQ(pixelOf(*image, 2, int(row)), c.alphas[row] << 24 | c.alphas[row] << 16) << row;
    }
    for (const auto& [opacity, alpha] : { std::pair(1.0f, 255u), std::pair(7.0f, 255u), std::pair(-1.0f, 0u),
             std::pair(std::numeric_limits<float>::quiet_NaN(), 0u) }) {
        const auto reflection = reflectionOf(rectangle({ 5, 5, 4, 20 }));
        reflection->setStartOpacity(opacity);
        EXPECT_EQ(pixelOf(*reflection->_reflectedImageRef(), 0, 0) >> 24, alpha);
    }
}

/// At every scale, and with a shadow inside the object, which falls the other way in the mirror.
TEST(Reflection, IsTheFadedMirrorImageOfItsObject)
{
    for (const float scale : { 1.0f, 2.0f, 3.0f }) {
        FakeCanvas canvas;
        canvas.scale = scale;
        const auto group = groupWithShadow();
        group->setCanvas(&canvas);
        // Bounds of whole units, so that no pixel is resampled.
        group->setClipPaths({ Path::pathWithRect({ 0, 0, 130, 110 }),
            Path::pathWithRect(integralRect(insetRect(group->alignmentBounds(), 1, 1))) });
        const Rect bounds = group->alignmentBounds();
        ASSERT_EQ(bounds, integralRect(bounds));
        const auto reflection = reflectionOf(group);
        const int strip = int(std::trunc(reflection->sustainHeight()) * scale);
        reflection->setNaturalSize({ bounds.size.width, std::trunc(reflection->sustainHeight()) });
        const auto object = drawn(*group, scale), mirror = drawn(*reflection, scale);
        const int bottom = int(bounds.maxY() * scale), top = bottom + int(scale);
        int seen = 0;
        for (int row = 0; row < strip; ++row) {
            const double factor = std::pow(1 - double(row) / (strip - 1), 1.8) * 0.5;
            for (int x = 0; x < object->width(); ++x) {
                const auto from = object->pixels()[(bottom - 1 - row) * object->width() + x];
                const auto to = mirror->pixels()[(top + row) * mirror->width() + x];
                for (int shift = 0; shift < 32; shift += 8)
                    ASSERT_NEAR(to >> shift & 255, (from >> shift & 255) * factor, 2)
                        << scale << " at " << x << " " << row;
                seen += to >> 24 > 0;
            }
        }
        EXPECT_GT(seen, 1000);
        group->setCanvas(nullptr);
    }
}

TEST(Reflection, IsCapturedForTheDevice)
{
    const auto reflection = reflectionOf(rectangle({ 0, 0, 100, 100 }));
    const auto recorded = [&](float scale, bool toScreen) {
        RecordingContext context;
        context.scale(scale, scale);
        const CurrentContextScope current(context, toScreen, true);
        reflection->renderIntoContext(context);
        return context.recorded();
    };
    EXPECT_THAT(recorded(1, true), testing::HasSubstr("draw-image 0 0 100 40 of 100x40"));
    EXPECT_THAT(recorded(0.1f, true), testing::HasSubstr("of 100x40"));
    EXPECT_THAT(recorded(2.5f, true), testing::HasSubstr("of 250x100"));
    EXPECT_THAT(recorded(1, false), testing::HasSubstr("of 417x167")) << "300 pixels an inch";
    const auto wide = reflectionOf(rectangle({ 0, 0, 1e5f, 400 }));
    EXPECT_EQ(wide->_reflectedImageRef()->width(), 32767);
    const auto empty = rectangle({ 0, 0, 2000, 2000 });
    empty->setFill(nullptr);
    const auto large = reflectionOf(empty)->_reflectedImageRef(1000);
    EXPECT_NEAR(double(large->width()) * large->height(), VXRReflectionRenderable::maxCapturePixels, 50'000);
    EXPECT_EQ(reflectionOf(rectangle({ 0, 0, INFINITY, 100 }))->_reflectedImageRef(), nullptr);
}

TEST(Reflection, TakesTheNewSizeWhenInvalidatedAndErasesBoth)
{
    Lines lines;
    FakeCanvas canvas(&lines);
    const auto object = rectangle({ 0, 0, 50, 50 });
    const auto reflection = reflectionOf(object);
    reflection->setCanvas(&canvas);
    const auto before = reflection->_reflectedImageRef();
    object->setPath(Path::pathWithRect({ 0, 0, 80, 100 }));
    EXPECT_EQ(reflection->_reflectedImageRef(), before) << "until it is invalidated";
    lines.clear();
    reflection->invalidate();
    EXPECT_EQ(reflection->alignmentBounds(), (Rect { 0, 51, 80, 40 })) << "where it was";
    EXPECT_EQ(lines, (Lines { "told", "damage -5 46 60 30", "damage -5 46 90 50" }));
    EXPECT_NE(reflection->_reflectedImageRef(), before);
    reflection->updateOffset();
    EXPECT_EQ(reflection->alignmentBounds(), (Rect { 0, 101, 80, 40 }));

    auto& flusher = VXUObjectFlusher::instance();
    const std::size_t budget = flusher.budget();
    const auto other = reflectionOf(object);
    other->_reflectedImageRef();
    flusher.setBudget(0);
    EXPECT_FALSE(reflection->isFlushable());
    flusher.setBudget(budget);
}

TEST(Reflection, RefusesItselfAndStopsWithinItsOwnCapture)
{
    const auto first = reflectionOf(rectangle({ 0, 0, 50, 50 })), second = reflectionOf(first);
    EXPECT_THROW(first->setRenderableToReflect(first), InvalidArgumentException);
    EXPECT_THROW(first->setRenderableToReflect(second), InvalidArgumentException);
    EXPECT_TRUE(second->_reflectedImageRef()) << "a reflection of a reflection";
    const auto group = VXRGroup::groupWithRenderables({ rectangle({ 0, 0, 50, 50 }) });
    const auto within = reflectionOf(group);
    group->insertRenderableAtIndex(within, 1);
    within->invalidate();
    EXPECT_TRUE(within->_reflectedImageRef());
    group->removeRenderable(*within);
    const auto none = reflectionOf(nullptr);
    EXPECT_EQ(none->_reflectedImageRef(), nullptr);
    EXPECT_EQ(none->sustainHeight(), 0);
    drawn(*none, 1);
}
