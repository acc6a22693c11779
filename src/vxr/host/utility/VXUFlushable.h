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
    /// Objects of a higher rank give back when none of a lower one has anything left: what is small and
    /// costs much to build again.
    virtual int flushRank() const { return 0; }

protected:
    VXUFlushable() = default;
    VXUFlushable(const VXUFlushable&) { }
    VXUFlushable& operator=(const VXUFlushable&) { return *this; }
    ~VXUFlushable();
};

} // namespace vxr
