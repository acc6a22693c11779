#include <tests/support/FakeShape.h>
#include <tests/support/PathBuilder.h>
#include <tests/support/RecordingContext.h>
#include <vxr/geometry/Color.h>
#include <vxr/geometry/curves/PathPlaces.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/strokes/VXRSmartStroke.h>
#include <vxr/strokes/smart/VXRStrokeBundle.h>
#include <vxr/strokes/smart/VXRStrokeBundleFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr const char* bandText = "name band\nhead 2\npath M 0 0 L 2 -0.5 L 2 0.5 Z\n"
                                 "body 3\npath M 0 -0.5 L 3 -0.5 L 3 0.5 L 0 0.5 Z\n"
                                 "color 1 0 0 0.5\npath M 1 -0.2 L 2 -0.2 L 2 0.2 L 1 0.2 Z\n"
                                 "tail 1\npath M 0 -0.5 L 1 0 L 0 0.5 Z\n";

/// Has the bundles that it is given.
struct Bundles final : VXRStrokeBundleSource {
    std::map<std::string, std::shared_ptr<const VXRStrokeBundle>> all;

    explicit Bundles(std::initializer_list<const char*> texts)
    {
        for (const char* text : texts)
            if (auto bundle = VXRStrokeBundle::bundleFromText(text, ""))
                all[bundle->name] = bundle;
    }
    std::shared_ptr<const VXRStrokeBundle> strokeBundleForName(const std::string& name) override
    {
        const auto found = all.find(name);
        return found == all.end() ? nullptr : found->second;
    }
};

std::shared_ptr<VXRSmartStroke> smart(VXRStrokeBundleSource* source, const char* name, float width = 4)
{
    auto stroke
        = VXRSmartStroke::smartStrokeWithNameSourceColorWidth(name, source, Color::blackColor(), width);
    stroke->setRandomSeed(7);
    return stroke;
}

Lines painted(VXRStroke& stroke, std::shared_ptr<Path> outline, FakeCanvas* canvas = nullptr)
{
    FakeShape shape(std::move(outline));
    shape.onCanvas = canvas;
    RecordingContext context;
    const CurrentContextScope scope(context, true, true);
    stroke.paintShape(shape);
    return context.lines();
}

std::size_t subPaths(const Path& path)
{
    return static_cast<std::size_t>(
        std::count(path.kinds().begin(), path.kinds().end(), PathElementKind::MoveTo));
}

} // namespace

TEST(SmartStroke, LaysHeadBodiesAndTailWithoutGaps)
{
    Bundles bundles { bandText };
    const auto stroke = smart(&bundles, "band");
    const auto straight = stroke->layersForOutline(pathOf("M 0 0 L 100 0"), false);
    ASSERT_EQ(straight.size(), 2u);
    // 8 of head, 4 of tail, and 7 bodies of 12 over 88.
    EXPECT_EQ(subPaths(*straight[0].path), 9u);
    EXPECT_EQ(subPaths(*straight[1].path), 7u);
    EXPECT_FALSE(straight[0].color);
    EXPECT_EQ(straight[1].opacity, 0.5f);
    EXPECT_EQ(straight[0].path->bounds(), Rect(0, -2, 100, 4));
    // Around corners and along curves: every place of the middle third is covered.
    for (const char* text : { "M 0 0 L 60 0 L 60 50 L 0 50 L 30 20", "M 0 0 L 90 0 L 90 70 L 0 70 Z",
             "M 0 0 C 60 80 60 -80 120 0 L 60 30" }) {
        const Path outline = pathOf(text);
        const auto layers = stroke->layersForOutline(outline, false);
        const auto flat = outline.bezierPathByFlatteningPath();
        for (int x = -3; x < 125; ++x)
            for (int y = -40; y < 75; ++y) {
                const Point p { float(x) + 0.3f, float(y) + 0.4f };
                const double away = (*nearestPointOnPath(outline, p) - Vec2(p)).length();
                const double fromStart = Vec2(p).length();
                const bool onBodies
                    = away < 1 && fromStart > 9 && (Vec2(p) - Vec2(flat->points().back())).length() > 5;
                if (!onBodies && away <= 2.1)
                    continue;
                ASSERT_EQ(layers[0].path->containsPoint(p), onBodies) << text << " at " << p;
            }
    }
    // A path that is shorter than head and tail; a closed one, which has neither.
    EXPECT_EQ(stroke->layersForOutline(pathOf("M 0 0 L 6 0"), false)[0].path->bounds(), Rect(0, -2, 6, 4));
    EXPECT_EQ(
        subPaths(*stroke->layersForOutline(pathOf("M 0 0 L 12 0 L 12 12 L 0 12 Z"), false)[0].path), 4u);
    EXPECT_FLOAT_EQ(stroke->layersForOutline(pathOf("M 0 0 L 100 0"), true)[0].path->bounds().size.height, 8);
}

TEST(SmartStroke, VariesBySeedAndIsAValue)
{
    Bundles bundles {
        "name dots\nturned\nbody 2\npath M 0.2 -0.1 L 1 -0.1 L 1 0.4 Z\nbody 3\npath M 1 0 L 2 0 L 2 0.3 Z\n"
    };
    const auto stroke = smart(&bundles, "dots");
    const Path outline = pathOf("M 0 0 L 300 0");
    const auto look = [&](VXRSmartStroke& s) { return text(*s.layersForOutline(outline, false)[0].path); };
    const std::string first = look(*stroke);
    const auto copy = std::static_pointer_cast<VXRSmartStroke>(stroke->copyWithZone());
    EXPECT_TRUE(stroke->isEqual(*copy));
    EXPECT_EQ(look(*copy), first);
    copy->setRandomSeed(8);
    EXPECT_FALSE(stroke->isEqual(*copy));
    EXPECT_NE(look(*copy), first);
    copy->setRandomSeed(7);
    copy->setNameFromSource("others", &bundles);
    EXPECT_FALSE(stroke->isEqual(*copy));
    EXPECT_FALSE(stroke->isEqual(*VXRStroke::stroke()));
}

TEST(SmartStroke, IsThePlainStrokeWhileItsBundleIsMissing)
{
    const auto outline = pathOf("M 0 0 L 100 0 L 60 40");
    Bundles none {};
    const auto plain = VXRStroke::strokeWithColorWidth(Color::blackColor(), 4);
    for (VXRStrokeBundleSource* source :
        { static_cast<VXRStrokeBundleSource*>(nullptr), static_cast<VXRStrokeBundleSource*>(&none) }) {
        const auto stroke = smart(source, "band");
        EXPECT_EQ(stroke->name(), "band");
        EXPECT_EQ(painted(*stroke, outline.copy()), painted(*plain, outline.copy()));
        Path path = outline;
        EXPECT_EQ(stroke->boundsOfStrokedPath(path), plain->boundsOfStrokedPath(path));
    }
    Bundles bundles { bandText };
    const auto stroke = smart(&none, "band");
    stroke->setNameFromSource("band", &bundles);
    EXPECT_NE(painted(*stroke, outline.copy()), painted(*plain, outline.copy()));
}

TEST(SmartStroke, PaintsInTheStrokesColourOrThatOfThePart)
{
    Bundles bundles { bandText };
    const auto stroke = smart(&bundles, "band");
    stroke->setColor(Color::colorWithCalibratedRGB(0, 0, 1, 0.5f));
    const auto fills = [&](FakeCanvas* canvas) {
        Lines colors;
        for (const std::string& line : painted(*stroke, newPathOf("M 0 0 L 100 0"), canvas))
            if (line.starts_with("set-color"))
                colors.push_back(line);
        return colors;
    };
    EXPECT_THAT(fills(nullptr),
        ::testing::ElementsAre("set-color 0 0 1 0.5", "set-color 0 0 1 0.5", "set-color 1 0 0 0.5"));
    FakeCanvas canvas;
    canvas.blackAndWhite = true;
    EXPECT_THAT(fills(&canvas), ::testing::Each("set-color 0 0 0 1"));
}

TEST(SmartStroke, HostilePathsEndInBoundedWork)
{
    Bundles bundles { bandText, "name tiny\nbody 0.01\npath M 0 0 L 0.01 0 L 0 0.01 Z\n" };
    for (const char* name : { "band", "tiny" })
        for (const char* text : { "", "M 5 5", "M 5 5 L 5 5 Z", "M nan 0 L 1 1",
                 "M 0 0 L 3e38 3e38 L -3e38 3e38 Z", "M 0 0 L 1e-30 0", "M 0 0 L 10 0 L 0 0" })
            for (const float width : { 1.0f, 1e-20f, 1e30f, std::numeric_limits<float>::quiet_NaN() }) {
                std::size_t elements = 0;
                for (const auto& layer : smart(&bundles, name, width)->layersForOutline(pathOf(text), false))
                    elements += layer.path->elementCount();
                ASSERT_LT(elements, 6000000u) << name << " " << text << " " << width;
            }
}

TEST(StrokeBundles, ShippedOnesAreReadAndMistakesAreNamed)
{
    VXRStrokeBundleFolder folder(VXR_STROKE_BUNDLES);
    const auto names = folder.names();
    EXPECT_THAT(
        names, ::testing::ElementsAre("chalk", "crayon", "film strip", "ink brush", "rope", "stitching"));
    for (const std::string& name : names) {
        const auto bundle = folder.strokeBundleForName(name);
        ASSERT_TRUE(bundle) << name;
        EXPECT_EQ(bundle->name, name);
        EXPECT_EQ(folder.strokeBundleForName(name), bundle) << "read once";
        const auto layers
            = smart(&folder, name.c_str(), 12)->layersForOutline(pathOf("M 0 0 L 300 0"), false);
        ASSERT_FALSE(layers.empty());
        EXPECT_LE(layers[0].path->bounds().size.height, 18) << "control points count";
        EXPECT_GT(layers[0].path->bounds().size.width, 250);
    }
    for (const char* name : { "", "../chalk", "nothing", "a/b" })
        EXPECT_FALSE(folder.strokeBundleForName(name)) << name;

    struct {
        const char *text, *error;
    } const mistakes[] = {
        { "name x\n", "line 1: a bundle has a name and a body" },
        { "body 1\n", "line 1: a bundle has a name and a body" },
        { "name x\nbody 0\n", "line 2: a piece has a length of at least 0.01" },
        { "name x\nbody nan\n", "line 2: a piece has a length of at least 0.01" },
        { "path M 0 0\n", "line 1: a drawing belongs to a piece" },
        { "body 1\npath L 0 0\n", "line 2: a path is made of M, L, C and Z, M first" },
        { "body 1\npath M 0 inf\n", "line 2: a coordinate is missing" },
        { "body 1\nink 2\n", "line 2: an opacity lies between 0 and 1" },
        { "body 1\ncolor 1 2\n", "line 2: a colour has three numbers" },
        { "head 1\nhead 1\n", "line 2: there is one head and one tail at most" },
        { "body 1\nimage ../x.png 1\n", "line 2: an image has a file of the same folder and a height" },
        { "\n# no\ncurly\n", "line 3: 'curly' is not known" },
    };
    for (const auto& m : mistakes) {
        std::string error;
        EXPECT_FALSE(VXRStrokeBundle::bundleFromText(m.text, ".", &error));
        EXPECT_EQ(error, m.error);
    }
}
