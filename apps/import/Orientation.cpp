#include <apps/import/Orientation.h>

#include <cstring>

namespace vxr::importing {

void placeRow(const std::byte* row, std::uint32_t y, const BitmapInfo& stored, std::size_t pixelBytes,
    std::byte* upright, std::size_t bytesPerRow)
{
    const std::ptrdiff_t right = stored.format.width - 1, bottom = stored.format.height - 1;
    const std::ptrdiff_t across = std::ptrdiff_t(pixelBytes), down = std::ptrdiff_t(bytesPerRow);
    const std::ptrdiff_t line = y;
    // Where the row's first pixel goes, and how far the next one is from it.
    std::ptrdiff_t first = 0, step = 0;
    switch (stored.orientation) {
    case 2: // mirrored
        first = line * down + right * across;
        step = -across;
        break;
    case 3: // upside down
        first = (bottom - line) * down + right * across;
        step = -across;
        break;
    case 4: // upside down, mirrored
        first = (bottom - line) * down;
        step = across;
        break;
    case 5: // rows are columns
        first = line * across;
        step = down;
        break;
    case 6: // lies on its left side
        first = (bottom - line) * across;
        step = down;
        break;
    case 7:
        first = right * down + (bottom - line) * across;
        step = -down;
        break;
    case 8: // lies on its right side
        first = right * down + line * across;
        step = -down;
        break;
    default:
        first = line * down;
        step = across;
    }
    for (std::ptrdiff_t x = 0; x <= right; ++x)
        std::memcpy(upright + first + x * step, row + x * across, pixelBytes);
}

} // namespace vxr::importing
