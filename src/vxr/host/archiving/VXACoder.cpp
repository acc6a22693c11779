#include <vxr/host/archiving/VXACoder.h>

#include <vxr/platform/base/Exceptions.h>

#include <bit>

namespace vxr {

void VXACoder::append(char kind, std::uint32_t word)
{
    mData.push_back(static_cast<std::byte>(kind));
    for (int shift = 0; shift < 32; shift += 8)
        mData.push_back(static_cast<std::byte>(word >> shift));
}

void VXACoder::encodeFloat(float value) { append('f', std::bit_cast<std::uint32_t>(value)); }

void VXACoder::encodeInt(std::int32_t value) { append('i', static_cast<std::uint32_t>(value)); }

void VXACoder::encodeBytes(std::span<const std::byte> bytes)
{
    if (bytes.size() > UINT32_MAX)
        throw InvalidArgumentException("too many bytes for a coded value");
    append('b', static_cast<std::uint32_t>(bytes.size()));
    mData.insert(mData.end(), bytes.begin(), bytes.end());
}

void VXACoder::encodeString(std::string_view string) { encodeBytes(std::as_bytes(std::span(string))); }

void VXACoder::encodeObject(const Object* object)
{
    if (!object) {
        append('@', 0); // an empty name stands for no object
        return;
    }
    const Object& present = *object;
    const VXAClassCoding* coding = VXAClassCodingForType(typeid(present));
    if (!coding)
        throw InvalidArgumentException("no coding is known for " + present.description());
    append('@', static_cast<std::uint32_t>(coding->name.size()));
    for (const char letter : coding->name)
        mData.push_back(static_cast<std::byte>(letter));
    coding->encode(present, *this);
}

} // namespace vxr
