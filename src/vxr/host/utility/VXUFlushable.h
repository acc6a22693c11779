#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>

namespace vxr {

/// An object with memory that it can release and rebuild. Leaves the flusher when destroyed.
class VXR_EXPORT VXUFlushable {
public:
    virtual bool isFlushable() const = 0;
    virtual std::size_t bytesUsed() const = 0;
    virtual void flushLocalData() = 0; ///< releases one level of its data
    /// Objects of a higher rank are flushed only when those of lower ranks have nothing left. Meant for
    /// data that is small but expensive to rebuild.
    virtual int flushRank() const { return 0; }

protected:
    VXUFlushable() = default;
    VXUFlushable(const VXUFlushable&) { }
    VXUFlushable& operator=(const VXUFlushable&) { return *this; }
    ~VXUFlushable();
};

} // namespace vxr
