#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/platform/base/Data.h>

#include <filesystem>

namespace vxr {

namespace {

std::string lastComponent(const std::string& path) { return std::filesystem::path(path).filename().string(); }

void encode(const Object& object, VXACoder& coder)
{
    const auto& value = static_cast<const VXEData&>(object);
    coder.encodeString(value.displayName());
    coder.encodeString(value.saveName());
    coder.encodeInt(static_cast<std::int32_t>(value.hfsType()));
    coder.encodeInt(value.fileIsCorrupt());
    coder.encodeInt(value.sharable());
    coder.encodeInt(value.reportedMissing());
    const auto data = value.data();
    coder.encodeBytes(data ? data->bytes() : std::span<const std::byte>());
}

std::shared_ptr<Object> decode(VXADecoder& decoder)
{
    std::string displayName = decoder.decodeString(), saveName = decoder.decodeString();
    const auto type = static_cast<std::uint32_t>(decoder.decodeInt());
    const bool corrupt = decoder.decodeInt(), sharable = decoder.decodeInt(), missing = decoder.decodeInt();
    auto value = std::make_shared<VXEData>(Data::dataWithBytes(decoder.decodeBytes()), std::move(displayName),
        std::move(saveName), type, nullptr);
    value->setFileIsCorrupt(corrupt);
    value->setSharable(sharable);
    value->setReportedMissing(missing);
    return value;
}

} // namespace

VXEData::VXEData(std::string path, std::string displayName, VXEDataManager* host, std::uint32_t resourceType)
    : mPath(std::move(path))
    , mDisplayName(displayName.empty() ? lastComponent(mPath) : std::move(displayName))
    , mSaveName(lastComponent(mPath))
    , mHost(host)
    , mHFSType(resourceType)
{
}

VXEData::VXEData(std::shared_ptr<const Data> data, std::string displayName, std::string saveName,
    std::uint32_t hfsType, VXEDataManager* host)
    : mData(std::move(data))
    , mDisplayName(std::move(displayName))
    , mSaveName(std::move(saveName))
    , mHost(host)
    , mHFSType(hfsType)
{
}

VXEData::VXEData(Reader reader, std::size_t byteSize, std::string displayName, std::string saveName,
    std::uint32_t hfsType, VXEDataManager* host)
    : mReader(std::move(reader))
    , mReaderSize(byteSize)
    , mDisplayName(std::move(displayName))
    , mSaveName(std::move(saveName))
    , mHost(host)
    , mHFSType(hfsType)
{
}

VXEData::~VXEData() = default;

std::shared_ptr<const Data> VXEData::data() const
{
    if (!mData && !mPath.empty())
        mData = Data::dataWithContentsOfFile(mPath);
    if (!mData && mReader) {
        mData = mReader();
        if (!mData)
            mReader = nullptr;
    }
    return mData;
}

void VXEData::setData(std::shared_ptr<const Data> data)
{
    mData = std::move(data);
    mPath.clear();
    mReader = nullptr;
}

std::string VXEData::pathExtension() const
{
    const std::string extension = std::filesystem::path(mSaveName).extension().string();
    return extension.empty() ? extension : extension.substr(1);
}

bool VXEData::hasGoodData() const { return byteSize() > 0; }

std::size_t VXEData::byteSize() const
{
    if (!mData && mReader)
        return mReaderSize;
    if (mData || mPath.empty())
        return bytesUsed();
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(mPath, error);
    return error ? 0 : static_cast<std::size_t>(size);
}

std::size_t VXEData::bytesUsed() const { return mData ? mData->length() : 0; }

void VXEData::flushLocalData()
{
    if (isFlushable())
        mData.reset();
}

bool VXEData::isEquivalent(const VXEData& other) const
{
    return this == &other || (byteSize() == other.byteSize() && bothAbsentOrEqual(data(), other.data()));
}

void VXEData::registerCoding()
{
    [[maybe_unused]] static const bool once
        = (VXARegisterClass<VXEData>({ "VXEData", encode, decode }), true);
}

} // namespace vxr
