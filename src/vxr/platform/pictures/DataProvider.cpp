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

} // namespace vxr
