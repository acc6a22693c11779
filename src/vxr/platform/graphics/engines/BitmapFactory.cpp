#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/UserDefaults.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/EngineContext.h>
#include <vxr/platform/graphics/cairo/CairoFactory.h>
#include <vxr/platform/graphics/raster/RasterFactory.h>

#include <cstdlib>
#include <new>

namespace vxr {

namespace {

constexpr int maxSide = 32767;

struct FreeBytes {
    void operator()(void* bytes) const { std::free(bytes); }
};
using OwnedPixels = std::unique_ptr<void, FreeBytes>;

/// A base, so that the memory goes after the engine.
struct PixelOwner {
    OwnedPixels memory; ///< none over the caller's pixels
};

class EngineBitmap final : private PixelOwner, public EngineContext<BitmapContext> {
public:
    EngineBitmap(std::unique_ptr<DrawingEngine> engine, OwnedPixels pixelMemory)
        : PixelOwner { std::move(pixelMemory) }
        , EngineContext(std::move(engine))
    {
    }

    const std::uint32_t* pixels() const override
    {
        return reinterpret_cast<const std::uint32_t*>(access().pixels());
    }
    std::uint32_t* pixels() override
    {
        auto* rows = reinterpret_cast<std::uint32_t*>(access().pixels());
        access().unlock();
        return rows;
    }
    int width() const override { return access().width(); }
    int height() const override { return access().height(); }
    std::size_t bytesPerRow() const override { return access().bytesPerRow(); }

private:
    PixelAccess& access() const { return *engine().pixelAccess(); }
};

void requireSides(int width, int height)
{
    if (width < 1 || height < 1 || width > maxSide || height > maxSide)
        throw InvalidArgumentException("A bitmap's sides lie between 1 and 32767.");
}

BitmapEngine defaultEngine()
{
    const auto chosen = UserDefaults::standardUserDefaults().stringForKey("VXRBitmapEngine");
    return chosen == "cairo" ? BitmapEngine::Cairo : BitmapEngine::Raster;
}

std::unique_ptr<DrawingEngine> makeEngine(
    BitmapEngine choice, void* pixels, int width, int height, std::size_t bytesPerRow)
{
    auto* bytes = static_cast<std::uint8_t*>(pixels);
    if (choice == BitmapEngine::Default)
        choice = defaultEngine();
    return choice == BitmapEngine::Cairo ? makeCairoBitmapEngine(bytes, width, height, bytesPerRow)
                                         : makeRasterEngine(bytes, width, height, bytesPerRow);
}

} // namespace

std::shared_ptr<BitmapContext> BitmapContext::createBitmap(int width, int height, BitmapEngine choice)
{
    requireSides(width, height);
    const std::size_t bytesPerRow = 4 * static_cast<std::size_t>(width);
    OwnedPixels memory(std::calloc(static_cast<std::size_t>(height), bytesPerRow));
    if (!memory)
        throw std::bad_alloc();
    auto engine = makeEngine(choice, memory.get(), width, height, bytesPerRow);
    return std::make_shared<EngineBitmap>(std::move(engine), std::move(memory));
}

std::shared_ptr<BitmapContext> BitmapContext::createWithPixels(
    void* pixels, int width, int height, std::size_t bytesPerRow, BitmapEngine choice)
{
    requireSides(width, height);
    if (!pixels || bytesPerRow % 4 != 0 || bytesPerRow < 4 * static_cast<std::size_t>(width)
        || bytesPerRow > INT32_MAX)
        throw InvalidArgumentException("A bitmap's rows hold its pixels and are a multiple of 4 bytes long.");
    return std::make_shared<EngineBitmap>(makeEngine(choice, pixels, width, height, bytesPerRow), nullptr);
}

} // namespace vxr
