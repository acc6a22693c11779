// The loops of SpanKernels.h for one instruction set. Included once by each
// source that makes a set of loops, with VXR_SPAN_BYTES defined as the size of
// its widest vector; everything here has internal linkage, since those sources
// are compiled for processors that others may not have.

#include <vxr/platform/graphics/pixels/BlendLoops.h>
#include <vxr/platform/graphics/pixels/CoverageLoops.h>
#include <vxr/platform/graphics/pixels/ImageLoops.h>
#include <vxr/platform/graphics/pixels/RadialLoops.h>

namespace vxr {

namespace {

constexpr SpanKernels kernelsNamed(const char* name)
{
    return { name,
        { { clearColor, clearColorMask, clearPixels, clearPixelsMask },
            { copyColor, copyColorMask, copyPixels, copyPixelsMask },
            { overColor, overColorMask, overPixels, overPixelsMask } },
        fade, toNative, limitToAlpha, multiplyMask, fadeMask, sumCells<NonZero>, sumCells<EvenOdd>, radial,
        linear, cubic, average };
}

} // namespace

} // namespace vxr
