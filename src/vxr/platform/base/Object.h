#pragma once

#include <vxr/platform/base/Export.h>

#include <memory>
#include <string>
#include <vector>

namespace vxr {

/// Polymorphic root of everything that has identity. Held by `std::shared_ptr`; a plain pointer to an
/// object never owns it.
class VXR_EXPORT Object {
public:
    virtual ~Object();

    /// Equality by value where a class defines one; identity otherwise.
    virtual bool isEqual(const Object& other) const { return this == &other; }

    /// One line for logs. The default names the class and the address.
    virtual std::string description() const;

protected:
    Object() = default;
    Object(const Object&) = default;
    Object& operator=(const Object&) = default;
};

/// `a` and `b` are both null, or both present and equal.
template <class A, class B> bool bothAbsentOrEqual(const std::shared_ptr<A>& a, const std::shared_ptr<B>& b)
{
    return a && b ? a->isEqual(*b) : !a && !b;
}

} // namespace vxr
