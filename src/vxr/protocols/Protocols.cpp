// The roles are header-only. Compiling them here once shows that each stands on its own includes.
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRFilterRole.h>
#include <vxr/protocols/VXRLayeredRenderable.h>
#include <vxr/protocols/VXRPaintedShape.h>
#include <vxr/protocols/VXRRenderableLayer.h>
#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/protocols/VXRTexture.h>
