#include <vxr/platform/graphics/Shading.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

float unit(float value)
{
    return value >= 1 ? 1 : value > 0 ? value : 0; // NaN gives 0
}

using RGBA = std::array<float, 4>;

constexpr float level = 1.0f / 255;
/// Together half an 8-bit level: the error allowed to sampling and to dropping redundant stops.
constexpr float sampleTolerance = 0.4f * level;
constexpr float dropTolerance = 0.1f * level;
/// The smallest change treated as a jump; anything less is invisible.
constexpr float jumpStep = 1.5f * level;

float distance(const RGBA& a, const RGBA& b)
{
    float most = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(a[i] - b[i]));
    return most;
}

RGBA mix(const RGBA& a, const RGBA& b, float t)
{
    RGBA mixed;
    for (std::size_t i = 0; i < a.size(); ++i)
        mixed[i] = a[i] + (b[i] - a[i]) * t;
    return mixed;
}

/// Samples a function into linear pieces. Each interval between hints is bisected until its pieces are
/// linear within the tolerance. The number of bisections is bounded, and so is the number of stops.
class Sampler {
public:
    Sampler(const ShadingFunction& function, const ColorSpace* space)
        : mFunction(function)
        , mSpace(space && space->model() == ColorModel::RGB && !space->convertsToOutputUnchanged() ? space
                                                                                                   : nullptr)
    {
    }

    std::vector<ShadingStop> run(std::span<const float> hints)
    {
        constexpr std::size_t pieceLimit = 2048;
        const std::size_t stretches = hints.size() + 1;
        mDepthLimit
            = std::clamp(static_cast<int>(std::log2(pieceLimit / std::min(stretches, pieceLimit))), 3, 10);
        mCoarseDepth = hints.empty() ? 5 : std::min(3, mDepthLimit);

        add(0, sample(0).value);
        float begin = 0;
        for (const float hint : hints) {
            if (hint > begin && hint < 1) {
                sampleStretch(begin, hint);
                begin = hint;
            }
        }
        sampleStretch(begin, 1);
        add(1, sample(1).value);
        return std::move(mStops);
    }

private:
    struct Sample {
        float at;
        RGBA value;
    };

    Sample sample(float at) const
    {
        RGBA value = mFunction(at);
        if (mSpace) {
            const auto rgb = mSpace->toSRGB(value.data());
            for (std::size_t i = 0; i < rgb.size(); ++i)
                value[i] = unit(rgb[i]);
        }
        return { at, value };
    }

    void add(float position, const RGBA& rgba)
    {
        const bool repeats = !mStops.empty() && mStops.back().position == position
            && distance(mStops.back().rgba, rgba) <= dropTolerance;
        if (!repeats)
            mStops.push_back({ position, rgba });
    }

    /// The value at a hint belongs to one side only, so both ends are sampled slightly inside the interval
    /// and placed at the hints.
    void sampleStretch(float begin, float end)
    {
        const Sample first = sample(std::nextafter(begin, end));
        const Sample last = sample(std::nextafter(end, begin));
        add(begin, first.value);
        refine(first, last, 0);
        add(end, last.value);
    }

    /// Adds the stops strictly between two samples.
    void refine(const Sample& a, const Sample& b, int depth)
    {
        const float middle = a.at + (b.at - a.at) * 0.5f;
        if (!(middle > a.at && middle < b.at))
            return;
        const Sample m = sample(middle);
        if (depth >= mCoarseDepth && isLinear(a, m, b))
            return;
        if (depth >= mDepthLimit) {
            if (distance(a.value, b.value) > jumpStep)
                addJump(a, b);
            return;
        }
        refine(a, m, depth + 1);
        add(m.at, m.value);
        refine(m, b, depth + 1);
    }

    bool isLinear(const Sample& a, const Sample& m, const Sample& b) const
    {
        if (distance(m.value, mix(a.value, b.value, 0.5f)) > sampleTolerance)
            return false;
        for (const float t : { 0.25f, 0.75f })
            if (distance(sample(a.at + (b.at - a.at) * t).value, mix(a.value, b.value, t)) > sampleTolerance)
                return false;
        return true;
    }

    /// The function changes within a piece too short to bisect further: narrows the change down and places
    /// two stops there.
    void addJump(Sample a, Sample b)
    {
        for (;;) {
            const float middle = a.at + (b.at - a.at) * 0.5f;
            if (!(middle > a.at && middle < b.at))
                break;
            const Sample m = sample(middle);
            (distance(a.value, m.value) < distance(m.value, b.value) ? a : b) = m;
        }
        add(b.at, a.value);
        add(b.at, b.value);
    }

    const ShadingFunction& mFunction;
    const ColorSpace* mSpace; ///< null if the values are already in the output's space
    int mDepthLimit = 0; ///< maximum number of bisections of an interval
    int mCoarseDepth = 0; ///< minimum number, so that a wave is not mistaken for a line
    std::vector<ShadingStop> mStops;
};

/// Whether all stops strictly between `first` and `last` lie on the line through those two.
bool isLine(const std::vector<ShadingStop>& stops, std::size_t first, std::size_t last)
{
    const float begin = stops[first].position, length = stops[last].position - begin;
    for (std::size_t i = first + 1; i < last; ++i) {
        const float t = length > 0 ? (stops[i].position - begin) / length : 0;
        if (distance(stops[i].rgba, mix(stops[first].rgba, stops[last].rgba, t)) > dropTolerance)
            return false;
    }
    return true;
}

/// Fewer stops draw faster: drops those on a line between their neighbours.
std::vector<ShadingStop> withoutNeedlessStops(const std::vector<ShadingStop>& stops)
{
    std::vector<ShadingStop> kept { stops.front() };
    std::size_t from = 0;
    while (from + 1 < stops.size()) {
        std::size_t to = from + 1;
        // Both stops of a jump are kept.
        while (to + 1 < stops.size() && stops[to].position != stops[to + 1].position
            && stops[to].position != stops[to - 1].position && isLine(stops, from, to + 1))
            ++to;
        kept.push_back(stops[to]);
        from = to;
    }
    return kept;
}

} // namespace

ShadingFunction::ShadingFunction(void* info, Evaluate evaluate, Release release)
    : mInfo(info)
    , mEvaluate(evaluate)
    , mRelease(release)
{
}

ShadingFunction::~ShadingFunction()
{
    if (mRelease)
        mRelease(mInfo);
}

std::array<float, 4> ShadingFunction::operator()(float input) const
{
    const float clamped = unit(input);
    std::array<float, 4> output {};
    mEvaluate(mInfo, &clamped, output.data());
    for (float& value : output)
        value = unit(value);
    return output;
}

struct Shading::Geometry {
    Kind kind;
    Point start, end;
    float startRadius, endRadius;
    bool extendStart, extendEnd;
};

std::shared_ptr<Shading> Shading::createAxial(std::shared_ptr<const ColorSpace> space, Point start, Point end,
    std::shared_ptr<const ShadingFunction> function, bool extendStart, bool extendEnd,
    std::span<const float> hints)
{
    return std::make_shared<Shading>(Geometry { Kind::Axial, start, end, 0, 0, extendStart, extendEnd },
        std::move(space), std::move(function), hints);
}

std::shared_ptr<Shading> Shading::createRadial(std::shared_ptr<const ColorSpace> space, Point start,
    float startRadius, Point end, float endRadius, std::shared_ptr<const ShadingFunction> function,
    bool extendStart, bool extendEnd, std::span<const float> hints)
{
    return std::make_shared<Shading>(
        Geometry { Kind::Radial, start, end, startRadius, endRadius, extendStart, extendEnd },
        std::move(space), std::move(function), hints);
}

Shading::Shading(const Geometry& geometry, std::shared_ptr<const ColorSpace> space,
    std::shared_ptr<const ShadingFunction> function, std::span<const float> hints)
    : mKind(geometry.kind)
    , mStart(geometry.start)
    , mEnd(geometry.end)
    , mStartRadius(geometry.startRadius)
    , mEndRadius(geometry.endRadius)
    , mExtendStart(geometry.extendStart)
    , mExtendEnd(geometry.extendEnd)
    , mSpace(std::move(space))
    , mFunction(std::move(function))
{
    resample(hints);
}

Shading::~Shading() = default;

std::shared_ptr<const Shading> Shading::copy() const
{
    auto copy = std::make_shared<Shading>(*this);
    copy->mEngineCaches.clear(); // each has its own
    return copy;
}

void Shading::resample(std::span<const float> hints)
{
    mStops = withoutNeedlessStops(Sampler(*mFunction, mSpace.get()).run(hints));
    mEngineCaches.clear();
}

} // namespace vxr
