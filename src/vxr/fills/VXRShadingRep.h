#pragma once

#include <vxr/geometry/Color.h>

#include <cstdint>
#include <vector>

namespace vxr {

class Image;

/// A ramp between two colours as an image, 512 pixels along and 128 across. It is computed in 16 bits a
/// channel and reduced to 8 by error diffusion, so that it shows no bands however far it is stretched.
class VXR_EXPORT VXRShadingRep : public Object {
public:
    static constexpr int width = 512;
    static constexpr int height = 128;
    static constexpr std::size_t bytes = std::size_t { width } * height * 4; ///< of one ramp's pixels

    VXRShadingRep(); ///< white to black, not updated yet
    ~VXRShadingRep() override;
    VXRShadingRep(const VXRShadingRep&) = delete;
    VXRShadingRep& operator=(const VXRShadingRep&) = delete;

    /// The ramp of that pair, from the cache, from the finished ramps behind it, or made; put in front of the
    /// cache. Only the cache owns it: use it and let it go.
    static std::shared_ptr<VXRShadingRep> shadingWithStartEnd(
        const std::shared_ptr<Color>& start, const std::shared_ptr<Color>& end);

    const std::shared_ptr<Color>& startColor() const { return _startColor; }
    void setStartColor(std::shared_ptr<Color> color) { _startColor = std::move(color); }
    const std::shared_ptr<Color>& endColor() const { return _endColor; }
    void setEndColor(std::shared_ptr<Color> color) { _endColor = std::move(color); }
    float angle() const { return _angle; } ///< kept with the ramp, which doesn't depend on it

    void update(); ///< makes the image of the present colours
    /// Straight alpha, or none where both colours are opaque. None before the first `update`.
    std::shared_ptr<const Image> imageRef() const { return _imageRef; }

protected:
    static constexpr int channels = 4; ///< alpha, red, green, blue
    static constexpr std::size_t valueCount = std::size_t { width } * height * channels;

    void _buildBitmapRepresentation64();
    void _errorDither();
    void _buildBitmapRepresentation32(); ///< the same ramp made directly in 8 bits, not dithered

private:
    void renewData();
    void makeImage();

    std::shared_ptr<Color> _startColor;
    std::shared_ptr<Color> _endColor;
    float _angle = 0;
    std::shared_ptr<std::vector<std::uint8_t>> _data; ///< shared with the image made over it
    std::vector<std::uint16_t> _bigData; ///< while `update` runs: what every row is before it is dithered
    std::shared_ptr<const Image> _imageRef;
};

} // namespace vxr
