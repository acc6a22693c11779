#include <tests/compositing/LayerFakes.h>
#include <tests/compositing/PageScene.h>

#include <vxr/compositing/layers/VXRLayerBudget.h>

#include <gtest/gtest.h>

// Pages of many windows' size, on which the canvas has to find what a redraw needs.

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr Size windowSize { 240, 180 };
constexpr Size pageSize { 2600, 1900 };

/// Draws a frame around itself, and says so.
class FramedShape : public VXRShape {
public:
    float reach = 25;

    Rect erasableBounds() const override { return insetRect(VXRShape::erasableBounds(), -reach, -reach); }
    void renderIntoContext(Context& context) override
    {
        VXRShape::renderIntoContext(context);
        const StateSaver saved(context);
        context.setStrokeColor(ColorValue::rgb(0.8f, 0, 0.3f, 0.7f));
        context.strokePath(
            *Path::pathWithRect(insetRect(geometricBounds(), -reach + 3, -reach + 3)), { .width = 3 });
    }
    void setReach(float newReach)
    {
        autoErase();
        reach = newReach;
        invalidateBoundingBox();
        autoInvalidate();
    }

protected:
    float computePaintedOutset() const override { return reach; }
};

class LargePage {
public:
    PageScene scene { windowSize, pageSize };
    RandomPage random;

    explicit LargePage(unsigned seed)
        : random(seed, pageSize)
    {
        for (int i = 0; i < 350; ++i)
            scene.canvas->add(made());
    }

    std::string change()
    {
        auto& page = scene.canvas->page;
        auto& object = static_cast<VXRShape&>(*page[std::size_t(random.below(int(page.size())))]);
        switch (random.below(12)) {
        case 0:
            object.offsetTo(random.frame().origin);
            return "move across the page";
        case 1: {
            const Point seen = scene.canvas->visibleRect().origin;
            object.offsetTo({ seen.x + random.between(-60, 230), seen.y + random.between(-60, 170) });
            return "move into sight";
        }
        case 2:
            object.scaleXByYByPivot(random.between(0.1f, 8), random.between(0.1f, 8), object.center());
            return "another size";
        case 3:
            mRemoved.push_back(page[0]);
            scene.canvas->remove(0);
            return "remove";
        case 4:
            if (mRemoved.empty())
                return "nothing";
            if (random.oneIn(2)) // changed while it belonged nowhere
                mRemoved.back()->offsetBy(random.between(-500, 500), random.between(-300, 300));
            scene.canvas->add(mRemoved.back());
            mRemoved.pop_back();
            return "restore";
        case 5:
            if (auto* framed = dynamic_cast<FramedShape*>(&object))
                framed->setReach(random.between(4, 120));
            return "another frame";
        case 6:
            random.restyle(object);
            return "restyle";
        case 7: // while nobody is told of each change, but of the whole
            object.autoErase();
            object.setAutoInvalidates(false);
            object.offsetBy(random.between(-300, 300), random.between(-200, 200));
            object.setAutoInvalidates(true);
            object.invalidate();
            return "silent move";
        case 8:
            scene.canvas->scrollPoint(
                { random.between(0, pageSize.width), random.between(0, pageSize.height) });
            return "scroll";
        case 9: { // where its layer's place rounds one way or the other
            const Point seen = scene.canvas->visibleRect().origin;
            const Point now = object.alignmentBounds().origin;
            const float half = 0.5f / scene.canvas->viewScale() - random.between(-1e-4f, 1e-4f);
            object.offsetBy(std::floor(seen.x) + float(random.below(200)) + half - now.x,
                std::floor(seen.y) + float(random.below(150)) + half - now.y);
            return "move between pixels";
        }
        default: {
            const Point seen = scene.canvas->visibleRect().origin;
            scene.canvas->scrollPoint({ std::floor(seen.x) + float(random.below(61) - 30),
                std::floor(seen.y) + float(random.below(61) - 30) });
            return "scroll by pixels";
        }
        }
    }

private:
    std::shared_ptr<VXRShape> made()
    {
        if (!random.oneIn(6))
            return random.shape();
        auto framed = VXRShape::shapeWithRect<FramedShape>(random.frame());
        random.restyle(*framed);
        return framed;
    }

    std::vector<std::shared_ptr<VXRRenderable>> mRemoved;
};

struct BudgetRestored {
    ~BudgetRestored() { VXRLayerBudget::setLimit(VXRLayerBudget::defaultLimit); }
};

/// Shows the objects of another canvas, at the same place. It can't trust their bounds, so it asks all of
/// them.
class Walk {
public:
    std::vector<std::uint32_t> pixelsLike(const PageScene& shown)
    {
        mScene.canvas->setUsesCompositor(shown.canvas->usesCompositor());
        if (mScene.canvas->viewScale() != shown.canvas->viewScale())
            mScene.canvas->setScale(shown.canvas->viewScale());
        mScene.canvas->scrollPoint(shown.canvas->visibleRect().origin);
        mScene.canvas->page = shown.canvas->page;
        return mScene.redrawn();
    }

private:
    PageScene mScene { windowSize, pageSize };
};

} // namespace

TEST(LargePages, IncrementalEqualsAWalkOverAllWithAnyBudget)
{
    const BudgetRestored restored;
    const struct {
        bool layers;
        std::size_t limit;
        float zoom;
    } cases[] = { { false, 0, 1 }, { true, 0, 1 }, { true, 30'000, 1 }, { true, 400'000, 1.5f },
        { true, VXRLayerBudget::defaultLimit, 1 }, { true, VXRLayerBudget::defaultLimit, 0.25f } };
    for (const auto& one : cases) {
        LargePage page(12);
        Walk walk;
        auto& scene = page.scene;
        scene.canvas->setUsesCompositor(one.layers);
        scene.canvas->setScale(one.zoom);
        scene.window.displayIfNeeded();
        for (int step = 0; step < 160; ++step) {
            VXRLayerBudget::setLimit(one.limit);
            const std::string what = page.change();
            scene.window.displayIfNeeded();
            const auto incremental = scene.pixels();
            if (step % 10 == 9)
                for (const auto& object : scene.canvas->page)
                    object->flushCompositorLayer();
            ASSERT_TRUE(samePixels(incremental, walk.pixelsLike(scene), scene.window.width()))
                << "step " << step << ": " << what << ", layers " << one.layers << ", limit " << one.limit;
        }
    }
}
