#include <vxr/fills/PaintBlackAndWhite.h>

#include <vxr/geometry/Color.h>
#include <vxr/geometry/VXRColorUtilities.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRPaintedShape.h>

namespace vxr {

bool paintedBlackAndWhite(VXRPaintedShape& shape)
{
    const VXRCanvasRole* canvas = shape.canvas();
    if (!canvas || !canvas->rendersBlackAndWhite())
        return false;
    VXRSetColor(*Color::whiteColor());
    shape.transformedPath()->fill();
    return true;
}

} // namespace vxr
