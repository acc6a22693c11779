#include <vxr/platform/graphics/LayerMemory.h>

#include <sys/mman.h>

#include <algorithm>
#include <new>

namespace vxr {

LayerMemory::~LayerMemory()
{
    for (const Block& block : mKept)
        munmap(block.bytes, block.size);
}

LayerMemory::Block LayerMemory::take(std::size_t size)
{
    const auto fits = [size](const Block& block) { return block.size >= size; };
    const auto kept = std::find_if(mKept.begin(), mKept.end(), fits);
    if (kept != mKept.end()) {
        const Block block = *kept;
        mKept.erase(kept);
        return block;
    }
    void* bytes = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (bytes == MAP_FAILED)
        throw std::bad_alloc();
    return { static_cast<std::uint8_t*>(bytes), size };
}

// With too many blocks the smallest is freed: a large one can serve any layer.
void LayerMemory::giveBack(Block block)
{
    if (!block.bytes)
        return;
    mKept.push_back(block);
    std::sort(mKept.begin(), mKept.end(), [](const Block& a, const Block& b) { return a.size < b.size; });
    if (mKept.size() > maxKept) {
        munmap(mKept.front().bytes, mKept.front().size);
        mKept.erase(mKept.begin());
    }
}

} // namespace vxr
