#include <vxr/platform/graphics/pixels/GradientTable.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

std::uint32_t premultiplied(float red, float green, float blue, float alpha)
{
    const float scale = alpha * 255;
    const auto level = [](float value) { return std::uint32_t(std::int32_t(value + 0.5f)); };
    return level(scale) << 24 | level(red * scale) << 16 | level(green * scale) << 8 | level(blue * scale);
}

std::uint32_t premultiplied(const std::array<float, 4>& c) { return premultiplied(c[0], c[1], c[2], c[3]); }

/// Steps [first, last) of the piece between two stops.
void fillPiece(
    const GradientStop& from, const GradientStop& to, int steps, int first, int last, std::uint32_t* colors)
{
    const float length = to.position - from.position;
    const float perStep = 1 / (length * float(steps)), offset = from.position / length;
    std::array<float, 4> change;
    for (std::size_t i = 0; i < 4; ++i)
        change[i] = to.rgba[i] - from.rgba[i];
    for (int i = first; i < last; ++i) {
        const float t = float(i) * perStep - offset;
        const float t01 = t > 0 ? (t < 1 ? t : 1) : 0;
        colors[i] = premultiplied(from.rgba[0] + change[0] * t01, from.rgba[1] + change[1] * t01,
            from.rgba[2] + change[2] * t01, from.rgba[3] + change[3] * t01);
    }
}

/// Jumps and crowded stops need finer steps.
int stepsFor(std::span<const GradientStop> stops)
{
    bool fine = stops.size() > 64;
    for (std::size_t i = 1; i < stops.size(); ++i)
        fine |= stops[i].position - stops[i - 1].position < 1.0f / 256;
    return fine ? 4096 : 1024;
}

} // namespace

GradientTable::GradientTable(std::span<const GradientStop> stops, bool extendStart, bool extendEnd)
    : mSteps(stepsFor(stops))
    , mExtendsStart(extendStart)
    , mExtendsEnd(extendEnd)
    , mIsOpaque(!stops.empty())
    , mColors(std::size_t(mSteps) + 4)
{
    if (stops.empty())
        return;
    std::uint32_t* colors = mColors.data() + 1;
    int next = 0;
    for (std::size_t i = 1; i < stops.size(); ++i) {
        // A step where two pieces meet belongs to the latter.
        const int end = std::clamp(int(std::ceil(double(stops[i].position) * mSteps)), next, mSteps);
        fillPiece(stops[i - 1], stops[i], mSteps, next, end, colors);
        next = end;
    }
    std::fill(colors + next, colors + mSteps + 1, premultiplied(stops.back().rgba));
    for (const GradientStop& stop : stops)
        mIsOpaque &= stop.rgba[3] >= 1;
    if (extendStart)
        colors[-1] = premultiplied(stops.front().rgba);
    if (extendEnd)
        colors[mSteps + 1] = premultiplied(stops.back().rgba);
}

} // namespace vxr
