#include <vxr/images/VXRImageRenderer.h>

#include <vxr/images/VXRBitmapRenderingQualityInfo.h>
#include <vxr/protocols/VXRCanvasRole.h>
#include <vxr/protocols/VXRImageRendererOwner.h>

namespace vxr {

VXRImageRenderer::~VXRImageRenderer() = default;

VXRCanvasRole* VXRImageRenderer::canvas() const { return mOwner ? mOwner->canvas() : nullptr; }

void VXRImageRenderer::cacheState()
{
    mCachedState.reset();
    VXRBitmapRenderingQualityInfo* info = bitmapRenderingQualityInfo();
    mCachedState = { isPrinting(), viewScale(), isStatic(),
        info ? info->weak_from_this() : std::weak_ptr<VXRBitmapRenderingQualityInfo>() };
}

bool VXRImageRenderer::isPrinting() const
{
    if (mCachedState)
        return mCachedState->isPrinting;
    return canvas() && canvas()->renderingDestination() == VXRDestinationNonScreen;
}

float VXRImageRenderer::viewScale() const
{
    if (mCachedState)
        return mCachedState->viewScale;
    return canvas() ? canvas()->viewScale() : 1;
}

bool VXRImageRenderer::isStatic() const
{
    if (mCachedState)
        return mCachedState->isStatic;
    return canvas() && canvas()->isStatic();
}

VXRBitmapRenderingQualityInfo* VXRImageRenderer::bitmapRenderingQualityInfo() const
{
    if (mCachedState)
        return mCachedState->bitmapRenderingQualityInfo.lock().get();
    return canvas() ? canvas()->bitmapRenderingQualityInfo() : nullptr;
}

} // namespace vxr
