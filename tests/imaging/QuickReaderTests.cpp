#include <tests/imaging/ImportSupport.h>

using namespace vxr;
using namespace vxr::test;

// JPEG and PNG files have readers of their own; the program with every decoder is what they must agree with.

namespace {

class QuickReaders : public Importing {
protected:
    static ImportProgram& decoders()
    {
        static ImportProgram program(VXR_IMPORT_DECODERS);
        program.setLimits(std::size_t { 1 } << 30, std::size_t { 1 } << 31, 60, patience);
        return program;
    }
};

double grain(int x, int y, int band) { return (x * x * 3 + y * 41 + band * 67 + x * y) % 256 / 255.0; }

struct AgreementCase {
    const char* name;
    MadePicture picture;
    const char* suffix;
};

constexpr const char* wideProfile = "/usr/share/color/icc/ghostscript/a98.icc";

const AgreementCase agreementCases[] = {
    { "JPEG", { .width = 61, .height = 37, .sample = grain, .pixelsPerInch = 300 }, ".jpg[Q=80]" },
    { "JPEG, grey", { .width = 33, .height = 70, .bands = 1, .sample = grain }, ".jpg" },
    { "JPEG, progressive", { .width = 50, .height = 50, .sample = grain }, ".jpg[interlace]" },
    { "JPEG, full colour", { .width = 50, .height = 50, .sample = grain }, ".jpg[subsample-mode=off]" },
    { "JPEG, inks", { .bands = 4, .isCMYK = true, .sample = grain }, ".jpg" },
    { "JPEG with a profile", { .sample = grain, .profile = wideProfile }, ".jpg" },
    { "JPEG on its side",
        { .width = 9, .height = 20, .sample = grain, .pixelsPerInch = 72, .orientation = 6 }, ".jpg" },
    { "JPEG, mirrored", { .width = 9, .height = 20, .bands = 1, .sample = grain, .orientation = 5 }, ".jpg" },
    { "PNG", { .width = 61, .height = 37, .sample = grain, .pixelsPerInch = 144 }, ".png" },
    { "PNG, interlaced", { .width = 13, .height = 21, .bands = 4, .sample = grain }, ".png[interlace]" },
    { "PNG, palette", { .width = 40, .height = 40, .sample = grain }, ".png[palette]" },
    { "PNG, palette and alpha", { .width = 40, .height = 40, .bands = 4, .sample = grain }, ".png[palette]" },
    { "PNG, 1 bit", { .width = 19, .height = 5, .bands = 1, .sample = grain }, ".png[bitdepth=1]" },
    { "PNG, 16 bits", { .bands = 2, .bitsPerSample = 16, .sample = grain }, ".png" },
    { "PNG with a profile", { .bands = 4, .sample = grain, .profile = wideProfile }, ".png" },
};

} // namespace

TEST_F(QuickReaders, AgreeWithTheProgramThatHasEveryDecoder)
{
    for (const AgreementCase& agreement : agreementCases) {
        SCOPED_TRACE(agreement.name);
        const auto file = memoryFile(makePicture(agreement.picture, agreement.suffix));
        ASSERT_GT(file->size(), 0u);
        for (const BitmapRequest& wanted :
            { BitmapRequest { false, true }, BitmapRequest { true, true }, BitmapRequest { true, false } }) {
            const auto quick = importer().decodeBitmap(*file, wanted, &failure);
            ASSERT_TRUE(quick) << failure.message;
            const auto full = decoders().decodeBitmap(*file, wanted, &failure);
            ASSERT_TRUE(full) << failure.message;
            EXPECT_TRUE(std::ranges::equal(quick->pixels(), full->pixels())) << wanted.drawable;
            EXPECT_EQ(quick->format().hasAlpha, full->format().hasAlpha);
            const BitmapInfo &a = quick->info(), &b = full->info();
            EXPECT_EQ(a.kind, b.kind);
            EXPECT_EQ(a.orientation, b.orientation);
            EXPECT_EQ(a.isPlainJPEG, b.isPlainJPEG);
            EXPECT_EQ(a.profile, b.profile);
            EXPECT_EQ(a.profileName, b.profileName);
            EXPECT_NEAR(a.horizontalResolution, b.horizontalResolution, 0.01);
            EXPECT_NEAR(a.verticalResolution, b.verticalResolution, 0.01);
            EXPECT_EQ(a.format.samplesPerPixel, b.format.samplesPerPixel);
            EXPECT_EQ(a.format.bitsPerSample, b.format.bitsPerSample);
        }
    }
}

TEST_F(QuickReaders, RefuseFilesThatEndTooEarly)
{
    const MadePicture picture { .width = 64, .height = 64, .sample = grain };
    for (const char* suffix : { ".jpg", ".jpg[interlace]", ".png", ".png[interlace]" }) {
        SCOPED_TRACE(suffix);
        const std::string whole = makePicture(picture, suffix);
        for (const std::size_t size : { whole.size() / 8, whole.size() / 2, whole.size() - 20 }) {
            EXPECT_FALSE(decode(whole.substr(0, size))) << size;
            EXPECT_EQ(failure.outcome, ImportOutcome::Refused) << failure.message;
        }
    }
}
