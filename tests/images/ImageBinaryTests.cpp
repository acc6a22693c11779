#include <tests/images/ImageTestSupport.h>
#include <tests/support/LogCapture.h>
#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/host/data/VXEPasteboardAssistant.h>
#include <vxr/host/utility/VXUAssertionHandler.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/host/utility/VXUSystemVersion.h>
#include <vxr/images/VXRBitmapImageData.h>
#include <vxr/images/VXRBitmapImages.h>
#include <vxr/images/VXRBitmapRenderer.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/images/VXRPDFImageData.h>
#include <vxr/images/VXRPICTImageData.h>
#include <vxr/images/VXRPixelConversions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/PDFDocument.h>
#include <vxr/platform/pictures/Pasteboard.h>

#include <sys/xattr.h>

#include <filesystem>
#include <fstream>

namespace vxr::test {

namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::Not;

/// A folder of its own, gone at the end.
struct Folder {
    Folder()
    {
        std::string name = (fs::temp_directory_path() / "vxr-images-XXXXXX").string();
        path = ::mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path); }

    std::string file(const std::string& name, const std::string& bytes = "bitmap") const
    {
        std::ofstream(path / name, std::ios::binary) << bytes;
        return (path / name).string();
    }

    fs::path path;
};

std::string pastedName(const std::string& text, std::string_view type = kPasteboardTypeTIFF)
{
    Pasteboard pasteboard;
    pasteboard.setDataForType(dataOf(type == kPasteboardTypePDF ? "page" : "bitmap"), type);
    if (!text.empty())
        pasteboard.setStringForType(text, kPasteboardTypeString);
    return VXRImageBinary::imageBinaryFromPasteboardUsingDataManager(pasteboard, nullptr)->name();
}

} // namespace

TEST(ImageBinary, AcceptsWhatTheImporterReadsExceptEPSAndRefusedTypes)
{
    KnownFiles files;
    for (const char* type : { "tga", "mac", "sgi" })
        files->types.push_back({ type, "'TPIC'", ImportKind::Bitmap });
    const auto& types = VXRImageBinary::imageFileTypes();
    for (const char* accepted : { "jpg", "JPG", "'JPEG'", "pdf", "pict", "'8BPS'" })
        EXPECT_THAT(types, Contains(accepted));
    for (const char* refused : { "tga", "TGA", "'TPIC'", "mac", "sgi", "eps", "'EPSF'" })
        EXPECT_THAT(types, Not(Contains(refused)));
    EXPECT_THAT(VXRImageBinary::epsImageFileTypes(), Contains("eps"));
    files->available = false;
    EXPECT_TRUE(VXRImageBinary::imageFileTypes().empty());
}

TEST(ImageBinary, NamesFilesByTheirExtensionOrElseByTheirType)
{
    KnownFiles files;
    Folder folder;
    struct Case {
        const char *file, *type, *name;
    };
    for (const Case& c : { Case { "photo.JPG", "", "photo.JPG" }, { "scan", "JPEG", "scan.jpg" },
             { "scan.old", "PNGf", "scan.png" }, { "odd", "XYZ ", "" }, { "none", "", "" },
             { "paint.tga", "", "" }, { "drawing", "PICT", "drawing.PICT" },
             { "drawing2", "tiff", "drawing2.tiff" } }) {
        const std::string path = folder.file(c.file);
        if (*c.type && ::setxattr(path.c_str(), "user.hfs.type", c.type, 4, 0) != 0)
            continue; // no attributes on this file system
        EXPECT_EQ(VXRImageBinary::p_saveNameFromPath(path), c.name) << c.file;
        EXPECT_EQ(VXRImageBinary::canInitFromFile(path), *c.name != 0) << c.file;
    }
    fs::create_symlink(folder.file("real.png"), folder.path / "alias");
    EXPECT_TRUE(VXRImageBinary::canInitFromFile((folder.path / "alias").string()));
    EXPECT_FALSE(VXRImageBinary::canInitFromFile(folder.file("empty.png", "")));
    EXPECT_EQ(VXRImageBinary::p_stripHFSTypeString("'XYZ '"), "XYZ ");
    EXPECT_EQ(VXRImageBinary::p_stripHFSTypeString("''"), "''");
}

TEST(ImageBinary, TriesKindsInOrderAndMarksWhatNoneTakes)
{
    KnownFiles files;
    const auto bitmap = binaryOf("bitmap", "a.png"), page = binaryOf("page", "a.PDF"),
               pict = binaryOf("pict", "a.pct"), broken = binaryOf("junk", "a.jpg");
    EXPECT_TRUE(std::dynamic_pointer_cast<VXRBitmapImageData>(bitmap->imageData()));
    EXPECT_TRUE(std::dynamic_pointer_cast<VXRPDFImageData>(page->imageData()));
    EXPECT_EQ(page->data()->hfsType(), 0x50444620u);
    EXPECT_TRUE(std::dynamic_pointer_cast<VXRPICTImageData>(pict->imageData()));
    EXPECT_TRUE(broken->isCorrupted());
    EXPECT_EQ(broken->imageData(), nullptr);
    EXPECT_EQ(bitmap->naturalImageSize(), (Size { 640, 480 }));
    EXPECT_EQ(page->naturalImageSize(), (Size { 200, 100 }));
    EXPECT_EQ(broken->naturalImageSize(), (Size { 100, 100 }));
    EXPECT_TRUE(std::dynamic_pointer_cast<VXRDummyImageRenderer>(broken->imageRenderer()));

    VXRImageBinary missing;
    missing.setData(std::make_shared<VXEData>("/nowhere/a.png", "", nullptr, 0));
    EXPECT_TRUE(missing.isMissing());
    EXPECT_EQ(missing.naturalImageSize(), (Size { 100, 100 }));

    auto named = std::make_shared<VXEData>(dataOf("bitmap"), "x", "x.png", 0x50494354, nullptr);
    EXPECT_TRUE(VXRBitmapImageData::initWithVXEData(named));
    EXPECT_EQ(named->hfsType(), 0u) << "the bytes have turned out to be a bitmap";
}

TEST(ImageBinary, RepresentationsHaveAFormatFromVersion1040On)
{
    static constexpr std::uint8_t sample[] { 0x80, 0xff, 0x40, 0xff };
    const auto pixelOn = [](int version) {
        const int before = VXUSetSystemVersion(version);
        BitmapPlanes planes;
        planes.planes[0] = sample;
        planes.pixelsWide = planes.pixelsHigh = 1;
        planes.samplesPerPixel = planes.bytesPerRow = 4;
        planes.bitsPerPixel = 32;
        planes.hasAlpha = true;
        planes.colorSpaceName = kDeviceRGBColorSpace;
        planes.bitmapFormat = kBitmapAlphaFirst;
        const auto rep = BitmapImageRep::imageRepWithPlanes(planes, nullptr);
        const AlphaFormat alpha = VXRImageRefFromBitmapImageRep(*rep, true)->layout().alpha;
        VXUSetSystemVersion(before);
        return alpha;
    };
    EXPECT_EQ(pixelOn(4160), AlphaFormat::PremultipliedFirst);
    EXPECT_EQ(pixelOn(4159), AlphaFormat::PremultipliedLast);
}

TEST(ImageBinary, OneSentenceIsLoggedForAPictureThatNothingDecodes)
{
    KnownFiles files;
    vxr::testing::LogCapture log;
    for (const char* name : { "a.jpg", "b.pdf", "c.pict" }) {
        const auto broken = binaryOf(std::string("junk of ") + name, name);
        broken->imageRenderer();
        broken->naturalImageSize();
    }
    ASSERT_EQ(log.lines().size(), 3u);
    EXPECT_THAT(log.lines()[1], ::testing::HasSubstr("\"b.pdf\""));
    VXRImageBinary::pdfDataFromEPSDataPathError(dataOf("no PostScript"), "/there/logo.eps", nullptr);
    ASSERT_EQ(log.lines().size(), 4u);
    EXPECT_THAT(log.lines()[3], ::testing::HasSubstr("logo.eps"));
}

TEST(ImageBinary, PicturesGetTheHeaderThatTheyLack)
{
    KnownFiles files;
    const std::string header(512, '\0');
    const auto bare = binaryOf("pict", "a.pict");
    ASSERT_EQ(bare->data()->byteSize(), 516u);
    const auto withHeader = binaryOf(header + "pict", "a.pict");
    EXPECT_EQ(withHeader->data()->byteSize(), 516u);
    EXPECT_TRUE(bare->isEqual(*withHeader));
    EXPECT_EQ(withHeader->bytesUsed(), 516u + 4);
}

TEST(ImageBinary, PagesAreCutToTheirArtBoxAndTurnedUpright)
{
    KnownFiles files;
    files->normalised["cut"] = "page";
    files->normalised["turned"] = "page";
    for (const char* name : { "cut", "turned", "flat" })
        files.addPage(name, { 0, 0, 300, 300 });
    files->documents["cut"].art = { 10, 10, 200, 100 };
    files->documents["turned"].rotation = 90;
    files->documents["flat"].media = files->documents["flat"].art = { 0, 0, 300, 0 };
    struct Case {
        const char *bytes, *kept;
    };
    for (const Case& c : { Case { "page", "page" }, { "cut", "page" }, { "turned", "page" } }) {
        const auto binary = binaryOf(c.bytes, "a.pdf");
        const auto pdf = std::dynamic_pointer_cast<VXRPDFImageData>(binary->imageData());
        ASSERT_TRUE(pdf) << c.bytes;
        EXPECT_TRUE(pdf->pdfRef()->data()->isEqual(*dataOf(c.kept))) << c.bytes;
    }
    EXPECT_TRUE(binaryOf("flat", "a.pdf")->isCorrupted());
}

TEST(ImageBinary, OneManagerGivesOneBinaryForOneFile)
{
    KnownFiles files;
    Folder folder;
    VXEDataManager manager;
    const std::string path = folder.file("a.png");
    const auto first = VXRImageBinary::imageBinaryFromFileUsingDataManager(path, &manager);
    EXPECT_EQ(VXRImageBinary::imageBinaryFromFileUsingDataManager(path, &manager), first);
    EXPECT_EQ(binaryOf("bitmap", "b.png", &manager), first);
    EXPECT_EQ(VXRImageBinary::imageBinaryFromFileDisplayNameUsingDataManagerResourceType(
                  path, "shown", &manager, 0),
        first);
    const auto unshared = VXRImageBinary::unsharedImageBinaryWithDataNameTypeUsingDataManager(
        dataOf("bitmap"), "a.png", 0, &manager);
    EXPECT_NE(unshared, first);
    EXPECT_FALSE(unshared->sharable());
    EXPECT_EQ(unshared->data()->saveName(), "a-1.png");
    EXPECT_TRUE(unshared->isEqual(*first));
    EXPECT_EQ(binaryOf("", "a.png"), nullptr);
    EXPECT_EQ(binaryOf("bitmap", "a.eps"), nullptr);
    EXPECT_EQ(binaryOf("bitmap", "/somewhere/c.png")->name(), "c.png");
    EXPECT_EQ(VXRImageBinary::imageBinaryFromFileDisplayNameUsingDataManagerResourceType("", "", &manager, 0),
        nullptr);
}

TEST(ImageBinary, PastedPicturesAreNamedAfterTheTextBesideThem)
{
    KnownFiles files;
    struct Case {
        const char *text, *name;
    };
    for (const Case& c : { Case { "", "droppedImage.tiff" }, { "a/b:c\nand more", "a-b-c.tiff" },
             { "/pictures/cat.jpeg", "cat.tiff" }, { "  dog \n", "dog.tiff" }, { "one\ttwo", "one.tiff" },
             { "\n", "droppedImage.tiff" } })
        EXPECT_EQ(pastedName(c.text), c.name) << c.text;
    EXPECT_EQ(pastedName(std::string(300, 'x')), std::string(200, 'x') + ".tiff");
    EXPECT_EQ(pastedName("", kPasteboardTypePDF), "droppedImage.pdf");
    EXPECT_FALSE(VXRImageBinary::canInitFromPasteboard(Pasteboard()));
}

TEST(ImageBinary, EPSBecomesPDF)
{
    KnownFiles files;
    Folder folder;
    files->conversions["eps"] = "page";
    const auto binary = VXRImageBinary::epsImageBinaryFromFileUsingDataManagerError(
        folder.file("logo.EPS", "eps"), nullptr, nullptr);
    ASSERT_TRUE(binary);
    EXPECT_EQ(binary->name(), "logo.pdf");
    EXPECT_EQ(binary->naturalImageSize(), (Size { 200, 100 }));
    std::string error = "untouched";
    EXPECT_EQ(VXRImageBinary::pdfImageBinaryFromEPSFileUsingDataManagerError(
                  folder.file("bad.eps", "junk"), nullptr, &error),
        nullptr);
    EXPECT_EQ(error, "untouched");
    VXRImageBinary::setApplicationPDFDataFromEPSData(
        [](const auto&, const auto&, std::string*) { return dataOf("page"); });
    EXPECT_TRUE(VXRImageBinary::pdfImageBinaryFromEPSFileUsingDataManagerError(
        folder.file("bad.eps", "junk"), nullptr, &error));
    VXRImageBinary::setApplicationPDFDataFromEPSData(nullptr);

    Data wrong;
    VXUAssertionHandler::currentHandler().removeAllFailures();
    EXPECT_EQ(PutBytesIntoNSData(&wrong, "ab", 2), 2u);
    EXPECT_EQ(PutBytesIntoNSData(nullptr, "ab", 2), 0u);
    ASSERT_EQ(VXUAssertionHandler::currentHandler().failures().size(), 2u);
    EXPECT_EQ(VXUAssertionHandler::currentHandler().failures()[0].description, "Bad parameter");
}

TEST(ImageBinary, AFlushFreesOneLevelAndTheLeastTouchedFirst)
{
    KnownFiles files;
    Folder folder;
    VXUObjectFlusher& flusher = VXUObjectFlusher::instance();
    std::vector<std::shared_ptr<VXRImageBinary>> binaries;
    for (const char* name : { "a.png", "b.png", "c.png" }) {
        auto binary = std::make_shared<VXRImageBinary>();
        binary->setData(std::make_shared<VXEData>(folder.file(name), "", nullptr, 0));
        binary->imageData();
        binaries.push_back(binary);
    }
    const std::size_t each = 640 * 480 * 4 + 6;
    EXPECT_EQ(binaries[0]->bytesUsed(), each);
    binaries[0]->imageRenderer(); // touched after the others
    int told = 0;
    NotificationCenter::defaultCenter().addObserver(
        &told, VXRImageBinaryWasFlushedNotification, binaries[1].get(), [&](const Notification&) { ++told; });
    flusher.setBudget(2 * each + 10);
    EXPECT_FALSE(binaries[1]->hasImageData());
    EXPECT_EQ(binaries[1]->bytesUsed(), 6u) << "the bytes stay for another flush";
    EXPECT_TRUE(binaries[2]->hasImageData());
    EXPECT_EQ(told, 1);
    binaries[1]->flushLocalData();
    EXPECT_EQ(binaries[1]->bytesUsed(), 0u);
    EXPECT_FALSE(binaries[1]->isFlushable());
    EXPECT_TRUE(binaries[1]->imageIsLoaded()) << "read and decoded again";
    EXPECT_FALSE(binaries[2]->hasImageData()) << "to make room";
    EXPECT_LE(flusher.bytesUsed(), flusher.budget());
    flusher.setBudget(VXUObjectFlusher::defaultBudget);
    NotificationCenter::defaultCenter().removeObserver(&told);
}

TEST(ImageBinary, OffersItsOwnFormOnThePasteboard)
{
    KnownFiles files;
    struct Case {
        const char *bytes, *name;
        std::string_view type;
        std::size_t length;
    };
    constexpr std::size_t tiffLength = 8 + 8 + 640 * 480 * 4 + 2 + 11 * 12 + 4;
    for (const Case& c :
        { Case { "page", "a.pdf", kPasteboardTypePDF, 4 }, { "pict", "a.pict", kPasteboardTypePICT, 4 },
            { "bitmap", "a.png", kPasteboardTypeTIFF, tiffLength },
            { "junk", "a.png", kPasteboardTypeTIFF, 0 } }) {
        const auto pasteboard = std::make_shared<Pasteboard>();
        VXEPasteboardAssistant assistant(pasteboard);
        binaryOf(c.bytes, c.name)->putNativeStandardPasteboardDataOnPasteboardAssistant(assistant);
        const auto data = pasteboard->dataForType(c.type);
        EXPECT_EQ(data ? data->length() : 0, c.length) << c.bytes;
    }
}

TEST(ImageBinary, IsCodedWithItsDataAndSize)
{
    KnownFiles files;
    VXRImageBinary::registerCoding();
    const auto binary = binaryOf("page", "a.pdf");
    binary->setNaturalImageSize({ 12, 34 });
    VXACoder coder;
    coder.encodeObject(binary.get());
    VXADecoder decoder(coder.data());
    const auto read = std::dynamic_pointer_cast<VXRImageBinary>(decoder.decodeObject());
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->isEqual(*binary));
    EXPECT_EQ(read->naturalImageSize(), (Size { 12, 34 }));
    EXPECT_EQ(read->data()->hfsType(), binary->data()->hfsType());
    VXADecoder cut(coder.data().first(coder.data().size() - 20));
    EXPECT_THROW(cut.decodeObject(), std::exception);
}

TEST(ImageBinary, BitmapsAreRemadeWithoutTheirProfileAndCompressedForDocuments)
{
    KnownFiles files;
    BitmapInfo info = files->bitmaps["bitmap"]->info();
    info.isPlainJPEG = true;
    const auto& decoded = files->bitmaps["bitmap"];
    files->bitmaps["jpeg"] = std::make_shared<const ImportedBitmap>(
        info, decoded->format(), decoded->pixels().data(), decoded->owner());
    struct Case {
        const char *bytes, *name;
        bool compressed;
    };
    for (const Case& c :
        { Case { "jpeg", "a.JPEG", true }, { "jpeg", "a.png", false }, { "bitmap", "a.jpg", false } }) {
        const auto binary = binaryOf(c.bytes, c.name);
        const auto bitmap = std::dynamic_pointer_cast<VXRBitmapImageData>(binary->imageData());
        EXPECT_EQ(bitmap->compressedImageRef() != nullptr, c.compressed) << c.name;
        const auto renderer = std::dynamic_pointer_cast<VXRBitmapRenderer>(binary->imageRenderer());
        EXPECT_EQ(renderer->imageRef(), bitmap->imageRef());
        EXPECT_EQ(renderer->compressedImageRef(), bitmap->compressedImageRef());
        bitmap->stripColorSyncProfile();
        EXPECT_EQ(files->calls.back(), "decode drawable without profile");
    }
}

TEST(PixelConversions, RearrangeComponents)
{
    const std::uint32_t argb = 0x80112233;
    std::uint32_t wide = 0;
    convertARGBtoRGBA(&argb, &wide, 1);
    EXPECT_EQ(wide, 0x11223380u);
    convertRGBAtoARGB(&wide, &wide, 1);
    EXPECT_EQ(wide, argb);
    const std::uint8_t rgba[] = { 0xff, 0x84, 0x21, 0x55 };
    convertRGBtoARGB(rgba, &wide, 1);
    EXPECT_EQ(wide, 0xffff8421u);
    std::uint16_t narrow = 0;
    convertRGBAtoRGB555(rgba, &narrow, 1);
    EXPECT_EQ(narrow, 0x7c00 | 0x10 << 5 | 0x04);
    convertRGBtoRGB555(rgba, &narrow, -1);
    std::uint8_t alpha = 0, colored[4];
    VXRExtractAlphaChannel(rgba, 4, &alpha, 1, 1, 1);
    EXPECT_EQ(alpha, 0x55);
    alpha = 255;
    VXRColorizeAlphaBuffer(&alpha, 1, colored, 4, 1, 1, 255, 128, 0, 255);
    EXPECT_THAT(colored, ::testing::ElementsAre(0, 127, 253, 254)) << "one step short";
}

} // namespace vxr::test
