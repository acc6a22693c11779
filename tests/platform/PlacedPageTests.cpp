#include <tests/platform/ContextTestSupport.h>
#include <tests/support/FakeImporter.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/DocumentContext.h>
#include <vxr/platform/graphics/Pattern.h>
#include <vxr/platform/imaging/PageMark.h>
#include <vxr/platform/pictures/PDFDocument.h>

#include <gmock/gmock.h>

namespace vxr::test {

namespace {

using testing::HasSubstr;

/// The bytes of a document of one page, and what could not be placed in it.
std::string documentOf(const std::function<void(DocumentContext&)>& draw, std::string* failure = nullptr)
{
    std::string bytes;
    const auto context = DocumentContext::createWithWriter([&](const unsigned char* data, std::size_t size) {
        bytes.append(reinterpret_cast<const char*>(data), size);
        return true;
    });
    context->beginPage({ .media = { 0, 0, 200, 100 }, .crop = {}, .bleed = {}, .trim = {}, .art = {} });
    draw(*context);
    context->close();
    if (failure)
        *failure = context->placingFailure();
    return bytes;
}

std::shared_ptr<const Data> dataOf(const std::string& bytes)
{
    return Data::dataWithBytes(bytes.data(), bytes.size());
}

/// A document of the fake importer, 40 by 20 points.
std::shared_ptr<const PDFDocument> documentNamed(FakeImporter::Scope& importer, const std::string& bytes)
{
    DocumentInfo info;
    info.pages = 1;
    info.media = info.crop = info.bleed = info.trim = info.art = { 0, 0, 40, 20 };
    importer->documents[bytes] = info;
    return PDFDocument::createWithData(dataOf(bytes));
}

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

} // namespace

TEST(PlacedPage, DocumentsTakeJPEGFilesAsTheyAre)
{
    const std::string jpeg = pageMarkJPEG("any comment");
    const std::uint32_t pixel = 0xff808080;
    const auto image = Image::createWithJPEG(
        ImageLayout::nativeARGB(1, 1, 4), &pixel, sizeof pixel, nullptr, dataOf(jpeg));
    const std::string document = documentOf([&](DocumentContext& context) {
        context.drawImage({ 10, 10, 50, 50 }, *image);
    });
    EXPECT_EQ(countOf(document, jpeg), 1u);
}

TEST(PlacedPage, PagesAreMarkedWhereverTheyAreDrawnAndPutInPlaceAtTheEnd)
{
    FakeImporter::Scope importer;
    const auto first = documentNamed(importer, "first"), second = documentNamed(importer, "second");
    const std::string document = documentOf([&](DocumentContext& context) {
        EXPECT_TRUE(first->drawAsVectors(context, { 10, 10, 80, 40 }));
        {
            StateSaver saved(context);
            context.setShadow({ 3, -3 }, 4, ColorValue::gray(0));
            context.beginTransparencyLayer();
            second->drawAsVectors(context, { 100, 10, 80, 40 });
            context.endTransparencyLayer();
        }
        context.setFillPattern(
            std::make_shared<Pattern>(Rect { 0, 0, 20, 10 }, AffineTransform {}, 20.0f, 10.0f,
                [&](Context& cell) {
                    second->drawAsVectors(cell, { 0, 0, 20, 10 });
                }),
            1);
        context.fillRect({ 0, 60, 200, 40 });
    });
    EXPECT_EQ(importer->calls.back(), "place 2");
    EXPECT_EQ(countOf(document.substr(document.rfind("%%EOF")), "\n%"), 2u) << "the fake's lines";
    EXPECT_THAT(importer->calls, testing::Contains(testing::StartsWith("area"))) << "for the shadow";
}

TEST(PlacedPage, APageThatIsRefusedCostsNoOther)
{
    FakeImporter::Scope importer;
    importer->unplaceable = "bad";
    std::vector<std::shared_ptr<const PDFDocument>> pages;
    for (const char* name : { "a", "b", "bad", "c", "d" })
        pages.push_back(documentNamed(importer, name));
    std::string failure;
    const std::string document = documentOf(
        [&](DocumentContext& context) {
            for (const auto& page : pages)
                page->drawAsVectors(context, { 0, 0, 40, 20 });
        },
        &failure);
    EXPECT_EQ(failure, "The file can't be read.");
    EXPECT_EQ(countOf(document.substr(document.rfind("%%EOF") + 1), "%"), 5u) << "four lines of the fake";
}

} // namespace vxr::test
