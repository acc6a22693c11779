#pragma once

#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/Image.h>

#include <cstdint>
#include <vector>

namespace vxr {

class VXRColorRGB64;

/// A ramp between two colours as an image of 512 x 128 pixels. Computed with 16 bits per channel and
/// reduced to 8 by error diffusion, so that it shows no banding however far it is stretched.
class VXR_EXPORT VXRShadingRep : public Object {
public:
    static constexpr int width = 512;
    static constexpr int height = 128;
    static constexpr std::size_t bytes = std::size_t { width } * height * 4; ///< size of one ramp's pixels

    VXRShadingRep(); ///< white to black, not updated yet
    ~VXRShadingRep() override;
    VXRShadingRep(const VXRShadingRep&) = delete;
    VXRShadingRep& operator=(const VXRShadingRep&) = delete;

    /// The ramp of this pair: from the cache, from the store of finished ramps, or newly built. Becomes the
    /// most recent in the cache. The pixels of its image are computed when they are first used. The cache
    /// owns the ramp: do not keep the pointer.
    static std::shared_ptr<VXRShadingRep> shadingWithStartEnd(
        const std::shared_ptr<Color>& start, const std::shared_ptr<Color>& end);

    const std::shared_ptr<Color>& startColor() const { return _startColor; }
    void setStartColor(std::shared_ptr<Color> color) { _startColor = std::move(color); }
    const std::shared_ptr<Color>& endColor() const { return _endColor; }
    void setEndColor(std::shared_ptr<Color> color) { _endColor = std::move(color); }
    float angle() const { return _angle; } ///< stored with the ramp, which does not depend on it

    void update(); ///< builds the image from the present colours
    /// Straight alpha; no alpha channel if both colours are opaque. Null before the first `update`.
    std::shared_ptr<const Image> imageRef() const { return _imageRef; }
    std::size_t byteSize() const; ///< memory of the ramp and of what is kept for drawing it

protected:
    static constexpr int channels = 4; ///< alpha, red, green, blue
    static constexpr std::size_t valueCount = std::size_t { width } * height * channels;

    void _buildBitmapRepresentation64();
    void _errorDither();
    void _buildBitmapRepresentation32(); ///< builds the same ramp directly in 8 bits, without dithering

private:
    using Data = std::shared_ptr<std::vector<std::uint8_t>>;

    void makeImageForDrawing();
    void renewData();
    ImageLayout layout() const;

    std::shared_ptr<Color> _startColor;
    std::shared_ptr<Color> _endColor;
    float _angle = 0;
    Data _data; ///< shared with the image made over it; null until needed
    std::vector<std::uint16_t> _bigData; ///< used by `update`: the undithered values common to all rows
    std::shared_ptr<const Image> _imageRef;
    std::shared_ptr<std::size_t> mMadeForImage; ///< bytes that the image has had made
};

} // namespace vxr
