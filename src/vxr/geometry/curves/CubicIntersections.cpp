#include <vxr/geometry/curves/CubicIntersections.h>

#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/curves/PolynomialRoots.h>

namespace vxr {

std::vector<CurveCrossing> crossingsWithLine(const Cubic& curve, Vec2 start, Vec2 end)
{
    std::vector<CurveCrossing> found;
    const Vec2 line = end - start;
    const double squared = dot(line, line);
    if (!isFinite(curve) || !std::isfinite(squared) || !(squared > 0))
        return found;
    const CubicPolynomial q(curve);
    const double side[] = { cross(line, q.a - start), cross(line, q.b), cross(line, q.c), cross(line, q.d) };
    // Rounding alone may separate a curve from the line it lies along.
    double most = 0;
    for (const Vec2& v : { q.a - start, q.b, q.c, q.d })
        most = std::max({ most, std::abs(v.x), std::abs(v.y) });
    const auto negligible = [&](double s) { return std::abs(s) <= 1e-14 * most * std::sqrt(squared); };
    if (std::all_of(std::begin(side), std::end(side), negligible))
        return found;
    for (const double t : PolynomialRoots(side)) {
        const double along = dot(q.at(t) - start, line) / squared;
        if (along >= -1e-12 && along <= 1 + 1e-12)
            found.push_back({ t, std::clamp(along, 0.0, 1.0) });
    }
    return found;
}

namespace {

/// A part of one of the curves.
struct Part {
    Cubic curve;
    double from, to;

    std::pair<Part, Part> halves() const
    {
        const auto [a, b] = curve.halves();
        const double middle = (from + to) * 0.5;
        return { { a, from, middle }, { b, middle, to } };
    }

    Extent hull() const
    {
        Extent e { curve.start, curve.start };
        for (const Vec2& p : { curve.control1, curve.control2, curve.end }) {
            e.least = { std::min(e.least.x, p.x), std::min(e.least.y, p.y) };
            e.most = { std::max(e.most.x, p.x), std::max(e.most.y, p.y) };
        }
        return e;
    }
};

bool mayMeet(const Extent& a, const Extent& b, double slack)
{
    return a.least.x <= b.most.x + slack && b.least.x <= a.most.x + slack && a.least.y <= b.most.y + slack
        && b.least.y <= a.most.y + slack;
}

class CrossingSearch {
public:
    CrossingSearch(const Cubic& first, const Cubic& second)
        : mFirst(first)
        , mSecond(second)
        , mCurve1(first)
        , mCurve2(second)
    {
        const Extent a = Part { first, 0, 1 }.hull(), b = Part { second, 0, 1 }.hull();
        const Vec2 sizeA = a.most - a.least, sizeB = b.most - b.least;
        mSize = std::max({ sizeA.x, sizeA.y, sizeB.x, sizeB.y });
        // Single precision and the coordinates' own magnitude limit what can be told apart.
        const double far = std::max({ std::abs(a.least.x), std::abs(a.most.y), std::abs(a.most.x),
            std::abs(a.least.y), std::abs(b.least.x), std::abs(b.most.x) });
        mSlack = std::max(mSize * 1e-10, far * 1e-14);
    }

    CurveCrossings run()
    {
        std::vector<std::pair<Part, Part>> pending { { { mFirst, 0, 1 }, { mSecond, 0, 1 } } };
        for (int left = mostPairs; !pending.empty(); --left) {
            if (left == 0 || mResult.crossings.size() > mostCrossings) {
                mResult.overlap = true;
                break;
            }
            const auto [a, b] = pending.back();
            pending.pop_back();
            const Extent hullA = a.hull(), hullB = b.hull();
            if (!mayMeet(hullA, hullB, mSlack))
                continue;
            const bool flatA = isLineLike(a), flatB = isLineLike(b);
            if (flatA && flatB) {
                meetChords(a, b);
                continue;
            }
            const double sizeA = (hullA.most - hullA.least).length(),
                         sizeB = (hullB.most - hullB.least).length();
            if (!flatA && (flatB || sizeA >= sizeB)) {
                const auto [low, high] = a.halves();
                pending.emplace_back(high, b);
                pending.emplace_back(low, b);
            } else {
                const auto [low, high] = b.halves();
                pending.emplace_back(a, high);
                pending.emplace_back(a, low);
            }
        }
        auto& all = mResult.crossings;
        std::sort(all.begin(), all.end(), [](auto& a, auto& b) { return a.first < b.first; });
        return std::move(mResult);
    }

private:
    static constexpr int mostPairs = 1 << 13;
    static constexpr std::size_t mostCrossings = 9;

    bool isLineLike(const Part& p) const
    {
        return p.to - p.from < 1e-9 || isStraight(p.curve, std::max(mSlack, mSize * 1e-5));
    }

    /// Newton's steps from where the chords meet or come nearest.
    void meetChords(const Part& a, const Part& b)
    {
        const Vec2 u = a.curve.end - a.curve.start, v = b.curve.end - b.curve.start,
                   w = b.curve.start - a.curve.start;
        const double area = cross(u, v);
        double s = 0.5, r = 0.5;
        if (std::abs(area) > 1e-12 * u.length() * v.length()) {
            s = std::clamp(cross(w, v) / area, 0.0, 1.0);
            r = std::clamp(cross(w, u) / area, 0.0, 1.0);
        }
        double t1 = a.from + (a.to - a.from) * s, t2 = b.from + (b.to - b.from) * r;
        for (int i = 0; i < 40; ++i) {
            const Vec2 gap = mCurve2.at(t2) - mCurve1.at(t1), d1 = mCurve1.derivative(t1),
                       d2 = mCurve2.derivative(t2);
            const double determinant = cross(d1, d2);
            if (!(std::abs(determinant) > 1e-14 * d1.length() * d2.length()))
                break;
            const double step1 = cross(gap, d2) / determinant, step2 = cross(gap, d1) / determinant;
            t1 = std::clamp(t1 + step1, 0.0, 1.0);
            t2 = std::clamp(t2 + step2, 0.0, 1.0);
            if (std::abs(step1) < 1e-15 && std::abs(step2) < 1e-15)
                break;
        }
        // A crossing that lies beyond both parts belongs to their neighbours and is found there.
        const double reach1 = (a.to - a.from) * 2 + 1e-9, reach2 = (b.to - b.from) * 2 + 1e-9;
        if (t1 < a.from - reach1 || t1 > a.to + reach1 || t2 < b.from - reach2 || t2 > b.to + reach2)
            return;
        if ((mCurve2.at(t2) - mCurve1.at(t1)).length() > std::max(mSlack * 10, mSize * 1e-9))
            return;
        for (const CurveCrossing& known : mResult.crossings)
            if (std::abs(known.first - t1) < 1e-6 && std::abs(known.second - t2) < 1e-6)
                return;
        mResult.crossings.push_back({ t1, t2 });
    }

    const Cubic &mFirst, &mSecond;
    CubicPolynomial mCurve1, mCurve2;
    double mSize = 0;
    double mSlack = 0; ///< apart by no more counts as meeting
    CurveCrossings mResult;
};

} // namespace

CurveCrossings crossingsOf(const Cubic& first, const Cubic& second)
{
    if (!isFinite(first) || !isFinite(second))
        return {};
    return CrossingSearch(first, second).run();
}

} // namespace vxr
