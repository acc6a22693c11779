#include <tests/support/FakeCanvas.h>
#include <tests/support/FakeImporter.h>
#include <vxr/filters/VXRFilterRegistry.h>
#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/renderables/VXRImageRenderable.h>

#include <gmock/gmock.h>

#include <cstring>

namespace vxr::test {

namespace {

/// A picture of 8 by 8 pixels: a white frame of one transparent pixel around a ring with a hole in it.
struct Pictures : FakeImporter::Scope {
    Pictures()
    {
        const char* rows[] = { "........", ".######.", ".######.", ".##..##.", ".##..##.", ".######.",
            ".######.", "........" };
        std::vector<std::uint32_t> pixels;
        for (const char* row : rows)
            for (int x = 0; x < 8; ++x)
                pixels.push_back(row[x] == '#' ? 0xff2040a0 : 0);
        auto bytes = std::make_shared<const std::vector<std::uint32_t>>(std::move(pixels));
        auto format = FakeImporter::drawable(8, 8, 0)->format();
        fake->bitmaps["ring"] = std::make_shared<const ImportedBitmap>(
            BitmapInfo { .kind = "png", .format = format, .profile = {} }, format,
            reinterpret_cast<const std::byte*>(bytes->data()), bytes);
        fake->bitmaps["photo"] = FakeImporter::drawable(1000, 800, 0xff336699);
    }
};

std::shared_ptr<VXRImageRenderable> placed(const std::string& bytes)
{
    return VXRImageRenderable::imageRenderableWithImageBinary(
        VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(
            Data::dataWithBytes(bytes.data(), bytes.size()), "a.png", 0, nullptr));
}

std::string drawn(VXRImageRenderable& picture)
{
    RecordingContext context;
    const CurrentContextScope current(context, true, true);
    picture.renderLayeredIntoContext(context);
    return context.recorded();
}

} // namespace

TEST(ImageRenderable, ShowsTheCropWithinItsFrameAndMask)
{
    Pictures pictures;
    const auto picture = placed("ring");
    picture->setFrame({ 10, 20, 40, 40 });
    EXPECT_THAT(drawn(*picture), testing::HasSubstr("draw-image 0 0 40 40 of 8x8"));
    picture->setCrop({ 2, 0, 4, 4 });
    EXPECT_THAT(drawn(*picture),
        testing::HasSubstr("clip-rect 0 0 40 40\nset-interpolation high high\nsave\n"
                           "set-antialias off\ndraw-image -20 -40 80 80 of 8x8"));
    picture->dragPictureBy({ 10, -1000 });
    EXPECT_EQ(picture->crop(), (Rect { 1, 4, 4, 4 })) << "as far as there is picture";
    picture->setMaskPath(Path::pathWithRect({ 30, 30, 20, 20 }).get());
    EXPECT_EQ(picture->alignmentBounds(), (Rect { 40, 50, 10, 10 }));
    EXPECT_THAT(drawn(*picture), testing::HasSubstr("clip [M40 50 L60 50 L60 70 L40 70 Z]"));
    picture->setFrame({ 0, 0, 20, 20 });
    EXPECT_EQ(picture->maskPath()->bounds(), (Rect { 15, 15, 10, 10 })) << "keeps its place in the frame";
    picture->setCrop({});
    EXPECT_FALSE(picture->hasCrop());
}

TEST(ImageRenderable, IsHitWhereItShowsSomething)
{
    Pictures pictures;
    const auto picture = placed("ring");
    picture->setFrame({ 100, 100, 80, 80 });
    struct Case {
        const char* name;
        Point point;
        bool hit;
    };
    for (const Case& c : { Case { "Border", { 104, 140 }, false }, { "Ring", { 115, 115 }, true },
             { "Hole", { 140, 140 }, false }, { "Beyond", { 99, 115 }, false } })
        EXPECT_EQ(picture->containsPoint(c.point), c.hit) << c.name;
    picture->setMaskPath(Path::pathWithRect({ 20, 0, 60, 80 }).get());
    EXPECT_FALSE(picture->containsPoint({ 115, 115 })) << "cut away";
    EXPECT_TRUE(picture->containsPoint({ 125, 115 }));
    picture->setMaskPath(nullptr);
    picture->setCrop({ 3, 3, 2, 2 });
    EXPECT_FALSE(picture->containsPoint({ 115, 115 })) << "the hole fills the frame";
    const auto broken = placed("junk");
    EXPECT_TRUE(broken->containsPoint({ 50, 50 }));
}

TEST(ImageRenderable, TextFlowsAroundWhatTheMaskLeaves)
{
    Pictures pictures;
    const auto picture = placed("ring");
    picture->setFrame({ 100, 100, 80, 80 });
    EXPECT_EQ(picture->textWrapPath()->bounds(), (Rect { 100, 100, 80, 80 }));
    picture->setMasksByAlpha(true);
    EXPECT_EQ(text(*picture->textWrapPath()),
        "[M110 110 L170 110 L170 170 L110 170 Z M130 150 L150 150 L150 130 L130 130 Z]");
    picture->setCrop({ 4, 0, 4, 8 });
    EXPECT_EQ(picture->textWrapPath()->bounds(), (Rect { 100, 110, 60, 60 }));
    picture->setMaskPath(Path::pathWithRect({ 10, 10, 20, 20 }).get());
    EXPECT_EQ(picture->textWrapPath()->bounds(), (Rect { 110, 110, 20, 20 }));
}

TEST(ImageRenderable, ErasesWhatAChangeLeavesAndNeeds)
{
    Pictures pictures;
    Lines lines;
    FakeCanvas canvas(&lines);
    const auto picture = placed("ring");
    picture->setFrame({ 100, 100, 80, 80 });
    picture->setCanvas(&canvas);
    for (const auto& change : { +[](VXRImageRenderable& p) { p.setTechnique(VXRImageFillScaleToFit); },
             +[](VXRImageRenderable& p) {
                 p.setCrop({ 1, 1, 3, 3 });
             },
             +[](VXRImageRenderable& p) { p.setMasksByAlpha(true); },
             +[](VXRImageRenderable& p) { p.setImageBinary(placed("photo")->imageBinary()); } }) {
        lines.clear();
        change(*picture);
        EXPECT_THAT(lines, testing::Contains("damage 95 95 90 90"));
    }
    lines.clear();
    picture->setFrame({ 0, 0, 10, 10 });
    EXPECT_THAT(lines, testing::IsSupersetOf({ "damage 95 95 90 90", "damage -5 -5 20 20" }));
    picture->setCanvas(nullptr);
}

TEST(ImageRenderable, APictureThatIsDrawnSmallIsDecodedOnce)
{
    Pictures pictures;
    const auto picture = placed("photo");
    picture->setFrame({ 0, 0, 100, 80 });
    const auto pixels = [&] {
        const auto bitmap = BitmapContext::createBitmap(100, 80);
        const CurrentContextScope current(*bitmap, true, true);
        picture->renderLayeredIntoContext(*bitmap);
        return std::vector<std::uint32_t>(bitmap->pixels(), bitmap->pixels() + 100 * 80);
    };
    const auto first = pixels();
    EXPECT_EQ(first[4040], 0xff336699);
    picture->imageBinary()->flushLocalData();
    pictures->calls.clear();
    EXPECT_EQ(pixels(), first);
    EXPECT_TRUE(pictures->calls.empty()) << "drawn from the reduced image";
    picture->setFrame({ 0, 0, 1000, 800 });
    pixels();
    EXPECT_EQ(pictures->calls.size(), 1u) << "now the pixels themselves are needed";
}

TEST(ImageRenderable, AFullPageStaysWithinTheBudget)
{
    Pictures pictures;
    VXUObjectFlusher& flusher = VXUObjectFlusher::instance();
    const std::size_t each = 1000 * 800 * 4;
    flusher.setBudget(3 * each);
    std::vector<std::shared_ptr<VXRImageRenderable>> page;
    for (int i = 0; i < 20; ++i) {
        page.push_back(placed("photo"));
        page.back()->setFrame({ static_cast<float>(10 * (i % 5)), static_cast<float>(10 * (i / 5)), 10, 8 });
        EXPECT_LE(flusher.bytesUsed(), flusher.budget());
    }
    for (int pass = 0; pass < 2; ++pass) {
        pictures->calls.clear();
        const auto bitmap = BitmapContext::createBitmap(50, 40);
        const CurrentContextScope current(*bitmap, true, true);
        for (const auto& picture : page) {
            picture->renderLayeredIntoContext(*bitmap);
            EXPECT_LE(flusher.bytesUsed(), flusher.budget());
        }
    }
    EXPECT_TRUE(pictures->calls.empty()) << "the second pass decodes nothing";
    flusher.setBudget(VXUObjectFlusher::defaultBudget);
}

TEST(ImageRenderable, DrawsItsFilteredImageAndRedrawsWhenThatChanges)
{
    Pictures pictures;
    Lines lines;
    FakeCanvas canvas(&lines);
    const auto picture = placed("photo");
    const auto filtered = VXRFilteredImage::filteredImageWithImageBinary(picture->imageBinary());
    picture->setFrame({ 0, 0, 10, 8 });
    picture->setCrop({ 500, 0, 500, 800 });
    picture->setFilteredImage(filtered);
    EXPECT_TRUE(picture->hasCrop());
    picture->setCanvas(&canvas);
    const auto colorOf = [&] {
        const auto bitmap = BitmapContext::createBitmap(10, 8);
        const CurrentContextScope current(*bitmap, true, false);
        picture->renderIntoContext(*bitmap);
        return bitmap->pixels()[44];
    };
    EXPECT_EQ(colorOf(), 0xff336699u);
    lines.clear();
    auto& stack = *filtered->effectStack();
    stack.appendFilter(VXRFilterRegistry::createFilter("TesselSaturation"));
    stack.filterAtIndex(1)->setValueForKey(-1, "inputSaturation");
    EXPECT_THAT(lines, testing::Contains("damage -5 -5 20 18").Times(2));
    const std::uint32_t gray = colorOf();
    EXPECT_EQ(gray & 255, gray >> 16 & 255);
    EXPECT_EQ(picture->containsPoint({ 5, 4 }), true);
    picture->setFilteredImage(nullptr);
    EXPECT_EQ(colorOf(), 0xff336699u);
    lines.clear();
    filtered->setAutomaticLevels(VXRAutomaticLevels::Luminance);
    EXPECT_EQ(lines, Lines {}) << "no longer its own";
    const auto missing = VXRFilteredImage::filteredImageWithImageBinary(std::make_shared<VXRImageBinary>());
    missing->setAutomaticLevels(VXRAutomaticLevels::Luminance);
    picture->setFilteredImage(missing);
    EXPECT_NE(colorOf(), 0xff336699u) << "a placeholder";
    picture->setCanvas(nullptr);
}

} // namespace vxr::test
