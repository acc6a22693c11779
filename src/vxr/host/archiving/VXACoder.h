#pragma once

#include <vxr/host/archiving/VXAClassCoding.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vxr {

/// Writes values one after the other, without keys; a `VXADecoder` reads them in the same order. The
/// stream is independent of the machine: every value is a letter for its kind and then its bytes, lowest
/// first.
class VXR_EXPORT VXACoder {
public:
    void encodeFloat(float value);
    void encodeInt(std::int32_t value);
    void encodeBytes(std::span<const std::byte>); ///< throws `InvalidArgumentException` from 4 GB on
    void encodeString(std::string_view);
    /// An object of a registered class, or none. Throws `InvalidArgumentException` for another class and
    /// then has written nothing.
    void encodeObject(const Object* object);

    std::span<const std::byte> data() const { return mData; }

private:
    void append(char kind, std::uint32_t word);

    std::vector<std::byte> mData;
};

} // namespace vxr
