#pragma once

#include <vxr/platform/pictures/ImageRep.h>

#include <functional>

namespace vxr {

class Context;
class Data;

/// A picture as the application framework knows it: a size and representations of it.
class VXR_EXPORT PlatformImage final : public Object {
public:
    static std::shared_ptr<PlatformImage> imageWithRep(std::shared_ptr<const ImageRep>); ///< none for none
    /// What `draw` draws into an unflipped bitmap of that size at one pixel a point, transparent at first and
    /// current while it draws. None for a size without an area or beyond an image's limit.
    static std::shared_ptr<PlatformImage> imageWithSizeDrawing(
        Size size, const std::function<void(Context&)>& draw);
    ~PlatformImage() override;

    Size size() const { return mSize; }
    const std::shared_ptr<const ImageRep>& representation() const { return mRep; }
    void drawInRect(const Rect& rect) const { mRep->drawInRect(rect); }
    std::shared_ptr<const Data> TIFFRepresentation() const; ///< none when there are no pixels to be had

private:
    PlatformImage(Size size, std::shared_ptr<const ImageRep> rep);

    Size mSize;
    std::shared_ptr<const ImageRep> mRep;
};

} // namespace vxr
