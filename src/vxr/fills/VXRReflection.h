#pragma once

#include <vxr/platform/base/Object.h>

namespace vxr {

/// Reflection style of a renderable: the initial opacity of the mirrored copy. The opacity is ignored by
/// equality and by copying.
class VXR_EXPORT VXRReflection : public Object {
public:
    static std::shared_ptr<VXRReflection> reflection(); ///< opacity 0.5

    VXRReflection() = default; ///< opacity 0.5
    explicit VXRReflection(float opacity);

    float opacity() const { return mOpacity; }
    void setOpacity(float opacity) { mOpacity = opacity; }

    std::string description() const override;
    bool isEqual(const Object& other) const override; ///< whether `other` is of the receiver's class
    virtual std::shared_ptr<VXRReflection> copyWithZone() const; ///< with opacity 0.5

protected:
    // Subclasses override this to return their own class.
    virtual bool isOfReceiversClass(const Object& other) const;

private:
    float mOpacity = 0.5f;
};

} // namespace vxr
