#pragma once

#include <vxr/filters/VXRFilter.h>
#include <vxr/protocols/VXREffectStackRole.h>

#include <cstdint>

namespace vxr {

/// The filters of an image, from the image upwards: layer 0 is the image itself, the layers from 1 on are
/// filters, each of which can be switched off. A filter stands on one stack at a time.
class VXR_EXPORT VXREffectStack : public Object, public VXREffectStackRole {
public:
    /// The lowest layer that changed, or that stands where another one stood.
    using ChangeHandler = std::function<void(std::size_t firstChangedLayer)>;

    VXREffectStack();
    ~VXREffectStack() override;
    VXREffectStack(const VXREffectStack&) = delete;
    VXREffectStack& operator=(const VXREffectStack&) = delete;

    std::size_t layerCount() const override { return mLayers.size() + 1; }
    VXRFilter* filterAtIndex(std::size_t index) const override; ///< none for layer 0 and beyond the last
    /// Throws `InvalidArgumentException` for an index outside 1 … `layerCount`, for none, for what is no
    /// `VXRFilter`, and for a filter that stands on a stack already.
    void insertFilterLayerAtIndex(std::shared_ptr<VXRFilterRole> filter, std::size_t index) override;
    void appendFilter(std::shared_ptr<VXRFilter> filter)
    {
        insertFilterLayerAtIndex(std::move(filter), layerCount());
    }
    void removeLayerAtIndex(std::size_t index) override; ///< throws for an index that is no filter's
    void removeAllFilters();

    /// A filter that is switched off stays where it is and does nothing.
    bool isEnabledAtIndex(std::size_t index) const;
    void setEnabledAtIndex(bool enabled, std::size_t index);

    /// What the enabled filters from layer `first` up to and without layer `end` do to pixels, rounded to 16
    /// bits after each layer. Throws what a filter of the host's throws.
    std::vector<FilterOperation> operations(std::size_t first = 1, std::size_t end = SIZE_MAX) const;
    /// Whether no pixel changes.
    bool isIdentity() const { return operations().empty(); }

    void setChangeHandler(ChangeHandler handler) { mChangeHandler = std::move(handler); }

    bool hasChangeHandler() const { return static_cast<bool>(mChangeHandler); }

    bool isEqual(const Object& other) const override; ///< equal filters, switched on and off alike
    std::shared_ptr<VXREffectStack> copyWithZone() const; ///< with copies of the filters

private:
    struct Layer {
        std::shared_ptr<VXRFilter> filter;
        bool isEnabled = true;
    };

    const Layer& layerAt(std::size_t index) const;
    void filterChanged(const VXRFilter* filter);
    void changed(std::size_t index);

    std::vector<Layer> mLayers;
    ChangeHandler mChangeHandler;
};

} // namespace vxr
