#include <tests/platform/ContextTestSupport.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/Pattern.h>

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace vxr::test {

namespace {

using testing::HasSubstr;
using testing::Not;

const PDFPageBoxes page { .media = { 0, 0, 200, 100 }, .crop = {}, .bleed = {}, .trim = {}, .art = {} };

std::shared_ptr<DocumentContext> writingTo(std::string& bytes)
{
    return DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        bytes.append(reinterpret_cast<const char*>(data), size);
        return true;
    });
}

/// The bytes of a document of one page.
std::string documentOf(const std::function<void(DocumentContext&)>& draw)
{
    std::string bytes;
    const auto context = writingTo(bytes);
    context->beginPage(page);
    draw(*context);
    context->close();
    return bytes;
}

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

std::size_t imageCount(const std::string& document) { return countOf(document, "/Subtype /Image"); }

std::shared_ptr<const Shading> shading()
{
    const auto function = functionOf([](void*, const float* t, float* out) {
        out[0] = *t;
        out[1] = 0;
        out[2] = 1 - *t;
        out[3] = 1 - *t / 2;
    });
    return Shading::createAxial(ColorSpace::deviceRGB(), { 0, 0 }, { 100, 50 }, function, false, true);
}

std::shared_ptr<const Pattern> dots()
{
    return std::make_shared<Pattern>(Rect(0, 0, 7.3f, 5.1f), AffineTransform(), 7.3f, 5.1f, [](Context& c) {
        c.fillPath(*Path::pathWithOvalInRect({ 1, 1, 3, 3 }), WindingRule::NonZero);
    });
}

// A picture in the document is a fallback to pixels; only images and shadows may be one.
TEST(PDFContext, VectorsStayVectors)
{
    const std::string document = documentOf([](Context& c) {
        c.fillPath(*Path::pathWithOvalInRect({ 10, 10, 50, 50 }), WindingRule::EvenOdd);
        c.strokePath(*Path::pathWithRect({ 10, 10, 50, 50 }), { .width = 3, .dash = { 4, 2 } });
        for (const float alpha : { 1.0f, 0.5f }) {
            StateSaver saved(c);
            c.setFillPattern(dots(), alpha);
            c.fillRect({ 10, 10, 150, 60 });
            c.setAlpha(alpha);
            c.clipToRect({ 10, 10, 60, 60 });
            c.drawShading(*shading());
            c.beginTransparencyLayer();
            paint(c, red, { 10, 10, 30, 30 });
            c.beginTransparencyLayer();
            paint(c, blue, { 20, 20, 30, 30 });
            c.clearRect({ 25, 25, 5, 5 });
            c.endTransparencyLayer();
            c.setCompositeOperation(CompositeOperation::Clear);
            c.fillRect({ 25, 25, 5, 5 });
            c.endTransparencyLayer();
        }
        c.setCompositeOperation(CompositeOperation::Copy);
        paint(c, blue, { 20, 20, 30, 30 });
    });
    EXPECT_EQ(imageCount(document), 0u);
}

TEST(PDFContext, AShadowIsOneSoftMaskAndItsCasterStaysVectors)
{
    const auto imagesWithin = [](const Rect& clip) {
        const std::string document = documentOf([&](Context& c) {
            c.clipToRect(clip);
            c.setShadow({ 5, -5 }, 6, ColorValue::gray(0, 0.5f));
            c.beginTransparencyLayer();
            for (float x = 10; x < 110; x += 20)
                paint(c, red, { x, 30, 15, 40 });
            c.endTransparencyLayer();
        });
        EXPECT_LT(document.size(), 60000u); // 105 by 54 points at 144 to 300 samples an inch
        return imageCount(document);
    };
    EXPECT_EQ(imagesWithin({ 0, 0, 200, 100 }), 2u); // the shadow, and its alpha as its soft mask
    EXPECT_EQ(imagesWithin({ 0, 0, 5, 5 }), 0u); // shows nothing of it
}

TEST(PDFContext, AnImageIsStoredOnceHoweverOftenItIsDrawn)
{
    const auto image = imageOf({ 2, 1, { 0xff123456, 0xff654321 } });
    const std::string document = documentOf([&](Context& c) {
        c.drawImage({ 10, 10, 50, 50 }, *image);
        c.rotate(0.3f);
        c.drawImage({ 70, 10.5f, 50, 20 }, *image);
    });
    EXPECT_EQ(imageCount(document), 1u);
}

TEST(PDFContext, PagesCarryTheirBoxesRelativeToTheMedia)
{
    std::string document;
    const auto context = writingTo(document);
    paint(*context, red, { 0, 0, 10, 10 }); // no page yet
    context->beginTransparencyLayer();
    EXPECT_EQ(context->clipBounds(), Rect());
    context->beginPage(page);
    context->translate(5, 5);
    context->beginPage({ .media = { -10, -20, 300, 400 },
        .crop = { 0, 0, 280, 360 },
        .bleed = {},
        .trim = { 5.5f, 5, 270, 350 },
        .art = {} });
    EXPECT_TRUE(context->currentTransform().isIdentity());
    EXPECT_EQ(context->clipBounds(), (Rect { 0, 0, 300, 400 }));
    paint(*context, red, { 0, 0, 10, 10 });
    context->beginPage(page);
    context->beginTransparencyLayer(); // closing ends what is open
    EXPECT_THROW(context->beginPage({}), InvalidArgumentException);
    context->close();
    context->beginPage(page);
    paint(*context, red, { 0, 0, 10, 10 });
    context->close();

    EXPECT_THAT(document, HasSubstr("/Count 3"));
    EXPECT_EQ(countOf(document, "/MediaBox [ 0 0 300 400 ]"), 2u); // the page and its update
    EXPECT_EQ(countOf(document, "/CropBox [ 10 20 290 380 ]"), 1u);
    EXPECT_EQ(countOf(document, "/TrimBox [ 15.5 25 285.5 375 ]"), 1u);
    EXPECT_THAT(document, Not(HasSubstr("/BleedBox")));
    // The update's table names the place of the new object and of the table before it.
    const std::size_t table = std::stoul(document.substr(document.rfind("startxref\n") + 10));
    unsigned long object = 0, place = 0;
    ASSERT_EQ(std::sscanf(document.c_str() + table, "xref\n%lu 1\n%lu", &object, &place), 2);
    EXPECT_EQ(document.substr(place, 10), std::to_string(object) + " 0 obj\n<<");
    const std::size_t before = std::stoul(document.substr(document.rfind("/Prev ") + 6));
    EXPECT_EQ(document.substr(before, 5), "xref\n");
}

TEST(PDFContext, FailuresToWriteAreToldAtTheClose)
{
    const auto broken
        = DocumentContext::createWithWriter([](const unsigned char*, std::size_t) { return false; });
    broken->beginPage(page);
    EXPECT_THROW(broken->close(), GenericException);
    EXPECT_NO_THROW(broken->close());
    EXPECT_THROW(DocumentContext::createWithFile("/nowhere/at/all.pdf"), GenericException);

    const auto path = std::filesystem::temp_directory_path() / "vxr-pdf-context-test.pdf";
    std::ofstream(path) << "old";
    const auto start = [&] {
        std::string word;
        std::ifstream(path, std::ios::binary) >> word;
        return word;
    };
    auto context = DocumentContext::createWithFile(path.string());
    context->beginPage(page);
    EXPECT_EQ(start(), "old");
    context.reset(); // ends the document
    EXPECT_THAT(start(), testing::StartsWith("%PDF-"));
    std::filesystem::remove(path);
}

TEST(PDFContext, HostileNumbersLeaveTheDocumentUsable)
{
    const std::string document = documentOf([](DocumentContext& c) {
        c.saveState();
        c.scale(0, 1);
        paint(c, red, { 0, 0, 10, 10 });
        c.restoreState();
        paint(c, red, { -1e9f, -1e9f, 2e9f, 2e9f });
        c.strokePath(*Path::pathWithRect({ 10, 10, 1e9f, 1e9f }), { .width = 3, .dash = { 0, 0 } });
        c.setShadow({ 1e9f, NAN }, 1e9f, black);
        paint(c, red, { NAN, 0, 10, 10 });
        paint(c, red, { 0, 0, 10, 10 });
    });
    EXPECT_THAT(document, HasSubstr("%%EOF"));
    EXPECT_GT(document.size(), 700u);
}

} // namespace

} // namespace vxr::test
