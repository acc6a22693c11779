#include <vxr/platform/views/MaskShift.h>

#include <pixman.h>

#include <cstring>
#include <memory>
#include <vector>

namespace vxr {

namespace {

struct ImageRelease {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
};
using PixmanImage = std::unique_ptr<pixman_image_t, ImageRelease>;

PixmanImage maskImage(std::uint8_t* bytes, int width, int height, int stride)
{
    return PixmanImage(pixman_image_create_bits_no_clear(
        PIXMAN_a8, width, height, reinterpret_cast<std::uint32_t*>(bytes), stride));
}

} // namespace

void shiftMask(const std::uint8_t* source, std::ptrdiff_t sourceStride, int width, int height, double right,
    double down, std::uint8_t* target, std::ptrdiff_t targetStride)
{
    // pixman's rows are whole words.
    const int stride = (width + 3) & ~3;
    std::vector<std::uint8_t> aligned(std::size_t(stride) * std::size_t(height));
    for (int y = 0; y < height; ++y)
        std::memcpy(
            aligned.data() + std::ptrdiff_t(y) * stride, source + y * sourceStride, std::size_t(width));

    const PixmanImage from = maskImage(aligned.data(), width, height, stride);
    const PixmanImage to = maskImage(target, width + 1, height + 1, int(targetStride));
    pixman_transform_t transform;
    pixman_transform_init_translate(
        &transform, pixman_double_to_fixed(-right), pixman_double_to_fixed(-down));
    pixman_image_set_transform(from.get(), &transform);
    pixman_image_set_filter(from.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0);
    pixman_image_composite32(
        PIXMAN_OP_SRC, from.get(), nullptr, to.get(), 0, 0, 0, 0, 0, 0, width + 1, height + 1);
}

} // namespace vxr
