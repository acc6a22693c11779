#pragma once

#include <vxr/platform/base/Object.h>

namespace vxr {

/// Reflection style of a renderable: how opaque the mirrored copy starts. The opacity takes no part in
/// equality and is not copied.
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
    // A subclass answers for its own class.
    virtual bool isOfReceiversClass(const Object& other) const;

private:
    float mOpacity = 0.5f;
};

} // namespace vxr
