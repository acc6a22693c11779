#pragma once

#include <vxr/host/archiving/VXAClassCoding.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace vxr {

/// Reads what a `VXACoder` wrote, in the same order. Every operation throws `InvalidArgumentException`
/// when the next value is of another kind, is cut short or names an unknown class.
class VXR_EXPORT VXADecoder {
public:
    /// The caller's bytes, which outlive the decoder.
    explicit VXADecoder(std::span<const std::byte> data)
        : mRest(data)
    {
    }

    float decodeFloat();
    std::int32_t decodeInt();
    std::span<const std::byte> decodeBytes(); ///< part of the caller's bytes
    std::string decodeString();
    std::shared_ptr<Object> decodeObject(); ///< none where none was encoded

    bool isAtEnd() const { return mRest.empty(); }

private:
    std::uint32_t take(char kind);

    std::span<const std::byte> mRest;
    int mDepth = 0; ///< of objects within objects, bounded so that no stream can exhaust the stack
};

} // namespace vxr
