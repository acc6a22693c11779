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

inline float rounded16(float v) { return float(std::int32_t(v * 65535.0f + 0.5f)) * (1 / 65535.0f); }

template <bool Rounds>
void matrixLoop(
    float* __restrict red, float* __restrict green, float* __restrict blue, int count, const float (&m)[9])
{
    const float m0 = m[0], m1 = m[1], m2 = m[2], m3 = m[3], m4 = m[4], m5 = m[5], m6 = m[6], m7 = m[7],
                m8 = m[8];
    const auto put = [](float v) { return Rounds ? rounded16(clamped(v)) : clamped(v); };
    for (int i = 0; i < count; ++i) {
        const float r = red[i], g = green[i], b = blue[i];
        red[i] = put(m0 * r + m1 * g + m2 * b);
        green[i] = put(m3 * r + m4 * g + m5 * b);
        blue[i] = put(m6 * r + m7 * g + m8 * b);
    }
}

void colorMatrixLoop(float* red, float* green, float* blue, int count, const float (&m)[9], bool rounds)
{
    (rounds ? matrixLoop<true> : matrixLoop<false>)(red, green, blue, count, m);
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
        alpha[i] = (a * 257) * (1 / 65535.0f); // as it comes back from 16 bits
    }
}

void loadWideLoop(const std::uint16_t* __restrict pixels, int count, float* __restrict red,
    float* __restrict green, float* __restrict blue, float* __restrict alpha)
{
    for (int i = 0; i < count; ++i) {
        red[i] = float(std::int32_t(pixels[4 * i])) * (1 / 65535.0f);
        green[i] = float(std::int32_t(pixels[4 * i + 1])) * (1 / 65535.0f);
        blue[i] = float(std::int32_t(pixels[4 * i + 2])) * (1 / 65535.0f);
        alpha[i] = float(std::int32_t(pixels[4 * i + 3])) * (1 / 65535.0f);
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

void round16Loop(float* __restrict values, int count)
{
    for (int i = 0; i < count; ++i)
        values[i] = rounded16(values[i]);
}

void to16Loop(const float* __restrict values, int count, std::uint16_t* __restrict out)
{
    for (int i = 0; i < count; ++i)
        out[i] = std::uint16_t(std::int32_t(values[i] * 65535.0f + 0.5f));
}

void from16Loop(const std::uint16_t* __restrict values, int count, float* __restrict out)
{
    for (int i = 0; i < count; ++i)
        out[i] = float(std::int32_t(values[i])) * (1 / 65535.0f);
}

bool isOpaqueLoop(const std::uint32_t* __restrict pixels, int count)
{
    std::uint32_t all = 0xffffffff;
    for (int i = 0; i < count; ++i)
        all &= pixels[i];
    return all >> 24 == 255;
}

inline float lumaOf(float red, float green, float blue)
{
    return 0.2126f * red + 0.7152f * green + 0.0722f * blue;
}

void lumaLoop(const std::uint16_t* __restrict red, const std::uint16_t* __restrict green,
    const std::uint16_t* __restrict blue, int count, std::uint16_t* __restrict out)
{
    for (int i = 0; i < count; ++i) {
        const float y = lumaOf(
            float(std::int32_t(red[i])), float(std::int32_t(green[i])), float(std::int32_t(blue[i])));
        out[i] = std::uint16_t(std::int32_t(y + 0.5f));
    }
}

void multiply16Loop(std::uint16_t* __restrict values, const std::uint16_t* __restrict by, int count)
{
    for (int i = 0; i < count; ++i) {
        const float product = float(std::int32_t(values[i])) * (float(std::int32_t(by[i])) * (1 / 65535.0f));
        values[i] = std::uint16_t(std::int32_t(product + 0.5f));
    }
}

inline float sharpened16(float v, float change)
{
    const float sum = v + change;
    const float above = sum > 0 ? sum : 0;
    const float within = above < 65535 ? above : 65535;
    return float(std::int32_t(within + 0.5f)) * (1 / 65535.0f);
}

void sharpenLoop(const std::uint16_t* const (&colors)[3], const std::uint16_t* __restrict mean,
    const std::uint16_t* __restrict meanAlpha, int count, float amount, float* const (&out)[3])
{
    const std::uint16_t *const red = colors[0], *const green = colors[1], *const blue = colors[2];
    float* const __restrict red2 = out[0], * const __restrict green2 = out[1], * const __restrict blue2 = out[2];
    const auto put = [&](int i, float meanLuma) {
        const float r = float(std::int32_t(red[i])), g = float(std::int32_t(green[i])),
                    b = float(std::int32_t(blue[i]));
        const float change = amount * (float(std::int32_t(lumaOf(r, g, b) + 0.5f)) - meanLuma);
        red2[i] = sharpened16(r, change);
        green2[i] = sharpened16(g, change);
        blue2[i] = sharpened16(b, change);
    };
    if (!meanAlpha) {
        for (int i = 0; i < count; ++i)
            put(i, float(std::int32_t(mean[i])));
        return;
    }
    for (int i = 0; i < count; ++i) {
        const float alpha = float(std::int32_t(meanAlpha[i]));
        put(i, alpha > 0 ? float(std::int32_t(mean[i])) * (65535.0f / alpha) : 0);
    }
}

void softenLoop(const std::uint16_t* __restrict color, const std::uint16_t* __restrict mean,
    const std::uint16_t* __restrict meanAlpha, int count, float amount, float* __restrict out)
{
    for (int i = 0; i < count; ++i) {
        const float v = float(std::int32_t(color[i])), m = float(std::int32_t(mean[i]));
        const float alpha = meanAlpha ? float(std::int32_t(meanAlpha[i])) : 65535.0f;
        const float scale = alpha > 0 ? 65535.0f / alpha : 0;
        out[i] = sharpened16(v, amount * (v - m * scale));
    }
}

inline std::uint16_t boxMean(float sum, float edges, float edge, float scale)
{
    const float mean = (sum + edges * edge) * scale;
    const auto whole = std::int32_t(mean + 0.5f);
    return std::uint16_t(whole < 65535 ? whole : 65535);
}

void boxRowLoop(const std::uint32_t* __restrict from, const std::uint32_t* __restrict to,
    const std::uint16_t* __restrict before, const std::uint16_t* __restrict after, int count, float edge,
    float scale, std::uint16_t* __restrict out)
{
    for (int i = 0; i < count; ++i)
        out[i] = boxMean(
            float(std::int32_t(to[i] - from[i])), float(std::int32_t(before[i] + after[i])), edge, scale);
}

void boxColumnsLoop(std::int32_t* __restrict sums, const std::uint16_t* before, const std::uint16_t* added,
    const std::uint16_t* after, int count, float edge, float scale, std::uint16_t* __restrict out)
{
    for (int i = 0; i < count; ++i) {
        const std::int32_t sum = sums[i] + added[i] - before[i];
        sums[i] = sum;
        out[i] = boxMean(float(sum), float(std::int32_t(before[i] + after[i])), edge, scale);
    }
}

constexpr FilterKernels filterKernelsNamed(const char* name)
{
    return { name, gainLoop, lineLoop, colorMatrixLoop, clampLoop, round16Loop, to16Loop, from16Loop,
        encodeLoop, decodeLoop, loadLoop, loadWideLoop, storeLoop, isOpaqueLoop, lumaLoop, multiply16Loop,
        sharpenLoop, softenLoop, boxRowLoop, boxColumnsLoop };
}

} // namespace
} // namespace vxr
