#include <vxr/compositing/layers/ScratchPixels.h>

#include <utility>

namespace vxr {

namespace {

constexpr std::size_t mostKept = std::size_t(2)
    << 20; ///< pixels: a tile of the default size with its margins

} // namespace

struct ScratchPixels::Buffer {
    std::unique_ptr<std::uint32_t[]> pixels;
    std::size_t count = 0;
};

ScratchPixels::Buffer& ScratchPixels::kept()
{
    static Buffer buffer;
    return buffer;
}

ScratchPixels::ScratchPixels(std::size_t count)
    : mPixels(std::move(kept().pixels))
    , mCount(std::exchange(kept().count, 0))
{
    if (mCount >= count)
        return;
    mPixels = nullptr;
    mPixels = std::make_unique_for_overwrite<std::uint32_t[]>(count);
    mCount = count;
}

ScratchPixels::~ScratchPixels()
{
    Buffer& buffer = kept();
    if (mCount <= mostKept && mCount > buffer.count) {
        buffer.pixels = std::move(mPixels);
        buffer.count = mCount;
    }
}

ScratchPixels::ScratchPixels(ScratchPixels&& other) noexcept
    : mPixels(std::move(other.mPixels))
    , mCount(std::exchange(other.mCount, 0))
{
}

ScratchPixels& ScratchPixels::operator=(ScratchPixels&& other) noexcept
{
    ScratchPixels taken(std::move(other));
    std::swap(mPixels, taken.mPixels);
    std::swap(mCount, taken.mCount);
    return *this;
}

} // namespace vxr
