#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vxr {

/// Pixels to draw a tile in, with unspecified content. The memory of the last one is kept for the next,
/// unless it is large.
class ScratchPixels {
public:
    ScratchPixels() = default;
    explicit ScratchPixels(std::size_t count);
    ~ScratchPixels();
    ScratchPixels(ScratchPixels&&) noexcept;
    ScratchPixels& operator=(ScratchPixels&&) noexcept;

    std::uint32_t* data() const { return mPixels.get(); }

private:
    struct Buffer;
    static Buffer& kept();

    std::unique_ptr<std::uint32_t[]> mPixels;
    std::size_t mCount = 0;
};

} // namespace vxr
