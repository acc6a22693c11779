#include <vxr/images/VXRReducedImages.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/host/utility/VXUObjectFlusher.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/graphics/Image.h>

#include <unordered_map>

namespace vxr {

namespace {

class KeptImage final : public VXUFlushable {
public:
    KeptImage(std::weak_ptr<VXRImageBinary> picture, std::shared_ptr<const Image> reduced)
        : binary(std::move(picture))
        , image(std::move(reduced))
    {
    }

    bool isFlushable() const override { return image != nullptr; }
    std::size_t bytesUsed() const override
    {
        return image ? image->layout().bytesPerRow * static_cast<std::size_t>(image->height()) : 0;
    }
    void flushLocalData() override { image.reset(); }
    int flushRank() const override { return 1; }

    std::weak_ptr<VXRImageBinary> binary; ///< to tell another one that has taken its place in memory
    std::shared_ptr<const Image> image;
};

using KeptImages = std::unordered_map<const VXRImageBinary*, KeptImage>;

KeptImages& keptImages()
{
    static auto* all = new KeptImages;
    return *all;
}

} // namespace

std::shared_ptr<const Image> VXRReducedImages::imageOfBinary(const VXRImageBinary& binary, int halvings)
{
    const auto found = keptImages().find(&binary);
    if (found == keptImages().end() || found->second.binary.expired() || !found->second.image
        || found->second.image->halvings() > halvings || binary.isMissing() || binary.isCorrupted())
        return nullptr;
    VXUObjectFlusher::instance().objectTouched(found->second);
    return found->second.image;
}

void VXRReducedImages::keep(const std::shared_ptr<VXRImageBinary>& binary, std::shared_ptr<const Image> image)
{
    KeptImages& kept = keptImages();
    std::erase_if(kept,
        [&](const auto& entry) { return entry.first == binary.get() || entry.second.binary.expired(); });
    VXUObjectFlusher::instance().objectAddedData(
        kept.try_emplace(binary.get(), binary, std::move(image)).first->second);
}

} // namespace vxr
