#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {

/// Zeroed pixel memory for transparency layers, kept for reuse.
///
/// A layer is as large as the clip, but most drawing in it is not. Fresh memory comes from the system as
/// pages that cost nothing until touched, and a block is returned with the drawn area cleared again. So a
/// layer pays for neither the pages nor the pixels that it never uses.
class LayerMemory {
public:
    struct Block {
        std::uint8_t* bytes = nullptr;
        std::size_t size = 0;
    };

    LayerMemory() { mKept.reserve(maxKept + 1); }
    ~LayerMemory();
    LayerMemory(const LayerMemory&) = delete;
    LayerMemory& operator=(const LayerMemory&) = delete;

    Block take(std::size_t size); ///< all zero; throws `std::bad_alloc`
    void giveBack(Block zeroed); ///< allocates nothing

private:
    static constexpr std::size_t maxKept = 3;

    std::vector<Block> mKept;
};

} // namespace vxr
