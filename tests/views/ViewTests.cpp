#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/views/ScrollView.h>
#include <vxr/platform/views/Window.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>

using namespace vxr;
using ::testing::ElementsAre;

namespace {

/// Paints a fixed picture and notes what it was asked to draw.
class PictureView : public View {
public:
    using View::View;
    bool flipped = true;
    bool opaque = false;
    std::function<void(const Rect&)> paint;
    std::vector<Rect> drawn;

    bool isFlipped() const override { return flipped; }
    bool isOpaque() const override { return opaque; }
    void drawRect(const Rect& rect) override
    {
        drawn.push_back(rect);
        if (paint)
            paint(rect);
    }
};

void fill(const Rect& rect, float red, float green, float blue)
{
    currentDrawingPort().setFillColor(ColorValue::rgb(red, green, blue));
    currentDrawingPort().fillRect(rect);
}

std::uint32_t pixelAt(const Window& window, int x, int y) { return window.pixels()[y * window.width() + x]; }

std::vector<std::uint32_t> allPixels(const Window& window)
{
    return { window.pixels(), window.pixels() + window.width() * window.height() };
}

/// The pixels with a box of one value, in rows from the top.
std::vector<std::uint32_t> withBox(
    std::vector<std::uint32_t> pixels, int rowLength, const Rect& box, std::uint32_t value)
{
    for (int y = int(box.minY()); y < int(box.maxY()); ++y)
        std::fill_n(pixels.begin() + y * rowLength + int(box.minX()), int(box.size.width), value);
    return pixels;
}

/// The pixels that differ, less those within the damage.
int changedOutside(
    const std::vector<std::uint32_t>& before, const Window& window, const std::vector<Rect>& damage)
{
    auto after = allPixels(window);
    for (const Rect& r : damage)
        for (int y = int(r.minY()); y < int(r.maxY()); ++y)
            std::copy_n(before.begin() + y * window.width() + int(r.minX()), int(r.size.width),
                after.begin() + y * window.width() + int(r.minX()));
    int count = 0;
    for (std::size_t i = 0; i < after.size(); ++i)
        count += after[i] != before[i];
    return count;
}

/// A window that shows a document of stripes, which differ at every place, with marks on it.
struct ScrollingScene {
    Window window { { 0, 0, 60, 40 } };
    std::shared_ptr<ScrollView> scrollView = std::make_shared<ScrollView>(Rect { 5, 5, 50, 30 });
    std::shared_ptr<PictureView> document = std::make_shared<PictureView>(Rect { 0, 0, 200, 150 });

    std::vector<Rect> marks;

    ScrollingScene()
    {
        window.contentView()->addSubview(scrollView);
        scrollView->setDocumentView(document);
        document->paint = [this](const Rect&) {
            for (int y = 0; y < 150; y += 5)
                for (int x = 0; x < 200; x += 5)
                    fill({ float(x), float(y), 5, 5 }, float(x) / 255, float(y) / 255, 0.5f);
            for (const Rect& mark : marks)
                fill(mark, 1, 1, 1);
        };
        window.displayIfNeeded();
        document->drawn.clear();
    }
};

} // namespace

TEST(View, ConversionsFollowFramesFlipsScrollAndScale)
{
    Window window({ 0, 0, 400, 300 });
    auto outer = std::make_shared<PictureView>(Rect { 10, 20, 200, 100 });
    auto inner = std::make_shared<PictureView>(Rect { 30, 40, 100, 50 });
    window.contentView()->addSubview(outer);
    outer->addSubview(inner);

    // Flipped in an upright window: the outer view's y = 0 is the top of its frame, at window y 120.
    EXPECT_EQ(outer->convertPointToView({ 0, 0 }, nullptr), (Point { 10, 120 }));
    EXPECT_EQ(inner->convertPointToView({ 1, 2 }, nullptr), (Point { 41, 78 }));
    EXPECT_EQ(inner->convertPointFromView({ 41, 78 }, nullptr), (Point { 1, 2 }));
    EXPECT_EQ(inner->convertPointToView({ 1, 2 }, outer.get()), (Point { 31, 42 }));

    inner->scaleUnitSquareToSize({ 2, 4 });
    inner->setBoundsOrigin({ 3, 5 });
    EXPECT_EQ(inner->bounds(), Rect(3, 5, 50, 12.5f));
    EXPECT_EQ(inner->convertPointToView({ 4, 6 }, outer.get()), (Point { 32, 44 }));
    EXPECT_EQ(inner->convertRectToView({ 4, 6, 10, 2 }, nullptr), Rect(42, 68, 20, 8));

    outer->flipped = false; // the inner frame's y now counts from below, its own still from above
    EXPECT_EQ(inner->convertPointToView({ 3, 5 }, nullptr), (Point { 40, 110 }));
}

TEST(Window, DrawsOnlyWholePixelsOfDirtyAreasAndOnlyOnce)
{
    struct Case {
        float unit;
        Rect dirty, pixels;
    };
    // The document's upper left corner is pixel (5, 5): with a unit of 1.37 the area goes from pixel 12.12 to
    // 14.86 and from 14.73 to 16.10.
    for (const Case& c : { Case { 1, { 10, 10, 4, 3 }, { 15, 15, 4, 3 } },
             { 1.37f, { 5.2f, 7.1f, 2, 1 }, { 12, 14, 3, 3 } } }) {
        ScrollingScene scene;
        scene.document->scaleUnitSquareToSize({ c.unit, c.unit });
        scene.window.displayIfNeeded();
        const auto before = allPixels(scene.window);
        scene.document->paint = [](const Rect& r) { fill(insetRect(r, -20, -20), 1, 1, 1); };
        scene.document->setNeedsDisplayInRect(c.dirty);
        scene.document->setNeedsDisplayInRect(insetRect(c.dirty, 0.25f, 0.25f));
        scene.document->setNeedsDisplayInRect({ 100, 10, 4, 3 }); // out of sight
        scene.window.takeDamage();
        scene.document->drawn.clear();
        scene.window.displayIfNeeded();
        scene.window.displayIfNeeded();
        ASSERT_EQ(scene.document->drawn.size(), 1u);
        EXPECT_TRUE(rectContainsRect(scene.document->drawn[0], c.dirty));
        EXPECT_THAT(scene.window.takeDamage(), ElementsAre(c.pixels));
        EXPECT_EQ(allPixels(scene.window), withBox(before, 60, c.pixels, 0xffffffff)) << c.unit;
    }
}

TEST(ClipView, CopyingOnScrollEqualsRedrawingAndDrawsOnlyWhatIsNew)
{
    ScrollingScene copying, redrawing;
    redrawing.scrollView->contentView().setCopiesOnScroll(false);
    std::mt19937 random(3);
    Point place { 0, 0 };
    copying.window.takeDamage();
    for (int step = 0; step < 60; ++step) {
        const auto before = allPixels(copying.window);
        const bool far = step % 7 == 0;
        place = copying.scrollView->contentView().constrainScrollPoint(
            { place.x + float(int(random() % (far ? 301 : 21)) - (far ? 150 : 10)),
                place.y + float(int(random() % 21) - 10) });
        for (ScrollingScene* scene : { &copying, &redrawing }) {
            if (step % 5 == 0) { // still to be drawn when it moves
                scene->marks.push_back({ place.x + 3, place.y + 3, 9, 9 });
                View* dirty = scene->document.get();
                (step % 2 ? dirty : dirty->superview())->setNeedsDisplayInRect(scene->marks.back());
            }
            scene->scrollView->contentView().scrollToPoint(place);
            scene->document->drawn.clear();
            scene->window.displayIfNeeded();
        }
        ASSERT_EQ(allPixels(copying.window), allPixels(redrawing.window)) << "step " << step;
        ASSERT_EQ(changedOutside(before, copying.window, copying.window.takeDamage()), 0) << "step " << step;
    }
    copying.scrollView->contentView().scrollToPoint({ place.x, place.y > 50 ? place.y - 4 : place.y + 4 });
    copying.document->drawn.clear();
    copying.window.displayIfNeeded();
    ASSERT_EQ(copying.document->drawn.size(), 1u);
    EXPECT_EQ(copying.document->drawn[0].size, (Size { 50, 4 }));
}

TEST(ClipView, PixelsOfAViewInFrontStayWhereTheyAre)
{
    ScrollingScene scene;
    auto front = std::make_shared<PictureView>(Rect { 20, 10, 20, 15 });
    front->paint = [](const Rect&) { fill({ 0, 0, 20, 15 }, 1, 0, 0); };
    scene.window.contentView()->addSubview(front);
    scene.window.displayIfNeeded();
    scene.scrollView->contentView().scrollToPoint({ 8, 12 });
    scene.window.displayIfNeeded();
    const auto scrolled = allPixels(scene.window);
    scene.window.display();
    EXPECT_EQ(scrolled, allPixels(scene.window));
}

/// Whatever lies over what: opaque views, views that show through, views in views, painted superviews.
TEST(Window, RedrawnInPartsLooksAndIsReportedAsIfRedrawnWholly)
{
    std::mt19937 random(11);
    const auto below = [&](int n) { return int(random() % unsigned(n)); };
    Window window({ 0, 0, 90, 70 });
    auto page = std::make_shared<PictureView>(Rect { 0, 0, 90, 70 });
    window.setContentView(page);
    std::vector<std::shared_ptr<PictureView>> views { page };
    std::map<const View*, int> shades;
    for (int i = 0; i < 14; ++i) {
        auto view = std::make_shared<PictureView>(
            Rect(float(below(60)), float(below(40)), float(5 + below(40)), float(5 + below(30))));
        view->opaque = below(2);
        views[i < 9 ? 0 : std::size_t(1 + below(8))]->addSubview(view);
        views.push_back(view);
    }
    for (const auto& view : views)
        view->paint = [&shades, v = view.get()](const Rect& r) {
            const float alpha = v->opaque || !v->superview() ? 1 : 0.4f;
            currentDrawingPort().setFillColor(ColorValue::rgb(float(shades[v] % 7) / 7, 0.3f, 0.6f, alpha));
            currentDrawingPort().fillRect(r);
        };
    window.displayIfNeeded();
    for (int step = 0; step < 300; ++step) {
        const auto before = allPixels(window);
        window.takeDamage();
        View* last = nullptr;
        for (int n = 1 + below(3); n > 0; --n) {
            PictureView& view = *views[std::size_t(below(int(views.size())))];
            last = &view;
            if (below(5) == 0 && view.superview()) {
                view.setHidden(!view.isHidden());
            } else if (below(4) == 0 && view.superview()) {
                view.setFrameOrigin({ float(below(60)), float(below(40)) });
            } else {
                ++shades[&view];
                view.setNeedsDisplay(true);
            }
        }
        if (below(4) == 0)
            last->displayIfNeeded(); // the others still wait
        window.displayIfNeeded();
        ASSERT_EQ(changedOutside(before, window, window.takeDamage()), 0) << "step " << step;
        const auto inParts = allPixels(window);
        window.display();
        ASSERT_EQ(inParts, allPixels(window)) << "step " << step;
    }
}

TEST(Window, ViewsMayLeaveWhileTheyAreDrawn)
{
    Window window({ 0, 0, 30, 30 });
    auto leaving = std::make_shared<PictureView>(Rect { 0, 0, 10, 10 });
    auto next = std::make_shared<PictureView>(Rect { 10, 10, 10, 10 });
    auto last = std::make_shared<PictureView>(Rect { 20, 20, 10, 10 });
    for (const auto& view : { leaving, next, last })
        window.contentView()->addSubview(view);
    PictureView* gone = leaving.get();
    gone->paint = [&, gone](const Rect&) {
        next->removeFromSuperview();
        gone->removeFromSuperview();
    };
    last->paint = [&](const Rect& r) {
        fill(r, 0, 1, 0);
        window.setContentView(nullptr);
    };
    leaving = nullptr;
    window.displayIfNeeded();
    EXPECT_TRUE(next->drawn.empty());
    EXPECT_EQ(View::focusView(), nullptr);
    EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
    EXPECT_EQ(pixelAt(window, 25, 5), 0xff00ff00u);
    ASSERT_TRUE(window.contentView());
    EXPECT_EQ(window.contentView()->frame(), Rect(0, 0, 30, 30));
    EXPECT_TRUE(window.contentView()->subviews().empty());
}

TEST(ClipView, ScrollPointStaysOnTheDocumentAndOnWholePixels)
{
    ScrollingScene scene;
    View& document = *scene.document;
    document.scrollPoint({ 20.4f, 31.6f });
    EXPECT_EQ(scene.scrollView->documentVisibleRect(), Rect(20, 32, 50, 30));
    document.scrollPoint({ 1000, -5 });
    EXPECT_EQ(scene.scrollView->documentVisibleRect(), Rect(150, 0, 50, 30));
    EXPECT_TRUE(document.scrollRectToVisible({ 0, 100, 10, 10 }));
    EXPECT_EQ(scene.scrollView->documentVisibleRect(), Rect(0, 80, 50, 30));

    scene.scrollView->contentView().scrollToPoint({ 180, 20 }); // beyond the document
    EXPECT_EQ(document.visibleRect(), Rect(180, 20, 20, 30));
    document.scaleUnitSquareToSize({ 2, 2 });
    EXPECT_EQ(document.visibleRect(), Rect(90, 10, 10, 15));
    scene.scrollView->setHidden(true);
    EXPECT_TRUE(document.visibleRect().isEmpty());
}

TEST(Window, AFailingRedrawLeavesNothingOpenAndTheRestDrawn)
{
    Window window({ 0, 0, 30, 30 });
    auto bad = std::make_shared<PictureView>(Rect { 0, 0, 10, 10 });
    auto good = std::make_shared<PictureView>(Rect { 10, 10, 10, 10 });
    window.contentView()->addSubview(bad);
    window.contentView()->addSubview(good);
    bad->paint = [](const Rect&) {
        Context& port = currentDrawingPort();
        port.translate(3, 3);
        port.saveState();
        port.beginTransparencyLayer();
        port.clipToRect({ 0, 0, 1, 1 });
        throw GenericException("The drawing failed.");
    };
    good->paint = [](const Rect& r) { fill(r, 0, 1, 0); };
    EXPECT_THROW(window.displayIfNeeded(), GenericException);
    EXPECT_EQ(pixelAt(window, 15, 15), 0xff00ff00u);
    EXPECT_FALSE(window.isLocked());
    EXPECT_EQ(View::focusView(), nullptr);
    EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
    EXPECT_NO_THROW(window.displayIfNeeded());

    bad->paint = [](const Rect&) { fill({ 0, 0, 10, 10 }, 1, 0, 0); };
    bad->setNeedsDisplay(true);
    window.displayIfNeeded();
    EXPECT_EQ(pixelAt(window, 9, 29), 0xffff0000u);
}

TEST(Window, BitsAreThereOnlyWithANumber)
{
    Window deferred({ 0, 0, 8, 8 }, true);
    EXPECT_FALSE(deferred.lockBits({ 0, 0, 8, 8 }));
    deferred.orderFront();
    const auto bits = deferred.lockBits({ 0, 0, 8, 8 });
    ASSERT_TRUE(bits && deferred.isLocked());
    EXPECT_EQ(bits->depthCode, 4);
    EXPECT_EQ(bits->colorBytesPerRow, 32);
    deferred.unlockBits();
    EXPECT_FALSE(deferred.isLocked());
}

TEST(NotificationCenter, HandlersMayComeAndGoWhileOneRuns)
{
    NotificationCenter center;
    int object = 0, other = 0;
    std::vector<std::string> calls;
    const void *a = &calls, *b = &object;
    center.addObserver(a, "Saved", &object, [&](const Notification& note) {
        calls.push_back("a " + std::string(note.name));
        center.removeObserver(b);
        center.addObserver(b, "Saved", nullptr, [&](const Notification&) { calls.push_back("late"); });
    });
    center.addObserver(b, "Saved", nullptr, [&](const Notification&) { calls.push_back("b"); });
    center.post("Saved", &other);
    center.post("Closed", &object);
    center.post("Saved", &object);
    EXPECT_THAT(calls, ElementsAre("b", "a Saved"));
    center.removeObserver(a, "Saved", &other); // another object's
    center.post("Saved", &object);
    EXPECT_THAT(calls, ElementsAre("b", "a Saved", "a Saved"));
}
