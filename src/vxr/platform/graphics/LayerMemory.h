#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vxr {

/// Zeroed pixel memory for transparency layers, kept for the next one.
///
/// A layer is as large as the clip, what is drawn into it mostly is not: fresh memory comes from the
/// system as pages that cost nothing until they are touched, and whoever gives a block back has cleared
/// what was drawn. So neither the page nor the pixels are paid for that a layer never uses.
class LayerMemory {
public:
    struct Block {
        std::uint8_t* bytes = nullptr;
        std::size_t size = 0;
    };

    LayerMemory() = default;
    ~LayerMemory();
    LayerMemory(const LayerMemory&) = delete;
    LayerMemory& operator=(const LayerMemory&) = delete;

    Block take(std::size_t size); ///< all zero; throws `std::bad_alloc`
    void giveBack(Block zeroed);

private:
    static constexpr std::size_t maxKept = 3;

    std::vector<Block> mKept;
};

} // namespace vxr
