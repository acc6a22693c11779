#pragma once

#include <vxr/platform/base/Object.h>

#include <cstddef>
#include <span>
#include <vector>

namespace vxr {

/// Bytes in memory. Immutable, except for `MutableData`.
class VXR_EXPORT Data : public Object {
public:
    Data() = default;
    explicit Data(std::vector<std::byte> bytes)
        : mBytes(std::move(bytes))
    {
    }
    ~Data() override;

    static std::shared_ptr<const Data> dataWithBytes(const void* bytes, std::size_t length);
    static std::shared_ptr<const Data> dataWithBytes(std::span<const std::byte> bytes)
    {
        return dataWithBytes(bytes.data(), bytes.size());
    }
    static std::shared_ptr<const Data> dataWithContentsOfFile(
        const std::string& path); ///< null if unreadable

    std::span<const std::byte> bytes() const { return mBytes; }
    std::size_t length() const { return mBytes.size(); }
    bool isEmpty() const { return mBytes.empty(); }

    bool isEqual(const Object& other) const override; ///< same bytes

protected:
    std::vector<std::byte> mBytes;
};

class VXR_EXPORT MutableData final : public Data {
public:
    using Data::Data;
    ~MutableData() override;

    void appendBytes(const void* bytes, std::size_t length);
};

} // namespace vxr
