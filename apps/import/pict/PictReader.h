#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace vxr::importing {

/// The picture ends where more is needed, or says what can't be.
class PictError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct PictPoint {
    int x = 0, y = 0;
};

/// Left and top are inside, right and bottom outside.
struct PictRect {
    int left = 0, top = 0, right = 0, bottom = 0;

    int width() const { return right - left; }
    int height() const { return bottom - top; }
    bool isEmpty() const { return right <= left || bottom <= top; }
};

struct PictColor {
    double red = 0, green = 0, blue = 0;
};

/// Big-endian values, one after the other. Throws `PictError` at the end.
class PictReader {
public:
    explicit PictReader(std::span<const std::byte> data)
        : mData(data)
    {
    }

    std::size_t position() const { return mPosition; }
    std::size_t left() const { return mData.size() - mPosition; }
    bool isAtEnd() const { return mPosition == mData.size(); }

    std::span<const std::byte> bytes(std::size_t count)
    {
        if (count > left())
            throw PictError("The picture ends too early.");
        const auto result = mData.subspan(mPosition, count);
        mPosition += count;
        return result;
    }
    void skip(std::size_t count) { bytes(count); }
    /// Opcodes of version 2 start at even places.
    void align()
    {
        if (mPosition % 2 && !isAtEnd())
            ++mPosition;
    }

    std::uint8_t u8() { return std::to_integer<std::uint8_t>(bytes(1)[0]); }
    std::int8_t s8() { return static_cast<std::int8_t>(u8()); }
    std::uint16_t u16()
    {
        const auto high = u8();
        return static_cast<std::uint16_t>(high << 8 | u8());
    }
    std::int16_t s16() { return static_cast<std::int16_t>(u16()); }
    std::uint32_t u32()
    {
        const std::uint32_t high = u16();
        return high << 16 | u16();
    }
    double fixed() { return static_cast<std::int32_t>(u32()) / 65536.0; }

    PictPoint point() // vertical first
    {
        const int y = s16();
        return { s16(), y };
    }
    PictRect rect()
    {
        PictRect r;
        r.top = s16();
        r.left = s16();
        r.bottom = s16();
        r.right = s16();
        return r;
    }
    PictColor color()
    {
        PictColor c;
        c.red = u16() / 65535.0;
        c.green = u16() / 65535.0;
        c.blue = u16() / 65535.0;
        return c;
    }

private:
    std::span<const std::byte> mData;
    std::size_t mPosition = 0;
};

} // namespace vxr::importing
