#pragma once

#include <vxr/platform/views/View.h>

namespace vxr {

/// A flipped view that is focused while a renderable draws into a tile, for platform drawing code that
/// needs a focused flipped view.
class VXR_EXPORT VXRHackView final : public View {
public:
    using View::View;
    bool isFlipped() const override { return true; }
};

} // namespace vxr
