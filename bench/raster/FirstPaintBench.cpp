#include <bench/Compare.h>
#include <bench/raster/MixedPage.h>

namespace vxr::bench {

namespace {

/// A window that is opened on a page, on the road whose layers keep pixels and on the one that draws
/// directly. Both make all of it anew, since a layer is filled only once.
[[maybe_unused]] const int firstPaint = compare("RASTER/first-paint-through-layers", atMost(1.2), [] {
    const auto objects = std::make_shared<std::vector<MixedObject>>(mixedObjects(1000));
    const auto opened = [objects](bool usesCompositor) {
        return [objects, usesCompositor] { MixedPage(*objects, usesCompositor).display(); };
    };
    return Pair { opened(true), opened(false) };
});

} // namespace

} // namespace vxr::bench
