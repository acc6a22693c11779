#pragma once

#include <vxr/filters/VXRFilterRegistry.h>

#include <utility>

namespace vxr {

/// The library's own filters, by the names under which adaptors and documents know them. Colours are sRGB;
/// "linear" values are in proportion to light by the transfer function of IEC 61966-2-1. Every filter is the
/// identity at its defaults, clamps its result to [0, 1] and leaves alpha alone.
///
/// TesselLighting: inputPower p in [-3, 3], default 0. Linear: v' = v · 2^p. Exposure in stops.
///
/// TesselBrightnessContrast: inputBrightness b and inputContrast c in [-0.5, 0.5], default 0. Encoded:
/// v' = (v - 1/2) · k + 1/2 + b with k = 4^(2c). Contrast of -c undoes that of c.
///
/// TesselSaturation: inputSaturation s in [-1, 1], default 0. Linear: v' = Y + (v - Y)(1 + s), where
/// Y = 0.2126 r + 0.7152 g + 0.0722 b (ITU-R BT.709) is kept. -1 gives grey.
///
/// TesselUnsharpMask: inputIntensity i in [-1, 1], default 0, and inputRadius in [0.5, 100] pixels, default
/// 2.5. Encoded, with means under a Gaussian whose standard deviation is the radius, weighted by alpha; three
/// box filters stand for the Gaussian. Positive intensities sharpen the luma Y (ITU-R BT.709), so that edges
/// get no coloured fringes: v' = v + i (Y - mean of Y). Negative ones soften each colour, -1 leaves its mean:
/// v' = v + i (v - mean of v). Beyond its edges the image goes on with the pixels of its edge.
///
/// TesselTintCorrection: inputPower h in [-1.05, 1.05] radians, default 0. Linear: the hue rotation of the
/// W3C's Filter Effects (feColorMatrix, hueRotate) by h with the luminances of ITU-R BT.709, which keeps Y.
///
/// TesselColorCorrection: inputPower p in [-1.875, 1.875], default 0. Linear: the adaptation (Bradford) from
/// the white of the Planckian locus at 6,500 K to that 40 p mired farther along (Kang et al. 2002, cubic
/// approximation of the locus). Positive is warmer: red grows and blue falls. Green of white stays.
///
/// TesselBlackAndWhitePoints: inputBlack k and inputWhite w in [0, 1], defaults 0 and 1. Encoded:
/// v' = (v - k) / (w - k), the difference at least 1/255.
std::vector<std::pair<std::string, VXRFilterRegistry::Factory>> standardFilters();

} // namespace vxr
