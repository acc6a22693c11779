#pragma once

#include <vxr/platform/base/Object.h>

#include <cstdint>
#include <functional>

namespace vxr {

class Data;
class VXACoder;
class VXADecoder;
class VXEDataManager;

/// The bytes of one file of a document, and what is known of them. Bytes that lie in a file are read when
/// they are first needed and may be dropped in between.
class VXR_EXPORT VXEData final : public Object {
public:
    /// initWithPath:displayName:host:resourceType: An empty display name stands for the file's name.
    VXEData(std::string path, std::string displayName, VXEDataManager* host, std::uint32_t resourceType);
    /// initWithData:displayName:saveName:type:host:
    VXEData(std::shared_ptr<const Data> data, std::string displayName, std::string saveName,
        std::uint32_t hfsType, VXEDataManager* host);
    /// Bytes that are read from elsewhere when they are needed, and none where that fails.
    using Reader = std::function<std::shared_ptr<const Data>()>;
    VXEData(Reader reader, std::size_t byteSize, std::string displayName, std::string saveName,
        std::uint32_t hfsType, VXEDataManager* host);
    ~VXEData() override;

    std::shared_ptr<const Data> data() const; ///< none when the file can't be read
    void setData(std::shared_ptr<const Data>); ///< the file no longer stands for it
    const std::string& path() const { return mPath; } ///< empty when the bytes lie in memory only
    const std::string& displayName() const { return mDisplayName; }
    const std::string& saveName() const { return mSaveName; }
    std::string pathExtension() const; ///< of the save name, without the dot
    VXEDataManager* host() const { return mHost; } ///< not owned; or none

    std::uint32_t hfsType() const { return mHFSType; } ///< four characters; 0 for none
    void setHFSType(std::uint32_t type) { mHFSType = type; }
    bool hasGoodData() const; ///< there are bytes, in memory or in the file
    bool fileIsCorrupt() const { return mFileIsCorrupt; }
    void setFileIsCorrupt(bool flag) { mFileIsCorrupt = flag; }
    bool sharable() const { return mSharable; }
    void setSharable(bool flag) { mSharable = flag; }
    bool reportedMissing() const { return mReportedMissing; }
    void setReportedMissing(bool flag) { mReportedMissing = flag; }

    std::size_t byteSize() const; ///< of all bytes, wherever they are
    std::size_t bytesUsed() const; ///< of those in memory
    bool isFlushable() const { return mData && (!mPath.empty() || mReader); }
    void flushLocalData(); ///< does nothing unless flushable

    bool isEquivalent(const VXEData& other) const; ///< same bytes

    /// Lets the sequential coder write and read data objects. Does nothing after the first call.
    static void registerCoding();

private:
    mutable std::shared_ptr<const Data> mData;
    mutable Reader mReader; ///< given up once it has failed
    std::size_t mReaderSize = 0;
    std::string mPath, mDisplayName, mSaveName;
    VXEDataManager* mHost;
    std::uint32_t mHFSType = 0;
    bool mFileIsCorrupt = false;
    bool mSharable = true;
    bool mReportedMissing = false;
};

} // namespace vxr
