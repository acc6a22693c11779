#include <tests/support/LogCapture.h>
#include <vxr/filters/FilterPipeline.h>
#include <vxr/filters/VXRFilterRegistry.h>
#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/filters/VXRFilteredImageRenderer.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/NotificationCenter.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/pictures/BitmapImageRep.h>

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <malloc.h>
#include <random>

namespace vxr {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Pixels = std::vector<std::uint32_t>;

std::shared_ptr<const Image> imageOf(int width, int height, const Pixels& pixels)
{
    return Image::createWithCopy(
        ImageLayout::nativeARGB(width, height, 4 * std::size_t(width)), pixels.data(), 4 * pixels.size());
}

std::shared_ptr<const Image> randomImage(int width, int height, bool isOpaque)
{
    std::mt19937 random(11);
    Pixels pixels;
    for (int i = 0; i < width * height; ++i) {
        const unsigned a = isOpaque ? 255 : random() % 256;
        const auto channel = [&] { return a ? random() % (a + 1) : 0u; };
        pixels.push_back(a << 24 | channel() << 16 | channel() << 8 | channel());
    }
    return imageOf(width, height, pixels);
}

Pixels pixelsOf(const std::shared_ptr<const Image>& image)
{
    Pixels pixels(std::size_t(image->width()) * std::size_t(image->height()));
    for (int y = 0; y < image->height(); ++y)
        std::memcpy(pixels.data() + y * image->width(),
            image->pixels() + std::size_t(y) * image->layout().bytesPerRow, 4 * std::size_t(image->width()));
    return pixels;
}

/// A filter of the host's that counts the pixels that go through it.
struct CountingFilter : VXRFilter {
    explicit CountingFilter(long& pixels)
        : VXRFilter("Counting", { { "shift", 0.1f, 0, 1 } })
        , count(&pixels)
    {
    }
    std::vector<FilterOperation> operations() const override
    {
        if (throws)
            throw GenericException("no such effect");
        const float shift = valueAt(0);
        return { FilterOperation::pixelLoop([this, shift](float* r, float* g, float* b, int n) {
            if (throwsWithin)
                throw GenericException("lost in the middle");
            *count += n;
            for (int i = 0; i < n; ++i) {
                r[i] = 1 - r[i] * shift;
                g[i] += shift;
                b[i] = r[i] * g[i];
            }
        }) };
    }
    std::shared_ptr<VXRFilter> copyWithZone() const override
    {
        return std::make_shared<CountingFilter>(*this);
    }
    long* count;
    bool throws = false, throwsWithin = false;
};

std::shared_ptr<VXRFilter> filterNamed(const char* name, const char* key, float value)
{
    auto filter = VXRFilterRegistry::createFilter(name);
    filter->setValueForKey(value, key);
    return filter;
}

TEST(FilteredImage, RunsOnlyTheLayersFromTheChangedOneOnAndGivesTheSameBytes)
{
    for (const bool isOpaque : { true, false }) {
        const auto source = randomImage(610, 450, isOpaque); // large enough for tables
        const auto image = VXRFilteredImage::filteredImageWithImageRef(source);
        image->setAutomaticLevels(VXRAutomaticLevels::PerChannel);
        VXREffectStack& stack = *image->effectStack();
        long counts[3] = {};
        for (int i = 0; i < 3; ++i) {
            stack.appendFilter(std::make_shared<CountingFilter>(counts[i]));
            stack.appendFilter(i == 0 ? filterNamed("TesselSaturation", "inputSaturation", 0.4f)
                    : i == 1          ? filterNamed("TesselUnsharpMask", "inputIntensity", 0.6f)
                                      : filterNamed("TesselTintCorrection", "inputPower", 0.3f));
        }
        const auto passes = [&](const std::function<void()>& change) {
            std::fill_n(counts, 3, 0);
            change();
            image->filteredImage();
            std::vector<long> all;
            for (const long count : counts)
                all.push_back(count / (610 * 450));
            return all;
        };
        const auto set = [&](std::size_t layer, float value) {
            return [&stack, layer, value] { stack.filterAtIndex(layer)->setValueForKey(value, "shift"); };
        };
        EXPECT_THAT(passes([] {}), ElementsAre(1, 1, 1));
        EXPECT_THAT(passes([] {}), ElementsAre(0, 0, 0));
        EXPECT_THAT(passes(set(5, 0.2f)), ElementsAre(1, 1, 1)) << "now the lower ones are kept";
        EXPECT_THAT(passes(set(5, 0.3f)), ElementsAre(0, 0, 1));
        EXPECT_THAT(passes([&] { stack.filterAtIndex(6)->setValueForKey(0.5f, "inputPower"); }),
            ElementsAre(0, 0, 1));
        EXPECT_THAT(passes([&] { stack.setEnabledAtIndex(false, 6); }), ElementsAre(0, 0, 0));
        EXPECT_THAT(passes(set(3, 0.4f)), ElementsAre(1, 1, 1));
        EXPECT_THAT(passes(set(3, 0.5f)), ElementsAre(0, 1, 1));
        EXPECT_THAT(passes([&] { image->setClipFraction(0.02f); }), ElementsAre(1, 1, 1));
        // With nothing left above what is kept.
        passes(set(5, 0.55f));
        passes(set(5, 0.5f));
        for (const std::size_t layer : { 5, 6 })
            stack.setEnabledAtIndex(false, layer);
        EXPECT_EQ(pixelsOf(image->filteredImage()), pixelsOf(image->copyWithZone()->filteredImage()));
        for (const std::size_t layer : { 5, 6 })
            stack.setEnabledAtIndex(true, layer);
        // Whatever has been kept.
        passes(set(5, 0.6f));
        passes(set(5, 0.7f));
        passes([&] { stack.setEnabledAtIndex(true, 6); });
        const auto fresh = image->copyWithZone();
        EXPECT_TRUE(fresh->isEqual(*image));
        EXPECT_EQ(pixelsOf(image->filteredImage()), pixelsOf(fresh->filteredImage()));
        // Nor does the flusher change what is drawn.
        auto& flusher = VXUObjectFlusher::instance();
        const std::size_t budget = flusher.budget();
        const Pixels before = pixelsOf(image->filteredImage());
        flusher.setBudget(0);
        fresh->filteredImage();
        EXPECT_EQ(image->bytesUsed(), 0u);
        EXPECT_EQ(pixelsOf(image->filteredImage()), before);
        flusher.setBudget(budget);
    }
}

TEST(FilteredImage, ShowsAnEighthWhileDraggingAndTheExactResultThen)
{
    const auto image = VXRFilteredImage::filteredImageWithImageRef(randomImage(400, 200, true));
    image->effectStack()->appendFilter(filterNamed("TesselLighting", "inputPower", 0.5f));
    const auto fresh = image->copyWithZone();
    int changes = 0;
    NotificationCenter::defaultCenter().addObserver(&changes, VXRFilteredImageDidChangeNotification,
        image.get(), [&](const Notification&) { ++changes; });
    image->setPreviewing(true);
    for (const float power : { 0.6f, 0.7f }) {
        image->effectStack()->filterAtIndex(1)->setValueForKey(power, "inputPower");
        const auto shown = image->drawingImage();
        EXPECT_NEAR(shown->width() * shown->height() * 8.0, 400 * 200, 4000);
    }
    image->setPreviewing(false);
    EXPECT_EQ(changes, 3);
    NotificationCenter::defaultCenter().removeObserver(&changes);
    fresh->effectStack()->filterAtIndex(1)->setValueForKey(0.7f, "inputPower");
    EXPECT_EQ(pixelsOf(image->drawingImage()), pixelsOf(fresh->filteredImage()));
    EXPECT_EQ(image->naturalSize(), (Size { 400, 200 }));
}

TEST(FilteredImage, StaysUnfilteredWhenAFilterThrowsAndWarnsOnce)
{
    for (const bool within : { false, true }) {
        testing::LogCapture log;
        const auto source = randomImage(30, 20, true);
        const auto image = VXRFilteredImage::filteredImageWithImageRef(source);
        VXREffectStack& stack = *image->effectStack();
        long count = 0;
        const auto filter = std::make_shared<CountingFilter>(count);
        stack.appendFilter(filterNamed("TesselLighting", "inputPower", 0.5f));
        stack.appendFilter(filter);
        (within ? filter->throwsWithin : filter->throws) = true;
        EXPECT_EQ(image->filteredImage(), source);
        stack.filterAtIndex(1)->setValueForKey(1, "inputPower");
        EXPECT_EQ(image->drawingImage(), source);
        EXPECT_EQ(stack.layerCount(), 3u);
        EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("10 Warning: a picture is drawn unfiltered")));
        filter->throws = filter->throwsWithin = false;
        filter->setValueForKey(0.3f, "shift");
        EXPECT_NE(image->filteredImage(), source) << "until the next change";
    }
}

/// A filter of the host's may do anything while it runs.
TEST(FilteredImage, TakesWhatAFilterChangesWhileItRunsAfterwards)
{
    const auto image = VXRFilteredImage::filteredImageWithImageRef(randomImage(30, 20, true));
    struct Meddler : VXRFilter {
        explicit Meddler(VXRFilteredImage& changed)
            : VXRFilter("Meddler", {})
            , image(&changed)
        {
        }
        std::vector<FilterOperation> operations() const override
        {
            return { FilterOperation::pixelLoop([this](float*, float*, float*, int) {
                image->filteredImage();
                image->setPreviewing(false);
                image->setAutomaticLevels(VXRAutomaticLevels::Luminance);
                if (image->effectStack()->layerCount() > 2)
                    image->effectStack()->removeLayerAtIndex(1);
                VXUObjectFlusher::instance().setBudget(0);
                VXUObjectFlusher::instance().setBudget(VXUObjectFlusher::defaultBudget);
            }) };
        }
        std::shared_ptr<VXRFilter> copyWithZone() const override { return std::make_shared<Meddler>(*image); }
        VXRFilteredImage* image;
    };
    image->effectStack()->appendFilter(filterNamed("TesselLighting", "inputPower", 0.5f));
    image->effectStack()->appendFilter(std::make_shared<Meddler>(*image));
    image->setPreviewing(true);
    image->drawingImage();
    image->filteredImage();
    const auto fresh = VXRFilteredImage::filteredImageWithImageRef(image->unfilteredImage());
    fresh->setAutomaticLevels(VXRAutomaticLevels::Luminance);
    EXPECT_EQ(pixelsOf(image->filteredImage()), pixelsOf(fresh->filteredImage()));
}

TEST(FilteredImage, SpreadsLevelsFromItsHistogram)
{
    // Red from 50 to 149, green half of that, blue of one level; a transparent pixel counts for nothing.
    Pixels pixels { 0 };
    for (unsigned i = 0; i < 99; ++i)
        pixels.push_back(0xff000028 | (50 + i) << 16 | (25 + i / 2) << 8);
    const auto image = VXRFilteredImage::filteredImageWithImageRef(imageOf(100, 1, pixels));
    EXPECT_EQ(image->leveledImage(), image->unfilteredImage());
    image->setAutomaticLevels(VXRAutomaticLevels::PerChannel);
    image->setClipFraction(0);
    const auto inLevels = [](float v) { return int(std::lround(v * 255)); };
    LevelPoints points = image->levelPoints();
    EXPECT_EQ(inLevels(points.black[0]), 50);
    EXPECT_EQ(inLevels(points.white[0]), 148);
    EXPECT_EQ(inLevels(points.white[1]), 74);
    EXPECT_EQ(points.black[2], 0) << "one level stays";
    const Pixels spread = pixelsOf(image->leveledImage());
    EXPECT_EQ(spread[0], 0u);
    EXPECT_EQ(spread[1], 0xff000028u);
    EXPECT_EQ(spread[99], 0xffffff28u);
    image->setClipFraction(0.1f); // of 99 pixels
    points = image->levelPoints();
    EXPECT_EQ(inLevels(points.black[0]), 59);
    EXPECT_EQ(inLevels(points.white[0]), 139);
    image->setAutomaticLevels(VXRAutomaticLevels::Luminance);
    points = image->levelPoints();
    EXPECT_TRUE(points.black[0] == points.black[2] && points.white[0] == points.white[1]);
    for (const float bad : { -0.1f, 0.3f, NAN })
        EXPECT_THROW(image->setClipFraction(bad), InvalidArgumentException);
    EXPECT_EQ(VXRFilteredImage::filteredImageWithImageRef(nullptr), nullptr);
}

/// Inks are converted first, and 16-bit samples keep their bits.
TEST(FilteredImage, TakesPicturesOfOtherColorsAndDepths)
{
    std::vector<std::uint8_t> inks { 0, 0, 0, 0, 255, 0, 0, 0, 0, 0, 0, 128 };
    const ImageLayout layout {
        .width = 3, .height = 1, .bytesPerRow = 12, .space = ColorSpace::deviceCMYK()
    };
    const auto image = VXRFilteredImage::filteredImageWithImageRef(
        Image::createWithCopy(layout, inks.data(), inks.size()));
    image->effectStack()->appendFilter(filterNamed("TesselSaturation", "inputSaturation", -1));
    const Pixels gray = pixelsOf(image->filteredImage());
    EXPECT_EQ(gray[0], 0xffffffffu);
    EXPECT_EQ(gray[2], 0xff7f7f7fu);
    EXPECT_EQ(gray[1] & 255, gray[1] >> 16 & 255) << "cyan becomes grey";

    // A dark ramp within two 8-bit levels, spread by 64.
    auto ramp = std::make_shared<std::vector<std::uint16_t>>();
    for (int i = 0; i < 512; ++i)
        ramp->push_back(static_cast<std::uint16_t>(i));
    BitmapPlanes planes;
    planes.planes[0] = reinterpret_cast<const std::uint8_t*>(ramp->data());
    planes.pixelsWide = 512;
    planes.pixelsHigh = 1;
    planes.bitsPerSample = planes.bitsPerPixel = 16;
    planes.samplesPerPixel = 1;
    planes.bytesPerRow = 1024;
    planes.colorSpaceName = kDeviceWhiteColorSpace;
    const auto wide
        = VXRFilteredImage::filteredImageWithImageRep(BitmapImageRep::imageRepWithPlanes(planes, ramp));
    for (int i = 0; i < 2; ++i) // three stops each
        wide->effectStack()->appendFilter(filterNamed("TesselLighting", "inputPower", 3));
    const Pixels spread = pixelsOf(wide->filteredImage());
    for (std::size_t i = 1; i < spread.size(); ++i)
        EXPECT_LE((spread[i] & 255) - (spread[i - 1] & 255), 1u) << "a band at " << i;
    EXPECT_GT(spread[511] & 255, 50u);
}

TEST(FilteredImage, IsDrawnByItsRenderer)
{
    const auto image = VXRFilteredImage::filteredImageWithImageRef(imageOf(2, 1, { 0xff400000, 0xff004000 }));
    image->effectStack()->appendFilter(filterNamed("TesselSaturation", "inputSaturation", -1));
    const auto bitmap = BitmapContext::createBitmap(4, 2);
    const CurrentContextScope current(*bitmap, true, false);
    image->imageRenderer()->drawInRect({ 0, 0, 2, 1 });
    const Pixels filtered = pixelsOf(image->filteredImage());
    EXPECT_EQ(bitmap->pixels()[4], filtered[0]);
    EXPECT_EQ(bitmap->pixels()[5], filtered[1]);
    image->imageRenderer(Rect { 1, 0, 1, 1 })->drawInRect({ 3, 1, 1, 1 });
    EXPECT_EQ(bitmap->pixels()[3], filtered[1]);
    EXPECT_EQ(bitmap->pixels()[2], 0u);
}

TEST(FilterPipeline, NeedsMemoryForItsRowsAlone)
{
    constexpr int width = 20000, height = 5000; // 100 million pixels
    const FilterOperation chain[]
        = { FilterOperation::gain(1.5f), FilterOperation::sharpen(0.5f, 20), FilterOperation::line(1.1f, 0) };
    std::vector<std::uint32_t> row(width, 0xff808080), out(width);
    const auto before = mallinfo2();
    FilterPipeline pipeline(chain, width, height, FilterFormat::nativeARGB(), FilterFormat::nativeARGB(),
        [&](int) { return out.data(); });
    for (int y = 0; y < 200; ++y)
        pipeline.push(row.data());
    const auto after = mallinfo2();
    EXPECT_LT(double(after.uordblks + after.hblkhd) - double(before.uordblks + before.hblkhd), 4e7);
    for (std::uint32_t pixel : out)
        ASSERT_EQ(pixel, out[0]);
}

} // namespace
} // namespace vxr
