#include <tests/images/ImageTestSupport.h>
#include <tests/support/FakeCanvas.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/images/VXRImageRepRenderer.h>
#include <vxr/images/VXRPDFRenderer.h>
#include <vxr/images/VXRPagePixels.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/pictures/PDFImageRep.h>
#include <vxr/protocols/VXRImageRendererOwner.h>

namespace vxr::test {

namespace {

using testing::HasSubstr;
using testing::Not;

struct Owner final : VXRImageRendererOwner {
    FakeCanvas* on = nullptr;
    bool antialias = true;

    VXRCanvasRole* canvas() const override { return on; }
    bool shouldAntialias() const override { return antialias; }
};

} // namespace

TEST(ImageRenderer, BitmapsAreSmoothedExceptWhileTheyAreDragged)
{
    Owner owner;
    owner.antialias = false;
    const auto renderer = VXRBitmapRenderer::imageRendererWithImageRef(plainImage(8, 4));
    renderer->setOwner(&owner);
    EXPECT_EQ(renderer->naturalSize(), (Size { 8, 4 }));
    EXPECT_EQ(drawn([&] {
        renderer->drawInRect({ 1, 2, 3, 4 });
    }),
        R"(set-interpolation high high
save
set-antialias off
draw-image 1 2 3 4 of 8x4
restore
)");
    owner.antialias = true;
    renderer->setDynamicallyTransforming(true);
    EXPECT_EQ(drawn([&] {
        renderer->drawInRect({ 1, 2, 3, 4 });
    }),
        R"(set-interpolation none none
save
draw-image 1 2 3 4 of 8x4
restore
)");
    EXPECT_EQ(
        drawn([&] { renderer->drawTileInContext(currentDrawingPort()); }), R"(set-interpolation none none
draw-image 0 0 8 4 of 8x4
)");
}

TEST(ImageRenderer, PrintsTheCompressedImageAndFreezesWhatItsCanvasSaid)
{
    FakeCanvas canvas;
    Owner owner;
    owner.on = &canvas;
    const auto decoded = plainImage(4, 4), compressed = plainImage(4, 4);
    const auto renderer = VXRBitmapRenderer::imageRendererWithImageRef(decoded);
    renderer->setOwner(&owner);
    renderer->setCompressedImageRef(compressed);
    EXPECT_EQ(renderer->drawingImageRef(), decoded);
    canvas.destination = VXRDestinationNonScreen;
    EXPECT_EQ(renderer->drawingImageRef(), compressed);
    canvas.scale = 2;
    renderer->cacheState();
    canvas.scale = 3;
    canvas.destination = VXRDestinationDirect;
    EXPECT_EQ(renderer->viewScale(), 2);
    EXPECT_EQ(renderer->drawingImageRef(), compressed);
}

TEST(ImageRenderer, PlaceholdersShowTheirIconWhereThereIsRoom)
{
    struct Case {
        const char* name;
        float side, scale;
        bool isStatic, isPrinting, showsIcon;
    };
    for (const Case& c :
        { Case { "Small", 20, 1, false, false, false }, { "Large", 40, 1, false, false, true },
            { "JustTooSmall", 32, 1, false, false, false }, { "SmallZoomed", 20, 2, false, false, true },
            { "Static", 40, 1, true, false, false }, { "StaticPrinted", 40, 1, true, true, true } }) {
        FakeCanvas canvas;
        canvas.scale = c.scale;
        canvas.staticCanvas = c.isStatic;
        canvas.destination = c.isPrinting ? VXRDestinationNonScreen : VXRDestinationDirect;
        Owner owner;
        owner.on = &canvas;
        const auto renderer = VXRDummyImageRenderer::missingImageRendererWithSize({ c.side, c.side });
        renderer->setOwner(&owner);
        const std::string lines = drawn([&] { renderer->drawTileInContext(currentDrawingPort()); });
        EXPECT_THAT(lines, HasSubstr("fill-rect 0 0 " + text(c.side)));
        EXPECT_EQ(lines.find("concat") != std::string::npos, c.showsIcon) << c.name;
        if (c.scale == 2) {
            EXPECT_THAT(lines, HasSubstr("stroke width=0.5 [M0 0 L20 0"));
            EXPECT_THAT(lines, HasSubstr("concat 1 0 0 1 2 2")) << "at 16 by 16 units in the middle";
        }
    }
}

TEST(ImageRenderer, RepresentationsAreNoTiles)
{
    const auto rep = std::make_shared<PDFImageRep>(
        PDFDocument::createWithDrawing({ 0, 0, 10, 6 }, { 0, 0, 10, 6 }, [](Context& context) {
            context.fillRect({ 0, 0, 1, 1 });
        }));
    const auto renderer = VXRImageRepRenderer::imageRendererWithImageRep(rep);
    EXPECT_THAT(drawn([&] { renderer->drawInRect({ 0, 0, 20, 6 }); }), HasSubstr("concat 2 0 0 1 0 0"));
    EXPECT_EQ(drawn([&] { renderer->drawTileInContext(currentDrawingPort()); }), R"(set-antialias on
set-fill-color 1 0 0 1
fill-rect 0 0 5 3
fill-rect 5 3 5 3
)");
}

TEST(ImageRenderer, PagesAreRenderedInTheAreasThatAreSeenAtTheResolutionOfTheDevice)
{
    KnownFiles files;
    files.addPage("large", { 0, 0, 1000, 1000 });
    const auto renderer
        = VXRPDFRenderer::imageRendererWithPDFRef(PDFDocument::createWithData(dataOf("large")));
    EXPECT_EQ(renderer->naturalSize(), (Size { 1000, 1000 }));
    const auto bitmap = BitmapContext::createBitmap(100, 100);
    const CurrentContextScope current(*bitmap, true, false);
    const auto areas = [&] {
        std::vector<std::string> lines;
        for (const std::string& call : files->calls)
            if (call.starts_with("area"))
                lines.push_back(call);
        files->calls.clear();
        return lines;
    };
    bitmap->scale(2, 2);
    renderer->drawInRect({ -490, 0, 1000, 1000 });
    EXPECT_THAT(areas(), testing::ElementsAre("area 2 2 512 1536 512 464", "area 2 2 1024 1536 512 464"));
    EXPECT_EQ(bitmap->pixels()[0], files->pageColor);
    renderer->drawInRect({ -490, 0, 1000, 1000 });
    EXPECT_TRUE(areas().empty()) << "kept";
    bitmap->scale(0.05f, 0.05f);
    renderer->drawInRect({ 2.5f, -2.5f, 1000, 1000 });
    EXPECT_THAT(areas(), testing::ElementsAre("area 0.1 0.1 0 0 101 101 offset 0.25 0.25"))
        << "again after a zoom";
    bitmap->scale(3, 3);
    renderer->setDynamicallyTransforming(true);
    renderer->drawInRect({ 0, 0, 1000, 1000 });
    EXPECT_TRUE(areas().empty()) << "stretched while it is dragged";
}

TEST(ImageRenderer, AfterAZoomPagesShowAtOnceAndAreRenderedWhenThereIsTime)
{
    KnownFiles files;
    files.addPage("large", { 0, 0, 1000, 1000 });
    const auto document = PDFDocument::createWithData(dataOf("large"));
    const auto renderer = VXRPDFRenderer::imageRendererWithPDFRef(document);
    const auto bitmap = BitmapContext::createBitmap(100, 100);
    const CurrentContextScope current(*bitmap, true, false);
    renderer->setMayDrawLater(true);
    const auto draw = [&](float scale) {
        StateSaver saved(*bitmap);
        bitmap->scale(scale, scale);
        files->calls.clear();
        renderer->drawInRect({ -490, 0, 1000, 1000 });
        return files->calls.size();
    };
    EXPECT_EQ(draw(1), 2u) << "there is nothing to stretch";
    EXPECT_FALSE(renderer->awaitsPixels());
    EXPECT_EQ(draw(2), 0u);
    EXPECT_TRUE(renderer->awaitsPixels());
    EXPECT_EQ(bitmap->pixels()[0], files->pageColor);

    int told = 0;
    NotificationCenter::defaultCenter().addObserver(&told, VXRPagePixelsDidRenderNotification,
        VXRPagePixels::pixelsOfDocument(document).get(), [&](const Notification&) { ++told; });
    EXPECT_TRUE(VXRPagePixels::renderWaiting());
    EXPECT_TRUE(VXRPagePixels::renderWaiting());
    EXPECT_EQ(told, 0);
    EXPECT_FALSE(VXRPagePixels::renderWaiting());
    EXPECT_EQ(told, 1);
    NotificationCenter::defaultCenter().removeObserver(&told);
    EXPECT_EQ(files->calls.size(), 2u);
    EXPECT_EQ(draw(2), 0u);
    EXPECT_FALSE(renderer->awaitsPixels());

    // What has waited once is rendered at once, however often its pixels have been flushed.
    VXRPagePixels::pixelsOfDocument(document)->flushLocalData();
    EXPECT_EQ(draw(2), 2u);
}

TEST(ImageRenderer, APageThatCannotBeRenderedIsABrokenPictureAndIsNotTriedAgain)
{
    KnownFiles files;
    const auto renderer
        = VXRPDFRenderer::imageRendererWithPDFRef(PDFDocument::createWithData(dataOf("page")));
    files->documents.clear();
    files->calls.clear();
    const auto draw = [&] { renderer->drawInRect({ 0, 0, 200, 100 }); };
    EXPECT_THAT(drawn(draw), HasSubstr("fill-rect 0 0 200 100"));
    drawn(draw);
    EXPECT_EQ(files->calls.size(), 1u);
}

} // namespace vxr::test
