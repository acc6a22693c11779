#pragma once

#include <apps/import/Profiles.h>

namespace vxr::importing {

/// Turns rows of samples into drawable pixels: sRGB, premultiplied, four bytes.
class PixelConversion {
public:
    /// By the profile; without one, or with one of no use, by the model's default: grey and RGB as they are,
    /// CMYK by the system's default profile or plainly.
    PixelConversion(const BitmapFormat& source, std::span<const std::byte> profile);

    /// Whether drawable pixels have the values of opaque grey or RGB samples of 8 bits.
    bool leavesSamples() const
    {
        return !mTransform && !mShared && !mSource.hasAlpha && mSource.bitsPerSample == 8
            && mSource.model != BitmapModel::CMYK;
    }
    void convertRow(const std::byte* samples, std::uint32_t* pixels);

private:
    template <class Sample> void convertPlainly(const Sample* samples, std::uint32_t* pixels) const;
    void premultiply(std::uint32_t* pixels) const;

    BitmapFormat mSource;
    Transform mTransform; ///< none where values are taken as they are
    void* mShared = nullptr; ///< a transform that all jobs share
};

/// Makes what jobs of a kind would each make again.
void loadDefaultConversions();

} // namespace vxr::importing
