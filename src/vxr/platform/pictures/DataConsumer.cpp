#include <vxr/platform/pictures/DataConsumer.h>

namespace vxr {

DataConsumer::DataConsumer(void* info, Callbacks callbacks)
    : mInfo(info)
    , mCallbacks(callbacks)
{
}

DataConsumer::~DataConsumer()
{
    if (mCallbacks.releaseConsumer)
        mCallbacks.releaseConsumer(mInfo);
}

bool DataConsumer::put(const void* bytes, std::size_t count)
{
    return mCallbacks.putBytes && mCallbacks.putBytes(mInfo, bytes, count) == count;
}

} // namespace vxr
