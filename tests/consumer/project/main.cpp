#include <vxr/fills/VXRShadow.h>
#include <vxr/geometry/Color.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>

using namespace vxr;

int main(int, char** argv)
{
    auto badge = VXRShape::shapeWithOvalInRect({ 20, 20, 120, 120 });
    badge->setFill(Color::colorWithCalibratedRGB(0.16f, 0.36f, 0.62f));
    badge->setStroke(VXRStroke::strokeWithColorWidth(Color::whiteColor(), 6));
    badge->setShadow(VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(60, 5, 9, 0.5f, Color::blackColor()));

    auto bitmap = BitmapContext::createBitmap(160, 160);
    CurrentContextScope current(*bitmap, /* drawsToScreen */ true, /* isFlipped */ false);
    badge->renderLayeredIntoContext(*bitmap);
    return bitmap->makeImage()->writePNG(argv[1]) ? 0 : 1;
}
