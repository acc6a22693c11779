#include <vxr/host/archiving/VXADecoder.h>

#include <vxr/platform/base/Exceptions.h>

#include <bit>

namespace vxr {

std::uint32_t VXADecoder::take(char kind)
{
    if (mRest.size() < 5)
        throw InvalidArgumentException("a coded value is cut short");
    if (mRest[0] != static_cast<std::byte>(kind))
        throw InvalidArgumentException("a coded value is of another kind");
    std::uint32_t word = 0;
    for (std::size_t i = 4; i > 0; --i)
        word = word << 8 | static_cast<std::uint32_t>(mRest[i]);
    mRest = mRest.subspan(5);
    return word;
}

float VXADecoder::decodeFloat() { return std::bit_cast<float>(take('f')); }

std::int32_t VXADecoder::decodeInt() { return static_cast<std::int32_t>(take('i')); }

std::span<const std::byte> VXADecoder::decodeBytes()
{
    const std::size_t length = take('b');
    if (mRest.size() < length)
        throw InvalidArgumentException("a coded value is cut short");
    const auto bytes = mRest.first(length);
    mRest = mRest.subspan(length);
    return bytes;
}

std::string VXADecoder::decodeString()
{
    const auto bytes = decodeBytes();
    return { reinterpret_cast<const char*>(bytes.data()), bytes.size() };
}

std::shared_ptr<Object> VXADecoder::decodeObject()
{
    constexpr int mostDepth = 64;
    const std::size_t length = take('@');
    if (length == 0)
        return nullptr;
    if (mRest.size() < length)
        throw InvalidArgumentException("a coded value is cut short");
    const std::string_view name { reinterpret_cast<const char*>(mRest.data()), length };
    const VXAClassCoding* coding = VXAClassCodingNamed(name);
    if (!coding || mDepth == mostDepth)
        throw InvalidArgumentException("a coded object is of an unknown class");
    mRest = mRest.subspan(length);
    ++mDepth;
    auto object = coding->decode(*this);
    --mDepth;
    return object;
}

} // namespace vxr
