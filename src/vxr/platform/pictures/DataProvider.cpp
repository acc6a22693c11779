#include <vxr/platform/pictures/DataProvider.h>

namespace vxr {

DataProvider::DataProvider(void* info, const void* bytes, std::size_t size, Release release)
    : mInfo(info)
    , mBytes(bytes)
    , mSize(size)
    , mRelease(release)
{
}

DataProvider::~DataProvider()
{
    if (mRelease)
        mRelease(mInfo, mBytes, mSize);
}

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
