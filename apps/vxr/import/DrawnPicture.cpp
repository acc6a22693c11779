#include "DrawnPicture.h"

#include "Convert.h"
#include "DrawnShape.h"
#include "PixelBounds.h"

#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageFill.h>

#include <algorithm>

namespace app {

namespace {

constexpr double sideOfNothing = 100; ///< of a viewport that no picture gives a size

std::shared_ptr<vxr::VXRRenderable> brokenPicture(vxr::Size size, const svg::Matrix& toCanvas)
{
    auto shape = vxr::VXRShape::shapeWithBezierPath<DrawnShape>(
        vxr::Path::pathWithRect({ 0, 0, size.width, size.height }));
    shape->setTransform(transformFrom(toCanvas));
    const auto fill = vxr::VXRImageFill::imageFillWithBrokenImageOfSize(size);
    fill->setTechnique(vxr::VXRImageFillStretch);
    shape->setFill(fill);
    shape->setStroke(nullptr);
    return shape;
}

} // namespace

vxr::Rect DrawnPicture::computeAlignmentBounds() const
{
    return boundsOnPixels(VXRImageRenderable::computeAlignmentBounds(), canvas());
}

std::shared_ptr<vxr::VXRRenderable> drawnPicture(const svg::Picture& picture,
    const std::shared_ptr<vxr::VXRImageBinary>& binary, const svg::Matrix& toCanvas)
{
    const vxr::Size natural = binary ? binary->naturalImageSize() : vxr::Size {};
    const bool isKnown = natural.width > 0 && natural.height > 0;
    const double ratio = isKnown ? double(natural.width) / natural.height : 1;
    double width = picture.width, height = picture.height;
    if (!(width > 0))
        width = height > 0 ? height * ratio : isKnown ? double(natural.width) : sideOfNothing;
    if (!(height > 0))
        height = width / ratio;
    if (!isKnown)
        return brokenPicture({ static_cast<float>(width), static_cast<float>(height) }, toCanvas);

    const svg::Matrix fit
        = svg::viewBoxTransform({ 0, 0, natural.width, natural.height }, width, height, picture.aspect);
    // The part of the picture that lies within the viewport.
    const svg::Box part = svg::Outline::rectangle(0, 0, width, height, 0, 0).bounds(fit.inverse());
    const double left = std::max(part.minX, 0.0), top = std::max(part.minY, 0.0);
    const vxr::Rect crop { static_cast<float>(left), static_cast<float>(top),
        static_cast<float>(std::min(part.maxX, double(natural.width)) - left),
        static_cast<float>(std::min(part.maxY, double(natural.height)) - top) };
    auto result = std::make_shared<DrawnPicture>();
    result->setImageBinary(binary);
    result->setFrame({ { 0, 0 }, crop.size });
    if (crop.size != natural)
        result->setCrop(crop);
    result->setTransform(transformFrom(toCanvas * fit * svg::Matrix::translation(left, top)));
    return result;
}

} // namespace app
