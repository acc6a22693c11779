#include <vxr/platform/base/Data.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace vxr {

Data::~Data() = default;

MutableData::~MutableData() = default;

std::shared_ptr<const Data> Data::dataWithBytes(const void* bytes, std::size_t length)
{
    const auto* first = static_cast<const std::byte*>(bytes);
    return std::make_shared<Data>(std::vector<std::byte>(first, first + length));
}

std::shared_ptr<const Data> Data::dataWithContentsOfFile(const std::string& path)
{
    std::error_code error;
    // Reading a device or a pipe might never end.
    if (!std::filesystem::is_regular_file(path, error))
        return nullptr;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || !file)
        return nullptr;
    std::vector<std::byte> bytes(size);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return file.bad() ? nullptr : std::make_shared<Data>(std::move(bytes));
}

bool Data::isEqual(const Object& other) const
{
    const auto* data = dynamic_cast<const Data*>(&other);
    return data && std::ranges::equal(mBytes, data->mBytes);
}

void MutableData::appendBytes(const void* bytes, std::size_t length)
{
    const auto* first = static_cast<const std::byte*>(bytes);
    mBytes.insert(mBytes.end(), first, first + length);
}

} // namespace vxr
