#include <vxr/renderables/VXRShadowOnlyShape.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/pixels/LayerInfo.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRRenderableLayer.h>

#include <cmath>

namespace vxr {

std::shared_ptr<VXRShadow> VXRShadowOnlyShape::shadow() const
{
    const float onScreen = 5.0f / layer()->zoomFactor();
    return VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
        45, onScreen, pixelCoordinate(onScreen), 0.5f, Color::blackColor());
}

Rect VXRShadowOnlyShape::erasableBounds() const { return insetRect(VXRShape::erasableBounds(), -20, -20); }

std::vector<LayerInfo*> VXRShadowOnlyShape::clippedShadowInfos()
{
    const Rect bounds = alignmentBounds();
    const float zoom = layer()->zoomFactor();
    const Rect visible = canvas() ? canvas()->superviewVisibleRect() : Rect {};
    int right = pixelCoordinate(std::ceil(zoom * (bounds.maxX() - visible.minX())));
    int bottom = pixelCoordinate(std::ceil(zoom * (bounds.maxY() - visible.minY())));
    if (4 * zoom != std::floor(4 * zoom)) {
        --right;
        --bottom;
    }
    std::vector<LayerInfo*> infos;
    layer()->addShadowInfosToArray(infos);
    for (LayerInfo* info : infos) {
        if (mClip & ClipBelow)
            info->clipMinY = bottom;
        if (mClip & ClipRightOf)
            info->clipMinX = right;
        if (mClip & ClipLeftOfRightEdge)
            info->clipMaxX = right - 1;
    }
    return infos;
}

void VXRShadowOnlyShape::addLayersToArray(std::vector<LayerInfo*>& infos)
{
    const auto clipped = clippedShadowInfos();
    infos.insert(infos.end(), clipped.begin(), clipped.end());
}

void VXRShadowOnlyShape::addTexturesToArray(std::vector<VXRTexture*>& textures)
{
    clippedShadowInfos(); // only for the clip values in the records
    layer()->addShadowTexturesToArray(textures);
}

} // namespace vxr
