#include <tests/compositing/LayerFakes.h>
#include <tests/compositing/PageScene.h>

#include <vxr/compositing/canvas/RenderableIndex.h>

#include <gtest/gtest.h>

// Whatever happens to a page, the index finds what a walk over all objects would.

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr Size pageSize { 6000, 4000 };

/// A canvas with nothing but an index.
class IndexedCanvas final : public FakeCanvas {
public:
    std::optional<AffineTransform> shadowTransform;
    RenderableIndex index { *this };
    RenderableIndex::List page;

    ~IndexedCanvas() override
    {
        for (const auto& object : page)
            object->setCanvas(nullptr);
    }
    std::optional<AffineTransform> additionalShadowTransform() const override { return shadowTransform; }
    void unregisterRenderable(VXRRenderable& object) override { index.remove(object); }
    void renderableBoundsMayChange(const VXRRenderable& object) override { index.boundsMayChange(object); }
};

/// Changes where it draws without a word.
class Fickle : public VXRShape {
public:
    Rect drawn { 0, 0, 10, 10 };
    Rect erasableBounds() const override { return drawn; }
    bool containsPoint(Point p) const override
    {
        return p.x >= drawn.minX() && p.x < drawn.maxX() && p.y >= drawn.minY() && p.y < drawn.maxY();
    }
};

struct Page {
    IndexedCanvas canvas;
    RandomPage random { 7, pageSize };
    std::shared_ptr<VXRShadow> shared
        = VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(10, 5, 3, 1, Color::blackColor());

    Rect rect(float most)
    {
        return { random.between(-500, pageSize.width), random.between(-500, pageSize.height),
            random.between(1, most), random.between(1, most) };
    }
    std::shared_ptr<VXRShape> shape()
    {
        if (random.oneIn(12)) {
            auto fickle = std::make_shared<Fickle>();
            fickle->drawn = rect(300);
            return fickle;
        }
        auto made = random.shape();
        if (random.oneIn(6))
            made->setShadow(shared);
        if (random.oneIn(10))
            made->scaleXByYByPivot(random.between(1, 60), random.between(0.1f, 60), made->center());
        if (random.oneIn(40))
            made->offsetTo({ 1e12f, NAN });
        return made;
    }
    std::shared_ptr<VXRShape> any()
    {
        return std::static_pointer_cast<VXRShape>(
            canvas.page[std::size_t(random.below(int(canvas.page.size())))]);
    }
    void add(std::size_t place)
    {
        auto made = shape();
        if (!random.oneIn(15)) // some belong nowhere
            made->setCanvas(&canvas);
        canvas.page.insert(canvas.page.begin() + std::ptrdiff_t(place), made);
    }
    void change()
    {
        auto& page = canvas.page;
        const std::size_t place = std::size_t(random.below(int(page.size())));
        auto& object = static_cast<VXRShape&>(*page[place]);
        switch (random.below(13)) {
        case 0:
            object.offsetBy(random.between(-900, 900), random.between(-30, 30));
            break;
        case 1:
            object.scaleXByYByPivot(random.between(0.2f, 5), random.between(0.2f, 5), object.center());
            break;
        case 2:
            object.setAutoInvalidates(false);
            object.offsetTo({ random.between(0, 6000), random.between(0, 4000) });
            object.setAutoInvalidates(true);
            break;
        case 3:
            random.restyle(object);
            break;
        case 4:
            shared->setOffset(random.between(0, 400));
            shared->setRadius(random.below(200));
            break;
        case 5:
            page.erase(page.begin() + std::ptrdiff_t(place));
            break;
        case 6:
            object.setCanvas(object.canvas() ? nullptr : &canvas);
            break;
        case 7:
            std::swap(page[place], page[std::size_t(random.below(int(page.size())))]);
            break;
        case 8: { // another one takes its place, perhaps its memory too
            page[place] = nullptr;
            page[place] = shape();
            page[place]->setCanvas(&canvas);
            break;
        }
        case 9:
            page.push_back(page[place]); // twice
            break;
        case 10:
            if (auto* fickle = dynamic_cast<Fickle*>(&object))
                fickle->drawn = rect(2000);
            break;
        case 11:
            canvas.shadowTransform = AffineTransform::makeTranslation(random.between(-300, 300), 0);
            break;
        default:
            add(std::size_t(random.below(int(page.size() + 1))));
        }
    }
};

} // namespace

TEST(RenderableIndex, FindsWhatAWalkFinds)
{
    for (const bool counts : { false, true }) {
        Page page;
        for (int i = 0; i < 400; ++i)
            page.add(page.canvas.page.size());
        for (int step = 1; step <= 1500; ++step) {
            page.change();
            if (page.random.oneIn(3))
                page.change(); // several between redraws
            const auto& list = page.canvas.page;
            page.canvas.index.update(list, counts ? std::uint64_t(step) : 0);
            page.canvas.index.update(list, counts ? std::uint64_t(step) : 0);
            const Rect rect = page.rect(step % 10 ? 300 : 8000);
            const auto found = page.canvas.index.find(rect);
            ASSERT_TRUE(std::is_sorted(found.begin(), found.end()));
            ASSERT_EQ(std::adjacent_find(found.begin(), found.end()), found.end());
            const auto isFound = [&](std::size_t rank) {
                return std::binary_search(found.begin(), found.end(), std::uint32_t(rank));
            };
            for (std::size_t rank = 0; rank < list.size(); ++rank) {
                const bool met = rectsIntersect(list[rank]->erasableBounds(), rect)
                    || list[rank]->intersectsRect(rect) || list[rank]->containsPoint(rect.origin);
                ASSERT_TRUE(!met || isFound(rank)) << "step " << step << " rank " << rank;
            }
        }
    }
}

/// The work is that of what is near, also after changes.
TEST(RenderableIndex, FindsLittleMore)
{
    IndexedCanvas canvas;
    for (int i = 0; i < 40000; ++i) {
        canvas.page.push_back(VXRShape::shapeWithRect({ float(i % 200) * 40, float(i / 200) * 40, 30, 30 }));
        canvas.page.back()->setCanvas(&canvas);
    }
    canvas.index.update(canvas.page, 0);
    for (int i = 0; i < 1000; ++i)
        canvas.page[std::size_t(i) * 7]->offsetBy(float(i), 3);
    canvas.page.erase(canvas.page.begin() + 100);
    canvas.index.update(canvas.page, 0);
    EXPECT_LE(canvas.index.find({ 4000, 4000, 100, 100 }).size(), 40u);
    EXPECT_LE(canvas.index.byteSize(), 100u * canvas.page.size());
}

TEST(Canvas, HitsAreThoseOfItsObjectsTopmostFirst)
{
    PageScene scene({ 200, 150 }, { 400, 300 });
    const auto add = [&](const Rect& r, auto shape) {
        shape->setPath(Path::pathWithRect(r));
        scene.canvas->add(shape);
        return std::shared_ptr<VXRRenderable>(shape);
    };
    const auto back = add({ 10, 10, 100, 100 }, std::make_shared<VXRShape>());
    const auto front = add({ 50, 50, 100, 100 }, std::make_shared<VXRShape>());
    const auto fickle = std::make_shared<Fickle>();
    fickle->drawn = { 300, 200, 20, 20 };
    add({ 0, 0, 5, 5 }, fickle);
    auto line = Path::path();
    line->moveTo({ 200, 20 });
    line->lineTo({ 300, 20 });
    const auto thin = VXRShape::shapeWithBezierPath(line);
    scene.canvas->add(thin);

    EXPECT_EQ(scene.canvas->objectAtPoint({ 60, 60 }), front);
    EXPECT_EQ(scene.canvas->objectAtPoint({ 20, 20 }), back);
    EXPECT_EQ(scene.canvas->objectAtPoint({ 310, 210 }), fickle);
    EXPECT_EQ(scene.canvas->objectAtPoint({ 250, 22.4f }), thin) << "the grace of thin lines";
    EXPECT_EQ(scene.canvas->objectAtPoint({ 250, 23 }), nullptr);
    EXPECT_EQ(scene.canvas->objectAtPoint({ NAN, 20 }), nullptr);
    EXPECT_EQ(scene.canvas->objectsMeetingRect({ 40, 40, 20, 20 }), (VXRCanvas::RenderableList { front }))
        << "the inside of the one at the back doesn't count";
    EXPECT_EQ(scene.canvas->objectsMeetingRect({ 0, 0, 160, 160 }),
        (VXRCanvas::RenderableList { back, front, fickle }));
    scene.canvas->remove(1);
    EXPECT_EQ(scene.canvas->objectAtPoint({ 60, 60 }), back);
}
