#include <tests/imaging/ImportSupport.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>
#include <vxr/images/VXRImageRenderer.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>

namespace vxr::test {

namespace {

/// Pictures through the import program and back.
class PlacedPictures : public Importing {
protected:
    void SetUp() override
    {
        Importing::SetUp();
        if (!IsSkipped())
            Importer::setShared(std::shared_ptr<Importer>(&importer(), [](Importer*) {}));
    }
    void TearDown() override { Importer::setShared(nullptr); }
};

std::shared_ptr<VXRImageFill> fillOf(const std::string& bytes, const std::string& name, int technique)
{
    const auto binary = VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(
        Data::dataWithBytes(bytes.data(), bytes.size()), name, 0, nullptr);
    auto fill = VXRImageFill::imageFillWithImageRenderer(binary->imageRenderer());
    fill->setTechnique(technique);
    return fill;
}

/// The pixels of 100 by 100 points that `draw` fills, by way of a bitmap or of a document.
std::vector<std::uint32_t> onBitmap(const std::function<void(Context&)>& draw)
{
    const auto bitmap = BitmapContext::createBitmap(100, 100);
    const CurrentContextScope current(*bitmap, true, true);
    bitmap->translate(0, 100);
    bitmap->scale(1, -1);
    draw(*bitmap);
    return { bitmap->pixels(), bitmap->pixels() + 100 * 100 };
}

std::string document(const std::function<void(Context&)>& draw)
{
    std::string bytes;
    const auto paper = DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        bytes.append(reinterpret_cast<const char*>(data), size);
        return true;
    });
    paper->beginPage({ .media = { 0, 0, 100, 100 }, .crop = {}, .bleed = {}, .trim = {}, .art = {} });
    {
        const CurrentContextScope current(*paper, false, true);
        paper->translate(0, 100);
        paper->scale(1, -1);
        draw(*paper);
    }
    paper->close();
    EXPECT_EQ(paper->placingFailure(), "");
    return bytes;
}

} // namespace

TEST_F(PlacedPictures, LookTheSameOnPaperAndOnScreen)
{
    const std::string page = makePage("/MediaBox [0 0 200 100]",
        "0 0 1 rg 0 0 100 100 re f 0 1 0 rg 100 50 50 50 re f 1 0 0 RG 8 w 20 20 m 180 80 l S");
    const std::string jpeg
        = makePicture({ .width = 40,
                          .height = 20,
                          .sample = [](int x, int, int band) { return x < 20 ? band * 0.4 : 0.8; } },
            ".jpg[Q=95]");
    struct Case {
        const char *name, *file;
        const std::string& bytes;
        int technique;
    };
    for (const Case& c : { Case { "PageStretched", "a.pdf", page, VXRImageFillStretch },
             { "PageFitted", "a.pdf", page, VXRImageFillScaleToFit },
             { "PageFilled", "a.pdf", page, VXRImageFillScaleToFill },
             { "JPEG", "a.jpg", jpeg, VXRImageFillStretch } }) {
        const auto fill = fillOf(c.bytes, c.file, c.technique);
        const auto draw = [&](Context&) { fill->paintRect({ 10, 20, 80, 60 }); };
        const auto screen = onBitmap(draw);
        const std::string written = document(draw);
        const auto paper
            = importer().renderPageArea(*memoryFile(written), { 1, 1, 0, 0, 100, 100 }, &failure);
        ASSERT_TRUE(paper) << c.name << ": " << failure.message;
        int different = 0;
        for (std::uint32_t i = 0; i < 100 * 100; ++i) {
            const std::uint32_t a = screen[i], b = pixelAt(*paper, i % 100, i / 100);
            for (int shift = 0; shift < 32; shift += 8)
                different += std::abs(int(a >> shift & 255) - int(b >> shift & 255)) > 40;
        }
        EXPECT_LT(different, 400) << c.name << ": edges alone may differ";
    }
}

TEST_F(PlacedPictures, TurnedPagesShowNoSeamsAndTheSamePixelsInWhateverParts)
{
    const auto turned = [](const std::shared_ptr<VXRImageFill>& fill) {
        return [fill](Context& context) {
            context.translate(50, 50);
            context.rotate(0.5f);
            fill->paintRect({ -700, -650, 1300, 1200 }); // the corners of four areas in sight
        };
    };
    const auto plain
        = onBitmap(turned(fillOf(makePage("/MediaBox [0 0 130 120]", "0.2 0.4 0.6 rg 0 0 130 120 re f"),
            "a.pdf", VXRImageFillStretch)));
    for (const std::uint32_t pixel : plain)
        ASSERT_EQ(pixel, 0xff336699u);

    std::string lines = "0.3 w ";
    for (int i = 0; i < 60; ++i)
        lines += std::to_string(2 * i) + " 0 m " + std::to_string(130 - 2 * i) + " 120 l S ";
    const auto fill = fillOf(makePage("/MediaBox [0 0 130 120]", lines), "b.pdf", VXRImageFillStretch);
    const auto whole = onBitmap(turned(fill));
    const auto parts = onBitmap([&](Context& context) {
        for (float y = 0; y < 100; y += 37)
            for (float x = 0; x < 100; x += 41) {
                StateSaver saved(context);
                context.clipToRect({ x, y, 41, 37 });
                turned(fill)(context);
            }
    });
    EXPECT_EQ(parts, whole);
    EXPECT_GT(std::ranges::count(whole, 0u), 1000);
}

TEST_F(PlacedPictures, AreNamedAndMeasuredByWhatTheProgramReads)
{
    for (const char* suffix : { "png", "tif", "jpg", "gif", "webp" }) {
        const std::string bytes = makePicture({ .width = 9, .height = 7 }, std::string(".") + suffix);
        if (bytes.empty())
            continue;
        const auto binary = VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(
            Data::dataWithBytes(bytes.data(), bytes.size()), std::string("a.") + suffix, 0, nullptr);
        ASSERT_TRUE(binary) << suffix;
        EXPECT_EQ(binary->naturalImageSize(), (Size { 9, 7 })) << suffix;
        EXPECT_FALSE(binary->isCorrupted()) << suffix;
    }
}

} // namespace vxr::test
