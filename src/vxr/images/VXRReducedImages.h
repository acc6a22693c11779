#pragma once

#include <memory>

namespace vxr {

class Image;
class VXRImageBinary;

/// Reduced images of pictures that are drawn small, so that the pictures need not be decoded again. They
/// count against the flusher's budget.
class VXRReducedImages {
public:
    /// One that has been halved at most that often; none when there is none.
    static std::shared_ptr<const Image> imageOfBinary(const VXRImageBinary&, int halvings);
    /// Takes the place of what was kept for the picture.
    static void keep(const std::shared_ptr<VXRImageBinary>&, std::shared_ptr<const Image>);
};

} // namespace vxr
