#include <tests/imaging/ImportSupport.h>

#include <vxr/platform/imaging/PageMark.h>

using namespace vxr;
using namespace vxr::test;

namespace {

class DocumentImport : public Importing {
protected:
    std::shared_ptr<const ImportedBitmap> area(const std::string& pdf, const PageAreaRequest& request)
    {
        return importer().renderPageArea(*memoryFile(pdf), request, &failure);
    }
};

/// Red square at (30, 45), 10 wide, on a page of 200 by 300.
std::string markedPage(const std::string& entries)
{
    return makePage("/MediaBox[0 0 200 300]" + entries, "1 0 0 rg 30 45 10 10 re f");
}

/// A page with the JPEG over (20, 30) to (60, 90).
std::string pageWithJPEG(const std::string& jpeg, const std::string& space, int width, int height)
{
    const std::string content = "q 40 0 0 60 20 30 cm /X Do Q";
    return makePDF({ "<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 100]/Resources<</XObject<</X 5 0 R>>>>/Contents 4 0 R>>",
        "<</Length " + std::to_string(content.size()) + ">>stream\n" + content + "\nendstream",
        "<</Type/XObject/Subtype/Image/Width " + std::to_string(width) + "/Height " + std::to_string(height)
            + "/ColorSpace" + space + "/BitsPerComponent 8/Filter/DCTDecode/Length "
            + std::to_string(jpeg.size()) + ">>stream\n" + jpeg + "\nendstream" });
}

struct BoxCase {
    const char* name;
    std::string entries;
    PageBox shared; ///< of media and art box
};

const BoxCase boxCases[] = {
    { "media box alone", "", { 0, 0, 200, 300 } },
    { "art box inside", "/ArtBox[20 30 140 195]", { 20, 30, 120, 165 } },
    { "art box sticks out", "/ArtBox[-50 -50 100 150]", { 0, 0, 100, 150 } },
    { "art box elsewhere", "/ArtBox[500 500 600 600]", { 0, 0, 200, 300 } },
    { "crop box stands for the art box", "/CropBox[10 20 190 290]", { 10, 20, 180, 270 } },
    { "corners the wrong way round", "/ArtBox[140 195 20 30]", { 20, 30, 120, 165 } },
    { "turned", "/Rotate 90 /ArtBox[20 30 140 195]", { 20, 30, 120, 165 } },
    { "damaged", "/ArtBox[0 /x 1 2]", { 0, 0, 200, 300 } },
};

void expectBox(const PageBox& box, const PageBox& expected)
{
    EXPECT_DOUBLE_EQ(box.x, expected.x);
    EXPECT_DOUBLE_EQ(box.y, expected.y);
    EXPECT_DOUBLE_EQ(box.width, expected.width);
    EXPECT_DOUBLE_EQ(box.height, expected.height);
}

} // namespace

TEST_F(DocumentImport, NormalisedPagesAreTheSharedBoxAtTheOrigin)
{
    for (const BoxCase& box : boxCases) {
        SCOPED_TRACE(box.name);
        const auto normalised = importer().normalisedDocument(*memoryFile(markedPage(box.entries)), &failure);
        ASSERT_TRUE(normalised) << failure.message;
        const auto info = importer().measureDocument(*normalised, &failure);
        ASSERT_TRUE(info) << failure.message;
        EXPECT_EQ(info->rotation, 0);
        expectBox(info->media, { 0, 0, box.shared.width, box.shared.height });
        expectBox(info->crop, info->media);
        // The square has moved with the box's corner.
        const auto pixels = importer().renderPageArea(*normalised,
            { 1, 1, 0, 0, std::int32_t(box.shared.width), std::int32_t(box.shared.height) }, &failure);
        ASSERT_TRUE(pixels) << failure.message;
        const auto x = unsigned(30 - box.shared.x), y = unsigned(box.shared.height - (55 - box.shared.y));
        EXPECT_EQ(pixelAt(*pixels, x, y), 0xffff0000u);
        EXPECT_EQ(pixelAt(*pixels, x + 9, y + 9), 0xffff0000u);
        EXPECT_EQ(pixelAt(*pixels, x - 1, y), 0u);
        EXPECT_EQ(pixelAt(*pixels, x + 10, y + 9), 0u);
    }
}

TEST_F(DocumentImport, AreasShowTheMediaBoxAsItLies)
{
    // Neither the smaller crop box nor the rotation matter, and areas join to what one area shows.
    const std::string pdf = markedPage("/CropBox[25 40 100 100]/Rotate 90");
    const auto whole = area(pdf, { 2, 2, 0, 0, 400, 600 });
    const auto part = area(pdf, { 2, 2, 50, 480, 40, 40 });
    ASSERT_TRUE(whole && part) << failure.message;
    EXPECT_EQ(pixelAt(*whole, 60, 490), 0xffff0000u);
    EXPECT_EQ(pixelAt(*whole, 59, 490), 0u);
    for (unsigned y = 0; y < 40; ++y)
        for (unsigned x = 0; x < 40; ++x)
            ASSERT_EQ(pixelAt(*part, x, y), pixelAt(*whole, x + 50, y + 480)) << x << ' ' << y;
    EXPECT_EQ(pixelAt(*area(pdf, { 1, 1, -500, 900, 8, 8 }), 4, 4), 0u) << "beside the page";
}

// A process keeps a document open for its next area: what it has drawn before must not show.
TEST_F(DocumentImport, AreasComeOutTheSameInWhateverOrderTheyAreAskedFor)
{
    std::vector<std::shared_ptr<const MemoryFile>> documents;
    std::vector<std::string> sources;
    for (int i = 0; i < 5; ++i) {
        sources.push_back(makePage("/MediaBox[0 0 100 100]",
            std::to_string(i) + " 5 div 0 0 rg 10 10 60 60 re f 0 0 1 rg 40 " + std::to_string(30 + 5 * i)
                + " 30 30 re f"));
        documents.push_back(memoryFile(sources.back()));
    }
    const PageAreaRequest areas[] { { 2, 2, 0, 0, 100, 100 }, { 3, 3, 50, 60, 90, 70 },
        { 2, 2, 100, 100, 100, 100 } };
    for (const std::size_t i : { 0, 0, 1, 0, 2, 3, 4, 0, 4, 2, 2, 1 })
        for (const PageAreaRequest& wanted : areas) {
            const auto kept = importer().renderPageArea(*documents[i], wanted, &failure);
            const auto fresh = area(sources[i], wanted);
            ASSERT_TRUE(kept && fresh) << failure.message;
            ASSERT_TRUE(std::ranges::equal(kept->pixels(), fresh->pixels())) << i;
            EXPECT_FALSE(importer().renderPageArea(*documents[i], { 2, 2, 0, 0, 0, 5 }, &failure));
        }
}

TEST_F(DocumentImport, RefusesBadDocuments)
{
    for (const std::string& pdf : { std::string("%PDF-1.4\nnothing"), makePage("/MediaBox[0 0 0 300]", ""),
             makePage("/MediaBox[0 0 1e30 300]", ""), makePage("", "") }) {
        EXPECT_FALSE(importer().measureDocument(*memoryFile(pdf), &failure));
        EXPECT_EQ(failure.outcome, ImportOutcome::Refused) << failure.message;
        EXPECT_FALSE(importer().normalisedDocument(*memoryFile(pdf), &failure));
        EXPECT_EQ(failure.outcome, ImportOutcome::Refused) << failure.message;
    }
}

TEST_F(DocumentImport, ConvertsEPSToItsBox)
{
    const std::string art = "0 0.8 0.2 0 setcmykcolor 100 200 150 100 rectfill\nshowpage\n%%EOF\n";
    struct EPSCase {
        const char* name;
        std::string eps;
        double width; ///< 0 for what is refused
    };
    const std::string start = "%!PS-Adobe-3.0 EPSF-3.0\n", box = "%%BoundingBox: 100 200 300 350\n";
    std::string preview = "\xC5\xD0\xD3\xC6";
    const std::string plain = start + box + art;
    for (const std::size_t number : { std::size_t { 30 }, plain.size(), std::size_t { 0 }, std::size_t { 0 },
             std::size_t { 30 }, std::size_t { 0 } })
        for (int shift = 0; shift < 32; shift += 8)
            preview += char(number >> shift);
    const EPSCase cases[] = {
        { "plain", plain, 200 },
        { "finer box", start + box + "%%HiResBoundingBox: 100.25 200.5 299.75 349.5\n" + art, 199.5 },
        { "box at the end", start + "%%BoundingBox: (atend)\n" + art + box, 200 },
        { "with a preview", preview + "\xff\xff" + plain, 200 },
        { "no box", start + art, 0 },
        { "box without area", start + "%%BoundingBox: 0 0 0 0\n" + art, 0 },
        { "unknown operator", start + box + "nosuchoperator\n" + art, 0 },
        { "ends within a string", start + box + "(never closed", 0 },
        { "plain text", "hello", 0 },
        { "reads a file", start + box + "(/etc/passwd) (r) file pop\n" + art, 0 },
        { "runs a program", start + box + "(%pipe%id) (r) file pop\n" + art, 0 },
    };
    for (const EPSCase& eps : cases) {
        SCOPED_TRACE(eps.name);
        const auto pdf = importer().convertEPS(*memoryFile(eps.eps), &failure);
        ASSERT_EQ(pdf != nullptr, eps.width > 0) << failure.message;
        if (!pdf) {
            EXPECT_EQ(failure.outcome, ImportOutcome::Refused);
            continue;
        }
        const auto info = importer().measureDocument(*pdf, &failure);
        ASSERT_TRUE(info) << failure.message;
        EXPECT_NEAR(info->media.width, eps.width, 0.01);
    }
}

TEST_F(DocumentImport, PlacesPagesWhereTheirMarksAre)
{
    // The mark stretched over (20, 30) to (60, 90) of a page; the placed page is red on its left half.
    const std::string mark = makePageMark(), jpeg = pageMarkJPEG(mark);
    const std::string written = pageWithJPEG(jpeg, "/DeviceGray", 1, 1);
    const auto page = memoryFile(makePage("/MediaBox[100 0 300 300]", "0 1 1 0 k 100 0 100 300 re f"));
    const PlacedPage places[] { { mark, page } };
    const auto placed = importer().placePages(*memoryFile(written), places, &failure);
    ASSERT_TRUE(placed) << failure.message;
    const std::string pdf = bytesOf(*placed);
    EXPECT_EQ(pdf.find(mark), std::string::npos);
    EXPECT_NE(pdf.find("/Form"), std::string::npos);
    EXPECT_EQ(pdf.find("/DCTDecode"), std::string::npos);
    const auto pixels = area(pdf, { 1, 1, 0, 0, 100, 100 });
    ASSERT_TRUE(pixels) << failure.message;
    for (const unsigned y : { 11u, 68u }) {
        EXPECT_EQ(pixelAt(*pixels, 21, y) >> 16 & 255, pixelAt(*pixels, 38, y) >> 16 & 255);
        EXPECT_GT(pixelAt(*pixels, 21, y) >> 16 & 255, 200u);
        EXPECT_EQ(pixelAt(*pixels, 41, y) >> 24, 0u);
    }
    EXPECT_EQ(pixelAt(*pixels, 30, 9) >> 24, 0u);
    EXPECT_EQ(pixelAt(*pixels, 30, 71) >> 24, 0u);
}

TEST_F(DocumentImport, JPEGPicturesInDocumentsGetTheProfilesThatTheyCarry)
{
    const char* const profile = "/usr/share/color/icc/ghostscript/default_rgb.icc";
    const std::string plain = makePicture({}, ".jpg"), profiled = makePicture({ .profile = profile }, ".jpg");
    if (profiled.empty())
        GTEST_SKIP() << "there is no profile " << profile;
    for (const bool isProfiled : { false, true }) {
        const std::string& jpeg = isProfiled ? profiled : plain;
        const auto finished
            = importer().placePages(*memoryFile(pageWithJPEG(jpeg, "/DeviceRGB", 8, 6)), {}, &failure);
        ASSERT_TRUE(finished) << failure.message;
        EXPECT_NE(bytesOf(*finished).find(jpeg), std::string::npos) << "the file as it is";
        EXPECT_EQ(bytesOf(*finished).find("/ICCBased") != std::string::npos, isProfiled);
        EXPECT_TRUE(area(bytesOf(*finished), { 1, 1, 0, 0, 100, 100 })) << failure.message;
    }
}
