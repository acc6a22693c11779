#include <tests/images/ImageTestSupport.h>
#include <tests/support/FakeCanvas.h>
#include <tests/support/FakeShape.h>
#include <vxr/host/utility/VXUAssertionHandler.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/pictures/ImageRep.h>

namespace vxr::test {

namespace {

using testing::HasSubstr;

std::shared_ptr<VXRImageFill> fillOf(int width, int height, int technique)
{
    auto fill = VXRImageFill::imageFillWithImageRef(plainImage(width, height));
    fill->setTechnique(technique);
    return fill;
}

/// Where the picture is drawn, in the space of the rectangle, y down.
Rect placeOf(VXRImageFill& fill, const Rect& area)
{
    RecordingContext context;
    Rect place;
    {
        const CurrentContextScope current(context, true, true);
        fill.paintRect(area);
    }
    AffineTransform t;
    std::vector<AffineTransform> saved;
    for (const std::string& line : context.lines()) {
        AffineTransform step;
        char name[40];
        if (line == "save")
            saved.push_back(t);
        else if (line == "restore")
            t = saved.back(), saved.pop_back();
        else if (std::sscanf(line.c_str(), "concat %f %f %f %f %f %f", &step.m11, &step.m12, &step.m21,
                     &step.m22, &step.tX, &step.tY)
            == 6)
            t = concat(step, t);
        else if (std::sscanf(line.c_str(), "draw-image %f %f %f %f %39s", &place.origin.x, &place.origin.y,
                     &place.size.width, &place.size.height, name)
            == 5) {
            const Point a = t.map(place.origin), b = t.map(Point { place.maxX(), place.maxY() });
            return { a.x, b.y, b.x - a.x, a.y - b.y };
        }
    }
    return place;
}

} // namespace

TEST(ImageFill, PlacesThePictureByItsTechnique)
{
    struct Case {
        const char* name;
        int technique;
        Rect area, place;
    };
    for (const Case& c : { Case { "Centred", 0, { 0, 0, 200, 200 }, { 50, 75, 100, 50 } },
             { "CentredOnWholePixels", 0, { 0, 0, 201, 201 }, { 51, 76, 100, 50 } },
             { "Stretched", 1, { 10, 20, 200, 200 }, { 10, 20, 200, 200 } },
             { "FillsByHeight", 3, { 0, 0, 200, 200 }, { -100, 0, 400, 200 } },
             { "FillsByWidth", 3, { 10, 20, 200, 50 }, { 10, -5, 200, 100 } },
             { "FitsByWidth", 4, { 0, 0, 200, 200 }, { 0, 50, 200, 100 } },
             { "FitsByHeight", 4, { 10, 20, 300, 50 }, { 110, 20, 100, 50 } },
             { "BeyondTheTechniques", 7, { 0, 0, 200, 200 }, {} } })
        EXPECT_EQ(placeOf(*fillOf(100, 50, c.technique), c.area), c.place) << c.name;

    const auto flat = fillOf(100, 50, VXRImageFillScaleToFit);
    flat->renderer()->setNaturalSize({ 0, 50 });
    EXPECT_EQ(placeOf(*flat, { 5, 6, 200, 200 }), (Rect { 5, 6, 0, 50 })) << "at its natural size";
}

TEST(ImageFill, DrawsUprightAndClipsToTheRectangle)
{
    EXPECT_EQ(drawn([] {
        fillOf(100, 50, VXRImageFillScaleToFit)->paintRect({ 0, 0, 200, 200 });
    }),
        R"(save
clip-rect 0 0 200 200
concat 1 0 0 1 0 100
concat 1 0 0 -1 0 0
set-interpolation high high
save
draw-image 0 -50 200 100 of 100x50
restore
restore
)");
}

TEST(ImageFill, TheSnappingErrorFollowsMirrors)
{
    RecordingContext context;
    context.concatTransform({ -1, 0, 0, 1, 0.25f, 0.25f });
    EXPECT_EQ(VXRImageFill::_errorForPointContext({ 10, 10 }, context), (Point { -0.25f, 0.25f }));
    context.concatTransform({ -1, 0, 0, -1, 0, 0 });
    EXPECT_EQ(VXRImageFill::_errorForPointContext({ 10, 10 }, context), (Point { 0.25f, -0.25f }));
}

TEST(ImageFill, PaintsAShapeInItsOwnSpaceAndWhiteInBlackAndWhite)
{
    FakeCanvas canvas;
    FakeShape shape { Size { 40, 30 } };
    shape.onCanvas = &canvas;
    shape.placed = { 2, 0, 0, 2, 10, 10 };
    const auto fill = fillOf(10, 10, VXRImageFillStretch);
    EXPECT_THAT(drawn([&] { fill->paintShape(shape); }),
        testing::AllOf(HasSubstr("clip [M10 10"), HasSubstr("concat 2 0 0 2 10 10"),
            HasSubstr("draw-image 0 0 40 30 of 10x10")));
    canvas.blackAndWhite = true;
    EXPECT_EQ(
        drawn([&] { fill->paintShape(shape); }), "set-color 1 1 1 1\nfill [M10 10 L90 10 L90 70 L10 70 Z]\n");
}

TEST(ImageFill, TilesThroughAPatternInBaseSpace)
{
    RecordingContext context;
    context.setBaseTransform({ 1, 0, 0, -1, 0, 500 });
    context.concatTransform({ 2, 0, 0, 2, 3, 4 });
    context.clear();
    {
        const CurrentContextScope current(context, true, true);
        fillOf(10, 20, VXRImageFillTile)->paintRect({ 5, 5, 100, 100 });
    }
    EXPECT_EQ(context.recorded(), R"(save
set-fill-pattern cell=0 0 10 20 matrix=2 0 0 2 3 4 step=10 20 alpha=1
fill-rect 5 5 100 100
restore
)");
    const auto fill = fillOf(10, 20, VXRImageFillTile);
    auto* info = new std::shared_ptr<VXRImageFill>(fill);
    EXPECT_EQ(drawn([&] { drawPattern(info, currentDrawingPort()); }), R"(concat 1 0 0 1 0 20
concat 1 0 0 -1 0 0
set-antialias off
set-interpolation high high
set-interpolation high high
draw-image 0 0 10 20 of 10x20
)");
    releaseInfo(info);
    EXPECT_EQ(fill.use_count(), 1);
    EXPECT_EQ(drawn([] { VXRImageFill().paintRect({ 0, 0, 9, 9 }); }), "save\nrestore\n");
}

TEST(ImageFill, TilesOneByOneFromTheFloorOfTheOrigin)
{
    const auto large = fillOf(70, 80, VXRImageFillTile);
    EXPECT_EQ(large->_megaTile(), nullptr);
    const std::string lines = drawn([&] {
        large->_paintTilesOneByOne(currentDrawingPort(), { 5.5f, 5.5f, 100, 70 });
    });
    EXPECT_THAT(lines, HasSubstr("concat 1 0 0 1 5 5\nconcat 1 0 0 1 0 80\nconcat 1 0 0 -1 0 0\n"));
    std::size_t tiles = 0;
    for (std::size_t at = lines.find("draw-image"); at != std::string::npos;
         at = lines.find("draw-image", at + 1))
        ++tiles;
    EXPECT_EQ(tiles, 2u) << "columns at 5 and 75, one row";
    const auto mega = fillOf(10, 20, VXRImageFillTile)->_megaTile();
    ASSERT_TRUE(mega);
    EXPECT_EQ(mega->size(), (Size { 60, 60 }));
    EXPECT_EQ(fillOf(64, 10, VXRImageFillTile)->_megaTile(), nullptr);
}

TEST(ImageFill, ReportsItsBitmapAtTheSizeThatItIsDrawnAt)
{
    struct Case {
        int technique, reducedWidth; ///< 0: drawn as it is
    };
    // A picture of 400 by 200 in a shape of 100 by 100, at half size on the device.
    for (const Case& c : { Case { 0, 200 }, { 1, 100 }, { 2, 200 }, { 3, 100 }, { 4, 50 }, { 9, 0 } }) {
        const auto image = plainImage(400, 200);
        const auto fill = VXRImageFill::imageFillWithImageRef(image);
        fill->setTechnique(c.technique);
        VXRBitmapRenderingQualityInfo info(1);
        FakeShape shape { Size { 100, 100 } };
        shape.placed = AffineTransform::makeScale(0.5f, 0.5f);
        drawn([&] { fill->addBitmapsToRenderingQualityInfoShape(info, shape); });
        const auto reduced = info.degradedImageRefForImageRef(*image);
        EXPECT_EQ(reduced ? reduced->width() : 0, c.reducedWidth) << c.technique;
    }
    VXUAssertionHandler& handler = VXUAssertionHandler::currentHandler();
    handler.removeAllFailures();
    VXRBitmapRenderingQualityInfo info(1);
    VXRImageFill::imageFillWithMissingImageOfSize({ 9, 9 })->addToRenderingQualityInfoSize(info, { 9, 9 });
    ASSERT_EQ(handler.failures().size(), 1u);
    EXPECT_EQ(handler.failures()[0].description, "Bad renderer class");
}

} // namespace vxr::test
