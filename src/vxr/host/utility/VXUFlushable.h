#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>

namespace vxr {

/// An object with memory that it can give back and build again. Whoever dies leaves the flusher.
class VXR_EXPORT VXUFlushable {
public:
    virtual bool isFlushable() const = 0;
    virtual std::size_t bytesUsed() const = 0;
    virtual void flushLocalData() = 0; ///< gives back one level of what it holds

protected:
    VXUFlushable() = default;
    VXUFlushable(const VXUFlushable&) { }
    VXUFlushable& operator=(const VXUFlushable&) { return *this; }
    ~VXUFlushable();
};

} // namespace vxr
