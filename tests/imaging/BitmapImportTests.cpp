#include <tests/imaging/ImportSupport.h>

using namespace vxr;
using namespace vxr::test;

namespace {

class BitmapImport : public Importing { };

/// A different value for each place and band, and far apart, so that nothing can be exchanged unseen.
double ramp(int x, int y, int band) { return (x * 23 + y * 31 + band * 67) % 256 / 255.0; }

struct KeptCase {
    const char* name;
    MadePicture picture;
    const char* suffix;
    const char* kind;
};

const KeptCase keptCases[] = {
    { "PNG, RGB", { .bands = 3 }, ".png", "png" },
    { "PNG, RGB with alpha", { .bands = 4 }, ".png", "png" },
    { "PNG, grey", { .bands = 1 }, ".png", "png" },
    { "PNG, grey with alpha, 16 bits", { .bands = 2, .bitsPerSample = 16 }, ".png", "png" },
    { "PNG, RGB, 16 bits", { .bands = 3, .bitsPerSample = 16 }, ".png", "png" },
    { "TIFF, RGB", { .bands = 3 }, ".tif", "tif" },
    { "TIFF, CMYK", { .bands = 4, .isCMYK = true }, ".tif", "tif" },
    { "TIFF, CMYK, 16 bits", { .bands = 4, .bitsPerSample = 16, .isCMYK = true }, ".tif", "tif" },
    { "WebP, lossless", { .bands = 3 }, ".webp[lossless]", "webp" },
    { "JPEG 2000, lossless", { .width = 40, .height = 30, .bands = 3 }, ".jp2[lossless]", "jp2" },
    { "BMP", { .bands = 3 }, ".bmp", "bmp" },
    { "ICO", { .width = 16, .height = 16, .bands = 4 }, ".ico", "ico" },
};

} // namespace

TEST_F(BitmapImport, KeepsEverySampleOfLosslessFiles)
{
    for (const KeptCase& kept : keptCases) {
        SCOPED_TRACE(kept.name);
        MadePicture picture = kept.picture;
        picture.sample = ramp;
        const std::string file = makePicture(picture, kept.suffix);
        if (file.empty()) {
            std::cout << kept.name << ": can't be written here\n";
            continue;
        }
        const auto bitmap = decode(file);
        ASSERT_TRUE(bitmap) << failure.message;
        EXPECT_EQ(bitmap->info().kind, kept.kind);
        const BitmapFormat& format = bitmap->format();
        ASSERT_EQ(format.width, unsigned(picture.width));
        ASSERT_EQ(format.height, unsigned(picture.height));
        ASSERT_EQ(format.samplesPerPixel, unsigned(picture.bands));
        ASSERT_EQ(format.bitsPerSample, unsigned(picture.bitsPerSample));
        EXPECT_EQ(format.model,
            picture.isCMYK          ? BitmapModel::CMYK
                : picture.bands < 3 ? BitmapModel::Gray
                                    : BitmapModel::RGB);
        for (int y = 0; y < picture.height; ++y)
            for (int i = 0; i < picture.width * picture.bands; ++i) {
                const std::byte* row = bitmap->pixels().data() + format.bytesPerRow * unsigned(y);
                std::uint16_t wide = 0;
                std::memcpy(&wide, row + 2 * i, picture.bitsPerSample == 16 ? 2 : 0);
                const double value = picture.bitsPerSample == 16 ? wide / 65535.0 : unsigned(row[i]) / 255.0;
                const bool isCleared = picture.bands == 4 && !picture.isCMYK
                    && ramp(i / 4, y, 3) == 0; // colours of clear pixels may be lost
                if (!isCleared) {
                    ASSERT_NEAR(value, ramp(i / picture.bands, y, i % picture.bands), 0.001) << y << ' ' << i;
                }
            }
    }
}

TEST_F(BitmapImport, ReadsTheCompositeOfLayeredFiles)
{
    struct PSDCase {
        const char* name;
        std::uint8_t mode;
        int bands, bits;
        bool isPacked;
    };
    const PSDCase cases[] = { { "RGB", 3, 3, 8, false }, { "RGB, packed", 3, 3, 8, true },
        { "CMYK, packed", 4, 4, 8, true }, { "CMYK, 16 bits", 4, 4, 16, false }, { "grey", 1, 1, 8, true } };
    for (const PSDCase& psd : cases) {
        SCOPED_TRACE(psd.name);
        const MadePicture picture { .bands = psd.bands, .bitsPerSample = psd.bits, .sample = ramp };
        const auto bitmap = decode(makePSD(picture, psd.mode, psd.isPacked));
        ASSERT_TRUE(bitmap) << failure.message;
        EXPECT_EQ(bitmap->info().kind, "psd");
        EXPECT_EQ(bitmap->info().horizontalResolution, 150);
        ASSERT_EQ(bitmap->format().samplesPerPixel, unsigned(psd.bands));
        ASSERT_EQ(bitmap->format().bitsPerSample, unsigned(psd.bits));
        const std::size_t bytes = std::size_t(psd.bits) / 8;
        for (std::size_t i = 0; i < bitmap->pixels().size() / bytes; ++i) {
            std::uint16_t wide = 0;
            std::memcpy(&wide, bitmap->pixels().data() + i * bytes, bytes);
            const int band = int(i) % psd.bands, x = int(i) / psd.bands % 8, y = int(i) / psd.bands / 8;
            ASSERT_NEAR(wide / (psd.bits == 16 ? 65535. : 255.), ramp(x, y, band), 0.001) << i;
        }
    }
}

TEST_F(BitmapImport, SaysWhatTheHeaderSays)
{
    const std::string file = makePicture({ .width = 30, .height = 20, .pixelsPerInch = 300 }, ".jpg");
    const auto info = importer().measureBitmap(*memoryFile(file), &failure);
    ASSERT_TRUE(info) << failure.message;
    EXPECT_EQ(info->kind, "jpg");
    EXPECT_EQ(info->format.width, 30u);
    EXPECT_NEAR(info->horizontalResolution, 300, 0.1f);
    EXPECT_TRUE(info->isPlainJPEG);

    const std::string silent = makePicture({}, ".tif");
    EXPECT_EQ(importer().measureBitmap(*memoryFile(silent))->horizontalResolution, 0);
}

TEST_F(BitmapImport, TurnsEveryOrientationUpright)
{
    // Upright: red at the upper left, green at the upper right, blue at the lower left; 12 wide, 8 high.
    constexpr int width = 12, height = 8;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        const bool isOnItsSide = orientation >= 5;
        MadePicture stored { .width = isOnItsSide ? height : width, .height = isOnItsSide ? width : height };
        stored.orientation = orientation;
        stored.sample = [&](int x, int y, int band) {
            const int right = stored.width - 1, bottom = stored.height - 1;
            // Where EXIF says that the first row and the first column lie.
            const int places[8][2] = { { x, y }, { right - x, y }, { right - x, bottom - y },
                { x, bottom - y }, { y, x }, { bottom - y, x }, { bottom - y, right - x }, { y, right - x } };
            const auto [u, v] = places[orientation - 1];
            const bool isRight = u >= width / 2, isLower = v >= height / 2;
            const int corner = isLower ? (isRight ? -1 : 2) : (isRight ? 1 : 0);
            return corner == band ? 1. : 0.;
        };
        const auto bitmap = decode(makePicture(stored, ".tif"), true);
        ASSERT_TRUE(bitmap) << failure.message;
        ASSERT_EQ(bitmap->format().width, unsigned(width));
        ASSERT_EQ(bitmap->format().height, unsigned(height));
        EXPECT_EQ(pixelAt(*bitmap, 0, 0), 0xffff0000u);
        EXPECT_EQ(pixelAt(*bitmap, 5, 3), 0xffff0000u);
        EXPECT_EQ(pixelAt(*bitmap, 11, 0), 0xff00ff00u);
        EXPECT_EQ(pixelAt(*bitmap, 0, 7), 0xff0000ffu);
        EXPECT_EQ(pixelAt(*bitmap, 11, 7), 0xff000000u);
    }
}

TEST_F(BitmapImport, DrawablePixelsArePremultipliedAndInTheScreensColors)
{
    const auto solid = [](std::vector<double> samples) {
        return [samples](int, int, int band) { return samples[std::size_t(band)]; };
    };
    MadePicture clear { .bands = 4, .sample = solid({ 1, 0.5, 0, 0.5 }) };
    auto bitmap = decode(makePicture(clear, ".png"), true);
    ASSERT_TRUE(bitmap) << failure.message;
    EXPECT_TRUE(bitmap->format().hasAlpha);
    EXPECT_EQ(pixelAt(*bitmap, 3, 3), 0x80804000u);

    MadePicture wide { .bands = 2, .bitsPerSample = 16, .sample = solid({ 0.25, 1 }) };
    bitmap = decode(makePicture(wide, ".png"), true);
    ASSERT_TRUE(bitmap) << failure.message;
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), 0xff404040u);

    // Ink takes light away, whatever the profile of the system.
    MadePicture inks { .bands = 4, .isCMYK = true, .sample = solid({ 0, 1, 1, 0 }) };
    bitmap = decode(makePicture(inks, ".tif"), true);
    ASSERT_TRUE(bitmap) << failure.message;
    const std::uint32_t red = pixelAt(*bitmap, 0, 0);
    EXPECT_EQ(red >> 24, 255u);
    EXPECT_GT(red >> 16 & 255, 200u);
    EXPECT_LT(red >> 8 & 255, 80u);
    // A JPEG's inks may be stored the other way round.
    bitmap = decode(makePicture(inks, ".jpg[Q=100]"), true);
    ASSERT_TRUE(bitmap) << failure.message;
    EXPECT_FALSE(bitmap->info().isPlainJPEG);
    EXPECT_NEAR(double(pixelAt(*bitmap, 0, 0) >> 16 & 255), double(red >> 16 & 255), 4);
    EXPECT_NEAR(double(pixelAt(*bitmap, 0, 0) >> 8 & 255), double(red >> 8 & 255), 6);
}

TEST_F(BitmapImport, APNGsGammaIsHonoured)
{
    MadePicture gray { .bands = 1, .sample = [](int, int, int) { return 0.5; } };
    std::string file = makePicture(gray, ".png");
    ASSERT_EQ(pixelAt(*decode(file, true), 0, 0), 0xff808080u);
    // gAMA 1.0, put behind the header: samples count light.
    const std::string gamma("\0\0\0\4gAMA\0\1\x86\xa0\x31\xe8\x96\x5f", 16);
    file.insert(33, gamma);
    const auto bitmap = decode(file, true);
    ASSERT_TRUE(bitmap) << failure.message;
    EXPECT_FALSE(bitmap->info().profile.empty());
    EXPECT_NEAR(double(pixelAt(*bitmap, 0, 0) & 255), 188, 1); // sRGB's value for half of the light
    EXPECT_EQ(pixelAt(*importer().decodeBitmap(*memoryFile(file), { true, false }), 0, 0), 0xff808080u);
}

TEST_F(BitmapImport, RefusesWhatIsNoPictureAndWhatIsTooLarge)
{
    for (const std::string& file : { std::string(), std::string("hello"), std::string("\xff\xd8\xff"),
             std::string("%!PS-Adobe-3.0 EPSF-3.0\n"), makePicture({}, ".png").substr(0, 60) }) {
        EXPECT_FALSE(decode(file));
        EXPECT_EQ(failure.outcome, ImportOutcome::Refused) << failure.message;
        EXPECT_FALSE(failure.message.empty());
    }
    // A header of 60,000 by 60,000 pixels, with nothing behind it.
    const std::string bomb(
        "\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\xea\x60\0\0\xea\x60\x08\2\0\0\0\x6c\x9b\x0d\x2a"
        "\0\0\0\0IDAT\x35\xaf\x06\x1e",
        45);
    EXPECT_FALSE(decode(bomb));
    EXPECT_NE(failure.outcome, ImportOutcome::Done);
    EXPECT_TRUE(decode(makePicture({}, ".png"))) << "the next job works";
}
