// The loops behind FilterKernels, compiled once per instruction set. Included by the sources that define a
// set and by nothing else; everything here is local to the source that includes it. Products and sums are
// never fused, so that every set rounds alike.
#include <vxr/filters/FilterKernels.h>

#include <cmath>

namespace vxr {
namespace {

inline float clamped(float v)
{
    v = v > 0 ? v : 0; // NaN too
    return v < 1 ? v : 1;
}

void gainLoop(float* __restrict values, int count, float scale)
{
    for (int i = 0; i < count; ++i)
        values[i] = clamped(values[i] * scale);
}

void lineLoop(float* __restrict values, int count, float scale, float offset)
{
    for (int i = 0; i < count; ++i)
        values[i] = clamped(values[i] * scale + offset);
}

void clampLoop(float* __restrict values, int count)
{
    for (int i = 0; i < count; ++i)
        values[i] = clamped(values[i]);
}

void matrixLoop(
    float* __restrict red, float* __restrict green, float* __restrict blue, int count, const float (&m)[9])
{
    const float m0 = m[0], m1 = m[1], m2 = m[2], m3 = m[3], m4 = m[4], m5 = m[5], m6 = m[6], m7 = m[7],
                m8 = m[8];
    for (int i = 0; i < count; ++i) {
        const float r = red[i], g = green[i], b = blue[i];
        red[i] = clamped(m0 * r + m1 * g + m2 * b);
        green[i] = clamped(m3 * r + m4 * g + m5 * b);
        blue[i] = clamped(m6 * r + m7 * g + m8 * b);
    }
}

/// 1.055 x^(1/2.4) - 0.055 as a polynomial in the fourth root of x, interpolated at Chebyshev nodes of
/// [0.0031308^(1/4), 1].
void encodeLoop(float* __restrict values, int count)
{
    for (int i = 0; i < count; ++i) {
        const float x = values[i];
        const float s = std::sqrt(std::sqrt(x));
        float p = -0.06799226254224777f;
        p = p * s + 0.35894638299942017f;
        p = p * s - 0.8337865471839905f;
        p = p * s + 1.1465150117874146f;
        p = p * s - 1.1208492517471313f;
        p = p * s + 1.450242042541504f;
        p = p * s + 0.12550608813762665f;
        p = p * s - 0.05858168005943298f;
        const float foot = x * 12.92f;
        values[i] = clamped(x <= 0.0031308f ? foot : p);
    }
}

/// ((v + 0.055) / 1.055)^2.4 as a polynomial in the square root of the base, interpolated likewise.
void decodeLoop(float* __restrict values, int count)
{
    for (int i = 0; i < count; ++i) {
        const float v = values[i];
        const float r = std::sqrt(v * (1 / 1.055f) + 0.055f / 1.055f);
        float p = -0.03509567305445671f;
        p = p * r + 0.8068855404853821f;
        p = p * r + 0.3138716518878937f;
        p = p * r - 0.11261256039142609f;
        p = p * r + 0.03192625194787979f;
        p = p * r - 0.005366699304431677f;
        p = p * r + 0.00039139529690146446f;
        const float foot = v * (1 / 12.92f);
        values[i] = clamped(v <= 0.04045f ? foot : p);
    }
}

void loadLoop(const std::uint32_t* __restrict pixels, int count, float* __restrict red,
    float* __restrict green, float* __restrict blue, float* __restrict alpha)
{
    for (int i = 0; i < count; ++i) {
        const std::uint32_t p = pixels[i];
        const float a = float(std::int32_t(p >> 24));
        const float scale = a > 0 ? 1 / a : 0;
        red[i] = clamped(float(std::int32_t(p >> 16 & 255)) * scale);
        green[i] = clamped(float(std::int32_t(p >> 8 & 255)) * scale);
        blue[i] = clamped(float(std::int32_t(p & 255)) * scale);
        alpha[i] = a * (1 / 255.0f);
    }
}

void storeLoop(const float* __restrict red, const float* __restrict green, const float* __restrict blue,
    const float* __restrict alpha, int count, std::uint32_t* __restrict pixels)
{
    for (int i = 0; i < count; ++i) {
        const float a = alpha[i] * 255;
        const auto byte = [](float v) { return std::uint32_t(std::int32_t(v + 0.5f)); };
        pixels[i] = byte(a) << 24 | byte(red[i] * a) << 16 | byte(green[i] * a) << 8 | byte(blue[i] * a);
    }
}

void addRowLoop(
    std::int32_t* __restrict sums, const std::int32_t* added, const std::int32_t* removed, int count)
{
    for (int i = 0; i < count; ++i)
        sums[i] += added[i] - removed[i];
}

void boxRowLoop(std::int32_t* __restrict out, const std::int32_t* __restrict sums, const std::int32_t* before,
    const std::int32_t* after, int count, float edge, float scale)
{
    for (int i = 0; i < count; ++i) {
        const float total = float(sums[i]) + float(before[i] + after[i]) * edge;
        out[i] = std::int32_t(total * scale + 0.5f);
    }
}

constexpr FilterKernels filterKernelsNamed(const char* name)
{
    return { name, gainLoop, lineLoop, matrixLoop, clampLoop, encodeLoop, decodeLoop, loadLoop, storeLoop,
        addRowLoop, boxRowLoop };
}

} // namespace
} // namespace vxr
