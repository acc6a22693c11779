#include "Scene.h"

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRManipulatedStroke.h>
#include <vxr/strokes/VXRSmartStroke.h>
#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>
#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>
#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>
#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>
#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>
#include <vxr/strokes/smart/VXRStrokeBundleFolder.h>

#include <cmath>
#include <filesystem>

namespace vxr::demo {

namespace {

using Manipulations = VXRManipulatedStroke::Manipulations;

std::shared_ptr<VXRShape> shapeOf(
    std::shared_ptr<Path> path, std::shared_ptr<VXRStroke> stroke, std::shared_ptr<Color> fill = nullptr)
{
    auto shape = VXRShape::shapeWithBezierPath(std::move(path));
    shape->setStroke(std::move(stroke));
    shape->setFill(std::move(fill));
    return shape;
}

/// A roof over a rounded foot: corners and curves, 90 by 80.
std::shared_ptr<Path> house(float x, float y)
{
    auto path = Path::path();
    path->moveTo({ x, y + 35 });
    path->lineTo({ x + 45, y });
    path->lineTo({ x + 90, y + 35 });
    path->lineTo({ x + 90, y + 60 });
    path->curveTo({ x + 90, y + 90 }, { x, y + 90 }, { x, y + 60 });
    path->close();
    return path;
}

std::shared_ptr<VXRStroke> manipulated(
    Manipulations steps, float width = 3, std::shared_ptr<VXRPathStroker> stroker = nullptr)
{
    return VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(
        Color::colorWithCalibratedRGB(0.12f, 0.22f, 0.42f), width, std::move(steps), std::move(stroker));
}

Renderables buildManipulations()
{
    const auto wobbly = std::make_shared<VXRWobblyPathManipulation>(0.6f, 6, 3);
    const auto vary = std::make_shared<VXRVaryWidthPathManipulation>(0.8f, 6, 5);
    const std::vector<std::pair<Manipulations, float>> all {
        { {}, 3 },
        { { std::make_shared<VXROffsetOddWidthPathManipulation>() }, 1 },
        { { std::make_shared<VXROutsetPathManipulation>(2) }, 3 },
        { { std::make_shared<VXROverstrokePathManipulation>(5, 2) }, 2 },
        { { std::make_shared<VXRRoundedPathManipulation>(6) }, 3 },
        { { vary }, 5 },
        { { wobbly }, 3 },
        { { std::make_shared<VXRRoundedPathManipulation>(3), wobbly, vary }, 4 },
    };
    Renderables renderables;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const float x = 20 + 125 * float(i % 4), y = 20 + 115 * float(i / 4);
        renderables.push_back(shapeOf(house(x, y),
            VXRStroke::strokeWithColorWidth(Color::colorWithCalibratedRGB(0.9f, 0.55f, 0.4f), 0.5f)));
        renderables.push_back(shapeOf(house(x, y), manipulated(all[i].first, all[i].second)));
    }
    return renderables;
}

Renderables buildStrokers()
{
    auto wave = Path::path(); // one turn of a band
    wave->moveTo({ 0, -0.3f });
    wave->curveTo({ 1, 1.1f }, { 2, -1.7f }, { 3, -0.3f });
    wave->lineTo({ 3, 0.3f });
    wave->curveTo({ 2, -1.1f }, { 1, 1.7f }, { 0, 0.3f });
    wave->close();
    auto leaf = Path::path();
    leaf->moveTo({ 0, 0 });
    leaf->curveTo({ 0.6f, 1.4f }, { 1.6f, 1.6f }, { 2.4f, 1.4f });
    leaf->curveTo({ 2.2f, 0.6f }, { 1.4f, -0.2f }, { 0, 0 });
    leaf->close();
    const std::vector<std::shared_ptr<VXRPathStroker>> strokers {
        std::make_shared<VXROutsetPathStroker>(3, 1.6f, 0.5f),
        std::make_shared<VXRPatternedPathStroker>(),
        std::make_shared<VXRPatternedPathStroker>(wave, 3, true),
        std::make_shared<VXRPatternedPathStroker>(leaf, 2.2f, false),
    };
    Renderables renderables;
    for (std::size_t i = 0; i < strokers.size(); ++i)
        renderables.push_back(shapeOf(house(25 + 130 * float(i), 25), manipulated({}, 5, strokers[i])));
    return renderables;
}

/// The installed bundles, or those of the source tree while the program runs where it was built.
VXRStrokeBundleFolder& shippedBundles()
{
    static VXRStrokeBundleFolder folder = [] {
        std::error_code error;
        const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
        const auto installed = program.parent_path().parent_path() / "share/vxr/strokes";
        return VXRStrokeBundleFolder(
            std::filesystem::is_directory(installed, error) ? installed.string() : VXR_STROKE_BUNDLES);
    }();
    return folder;
}

std::shared_ptr<VXRStroke> smart(
    const char* name, std::shared_ptr<Color> color, float width, std::uint32_t seed)
{
    auto stroke = VXRSmartStroke::smartStrokeWithNameSourceColorWidth(
        name, &shippedBundles(), std::move(color), width);
    stroke->setRandomSeed(seed);
    return stroke;
}

Renderables buildSmartStrokes()
{
    const struct {
        const char* name;
        float red, green, blue, width;
    } all[] = {
        { "chalk", 0.35f, 0.45f, 0.6f, 10 },
        { "crayon", 0.8f, 0.3f, 0.2f, 10 },
        { "film strip", 0.9f, 0.6f, 0.2f, 22 },
        { "ink brush", 0.1f, 0.1f, 0.15f, 12 },
        { "rope", 0.62f, 0.45f, 0.22f, 10 },
        { "stitching", 0.2f, 0.35f, 0.7f, 6 },
    };
    Renderables renderables;
    float y = 25;
    for (const auto& bundle : all) {
        const auto stroke = smart(bundle.name,
            Color::colorWithCalibratedRGB(bundle.red, bundle.green, bundle.blue), bundle.width, 11);
        auto wave = Path::path();
        wave->moveTo({ 25, y + 25 });
        wave->curveTo({ 90, y - 45 }, { 120, y + 95 }, { 185, y + 20 });
        wave->lineTo({ 230, y });
        wave->lineTo({ 250, y + 45 });
        renderables.push_back(shapeOf(wave, stroke));
        renderables.push_back(shapeOf(Path::pathWithOvalInRect({ 285, y, 75, 45 }), stroke));
        renderables.push_back(shapeOf(Path::pathWithRect({ 395, y, 70, 45 }), stroke));
        y += 72;
    }
    return renderables;
}

Renderables buildHandDrawn()
{
    const auto pencil = [](float width, std::uint32_t seed) {
        auto stroke = VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(
            Color::colorWithCalibratedWhite(0.2f), width,
            { std::make_shared<VXROverstrokePathManipulation>(5.0f, seed),
                std::make_shared<VXRWobblyPathManipulation>(0.5f, 12.0f, seed),
                std::make_shared<VXRVaryWidthPathManipulation>(0.6f, 9.0f, seed) });
        return stroke;
    };
    const auto crayon = [](float r, float g, float b, std::uint32_t seed) {
        return smart("crayon", Color::colorWithCalibratedRGB(r, g, b), 9, seed);
    };
    Renderables page;
    // Sun, hills, house, tree and a path, as one would sketch them.
    page.push_back(shapeOf(Path::pathWithOvalInRect({ 290, 55, 50, 50 }), crayon(0.95f, 0.7f, 0.1f, 1),
        Color::colorWithCalibratedRGB(1, 0.88f, 0.4f)));
    for (int i = 0; i < 8; ++i) {
        const float angle = float(i) * 0.785f;
        page.push_back(
            VXRLine::lineFromPointToPoint({ 315 + 36 * std::cos(angle), 80 + 36 * std::sin(angle) },
                { 315 + 52 * std::cos(angle), 80 + 52 * std::sin(angle) }));
        std::static_pointer_cast<VXRLine>(page.back())
            ->setStroke(crayon(0.95f, 0.6f, 0.1f, 2 + std::uint32_t(i)));
    }
    auto hills = Path::path();
    hills->moveTo({ 32, 175 });
    hills->curveTo({ 80, 90 }, { 130, 150 }, { 190, 165 });
    hills->curveTo({ 250, 110 }, { 320, 120 }, { 368, 175 });
    page.push_back(shapeOf(hills, crayon(0.35f, 0.6f, 0.3f, 20)));
    page.push_back(shapeOf(Path::pathWithRect({ 95, 130, 80, 65 }), pencil(2.2f, 5),
        Color::colorWithCalibratedRGB(0.99f, 0.94f, 0.85f)));
    auto roof = Path::path();
    roof->moveTo({ 88, 130 });
    roof->lineTo({ 135, 92 });
    roof->lineTo({ 182, 130 });
    roof->close();
    page.push_back(shapeOf(roof, pencil(2.2f, 6), Color::colorWithCalibratedRGB(0.9f, 0.5f, 0.4f)));
    page.push_back(shapeOf(Path::pathWithRect({ 125, 155, 20, 40 }), pencil(1.6f, 7)));
    page.push_back(shapeOf(Path::pathWithRect({ 103, 143, 15, 15 }), pencil(1.4f, 8)));
    page.push_back(shapeOf(Path::pathWithRect({ 152, 143, 15, 15 }), pencil(1.4f, 9)));
    page.push_back(VXRLine::lineFromPointToPoint({ 250, 205 }, { 252, 150 }));
    std::static_pointer_cast<VXRLine>(page.back())
        ->setStroke(smart("rope", Color::colorWithCalibratedRGB(0.4f, 0.26f, 0.15f), 9, 3));
    page.push_back(shapeOf(Path::pathWithOvalInRect({ 222, 100, 62, 58 }),
        smart("chalk", Color::colorWithCalibratedRGB(0.2f, 0.5f, 0.25f), 14, 4),
        Color::colorWithCalibratedRGB(0.75f, 0.88f, 0.7f)));
    auto way = Path::path();
    way->moveTo({ 135, 198 });
    way->curveTo({ 150, 235 }, { 260, 215 }, { 330, 250 });
    page.push_back(shapeOf(way, smart("stitching", Color::colorWithCalibratedRGB(0.55f, 0.4f, 0.3f), 7, 6)));
    page.push_back(shapeOf(Path::pathWithRect({ 20, 18, 360, 236 }), pencil(2.6f, 12)));
    return page;
}

Renderables buildConnectedLines()
{
    Renderables renderables;
    const auto stroke
        = VXRStroke::strokeWithColorWidth(Color::colorWithCalibratedRGB(0.3f, 0.3f, 0.4f), 1.5f);
    const auto fill = [](float r, float g, float b) { return Color::colorWithCalibratedRGB(r, g, b); };
    const std::shared_ptr<VXRShape> nodes[] = {
        shapeOf(Path::pathWithRect({ 25, 25, 70, 40 }), stroke, fill(0.85f, 0.92f, 1)),
        shapeOf(Path::pathWithOvalInRect({ 170, 15, 90, 60 }), stroke, fill(1, 0.92f, 0.8f)),
        shapeOf(house(40, 120), stroke, fill(0.88f, 0.97f, 0.86f)),
        shapeOf(Path::pathWithOvalInRect({ 200, 125, 70, 70 }), stroke, fill(0.97f, 0.87f, 0.95f)),
    };
    const auto connect = [&](int from, int to) {
        auto line = VXRLine::lineFromPointToPoint({}, {});
        line->setStroke(VXRStroke::strokeWithColorWidth(Color::blackColor(), 1.5f));
        line->setHeadLineEnd(VXRLineEnd::openArrow());
        line->connectHandle(VXRLine::startHandle, *nodes[from], VXRLineConnectedTowardsCenter);
        line->connectHandle(VXRLine::endHandle, *nodes[to], VXRLineConnectedTowardsCenter);
        renderables.push_back(line);
    };
    connect(0, 1);
    connect(1, 3);
    connect(3, 2);
    connect(2, 0);
    connect(0, 3);
    // Moved and turned after the lines were connected.
    nodes[0]->offsetBy(10, 8);
    nodes[3]->offsetBy(25, -10);
    nodes[2]->rotateByRadiansPivot(0.2f, nodes[2]->center());
    renderables.insert(renderables.begin(), std::begin(nodes), std::end(nodes));
    return renderables;
}

} // namespace

std::vector<Scene> strokeScenes()
{
    return {
        sceneOfRenderables("manipulated-strokes",
            "An outline as it is, moved onto pixels, grown, sketched, rounded, swelling, trembling, and all "
            "of these.",
            { 520, 240 }, buildManipulations),
        sceneOfRenderables("path-strokers",
            "Parallel lines, dots, a bent band and stiff leaves along an outline.", { 540, 130 },
            buildStrokers),
        sceneOfRenderables("smart-strokes",
            "Chalk, crayon, film strip, ink brush, rope and stitching along paths.", { 490, 460 },
            buildSmartStrokes),
        sceneOfRenderables("hand-drawn", "A page that looks drawn by hand.", { 400, 270 }, buildHandDrawn),
        sceneOfRenderables("connected-lines",
            "Lines that keep their ends on shapes which have been moved and turned since.", { 320, 230 },
            buildConnectedLines),
    };
}

} // namespace vxr::demo
