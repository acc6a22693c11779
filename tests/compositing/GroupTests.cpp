#include <tests/compositing/LayerFakes.h>
#include <tests/compositing/PageScene.h>
#include <tests/compositing/RandomGroup.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr Size windowSize { 300, 220 };
constexpr Size pageSize { 420, 320 };

} // namespace

TEST(Group, WithNothingToShareDrawsWhatItsMembersDraw)
{
    for (unsigned seed = 1; seed <= 10; ++seed) {
        std::vector<std::uint32_t> pixels[2];
        for (const bool isGrouped : { false, true }) {
            PageScene scene(windowSize, pageSize);
            scene.canvas->setUsesCompositor(false);
            scene.canvas->setScale(1.3f);
            RandomPage random(seed, pageSize);
            VXRGroup::Members shapes;
            for (int i = 0; i < 20; ++i)
                shapes.push_back(random.shape());
            if (isGrouped)
                shapes = { VXRGroup::groupWithRenderables(shapes) };
            for (const auto& shape : shapes)
                scene.canvas->add(shape);
            pixels[isGrouped] = scene.redrawn();
        }
        // Where paints overlap, the group rounds them together.
        EXPECT_TRUE(samePixels(pixels[0], pixels[1], int(windowSize.width), 2)) << seed;
    }
}

/// Also where a member's shadow falls: it keeps its direction on the page however the group is turned.
TEST(Group, PaintsWithinItsErasableBounds)
{
    for (unsigned seed = 1; seed <= 40; ++seed) {
        PageScene scene(windowSize, pageSize);
        scene.canvas->setUsesCompositor(false);
        scene.canvas->setBackgroundColor(Color::whiteColor());
        RandomPage random(seed, pageSize);
        const auto group = randomGroup(random, 2);
        group->offsetBy(150 - group->center().x, 110 - group->center().y);
        scene.canvas->add(group);
        const auto pixels = scene.redrawn();
        const Rect allowed = integralRect(group->erasableBounds());
        for (int y = 0; y < int(windowSize.height); ++y) {
            for (int x = 0; x < int(windowSize.width); ++x) {
                const bool isInside
                    = x >= allowed.minX() && x < allowed.maxX() && y >= allowed.minY() && y < allowed.maxY();
                if (!isInside) {
                    ASSERT_EQ(pixels[std::size_t(y * int(windowSize.width) + x)] & 0xffffff, 0xffffffu)
                        << "seed " << seed << " at " << x << ", " << y;
                }
            }
        }
    }
}

TEST(Group, StaysVectorsInADocument)
{
    std::string document;
    const auto context = DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        document.assign(reinterpret_cast<const char*>(data), size);
        return true;
    });
    const auto group = VXRGroup::groupWithRenderables(
        { VXRShape::shapeWithRect({ 5, 5, 30, 10 }), VXRShape::shapeWithOvalInRect({ 5, 5, 5, 10 }) });
    group->setClipPaths({ Path::pathWithOvalInRect({ 0, 0, 20, 30 }) });
    group->setOpacity(0.5f);
    PDFPageBoxes boxes;
    boxes.media = { 0, 0, 50, 50 };
    context->beginPage(boxes);
    const CurrentContextScope scope(*context, false, false);
    group->renderLayeredIntoContext(*context);
    context->endPage();
    context->close();
    EXPECT_NE(document.find("/Type /Group"), std::string::npos); // the opacity is the whole's
    EXPECT_EQ(document.find("/Subtype /Image"), std::string::npos);
}

TEST(Group, IsHitWhereAMemberShowsThroughItsClip)
{
    const auto lower = VXRShape::shapeWithRect({ 5, 5, 30, 10 });
    const auto upper = VXRShape::shapeWithRect({ 5, 5, 5, 10 });
    const auto group = VXRGroup::groupWithRenderables({ lower, upper });
    group->setClipPaths({ Path::pathWithRect({ 0, 0, 20, 30 }) });
    group->scaleXByYByPivot(2, 2, {});
    group->offsetBy(10, 0);
    const struct {
        Point point;
        std::shared_ptr<VXRRenderable> hit;
    } cases[]
        = { { { 40, 20 }, lower }, { { 25, 20 }, upper }, { { 60, 20 }, nullptr }, { { 40, 40 }, nullptr } };
    for (const auto& c : cases) {
        EXPECT_EQ(group->renderableAtPoint(c.point), c.hit) << c.point;
        EXPECT_EQ(group->containsPoint(c.point), c.hit != nullptr) << c.point;
    }
    EXPECT_EQ(group->geometricBounds(), (Rect { 20, 10, 30, 20 }));
    EXPECT_EQ(group->naturalSize(), (Size { 15, 10 }));
    EXPECT_TRUE(group->intersectsRect({ 45, 0, 100, 100 }));
    EXPECT_FALSE(group->intersectsRect({ 55, 0, 100, 100 }));
}

TEST(Group, RefusesWhatItCantHold)
{
    const auto shape = VXRShape::shapeWithRect({ 0, 0, 10, 10 });
    const auto inner = VXRGroup::groupWithRenderables({ shape });
    const auto outer = VXRGroup::groupWithRenderables({ inner });
    EXPECT_THROW(inner->insertRenderableAtIndex(outer, 0), InvalidArgumentException);
    EXPECT_THROW(inner->insertRenderableAtIndex(inner, 0), InvalidArgumentException);
    EXPECT_THROW(inner->insertRenderableAtIndex(shape, 0), InvalidArgumentException);
    EXPECT_THROW(inner->insertRenderableAtIndex(nullptr, 0), InvalidArgumentException);
    EXPECT_THROW(inner->setRenderables({ shape, shape }), InvalidArgumentException);
    EXPECT_EQ(inner->renderables(), VXRGroup::Members { shape });
    inner->removeRenderable(*shape);
    EXPECT_EQ(shape->canvas(), nullptr);
}
