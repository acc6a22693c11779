#include <vxr/platform/polygons/ClipClusters.h>

#include <map>
#include <numeric>

namespace vxr {
namespace {

/// Sets of numbers that are united in pairs.
class DisjointSets {
public:
    explicit DisjointSets(std::size_t count)
        : mParents(count)
    {
        std::iota(mParents.begin(), mParents.end(), std::size_t(0));
    }

    std::size_t find(std::size_t i)
    {
        while (mParents[i] != i)
            i = mParents[i] = mParents[mParents[i]];
        return i;
    }
    void unite(std::size_t i, std::size_t j) { mParents[find(i)] = find(j); }

private:
    std::vector<std::size_t> mParents;
};

/// The boxes that a vertical line meets, as intervals of its height that don't touch. Boxes that touch are
/// united to one interval, which stays until the line has passed all of them.
class SweptIntervals {
public:
    explicit SweptIntervals(DisjointSets& sets)
        : mSets(sets)
    {
    }

    /// Boxes come in the order of their left sides.
    void add(const ClipBox& box, std::size_t index)
    {
        Interval added { box.y1, box.x1, index };
        double low = box.y0;
        auto next = mIntervals.upper_bound(low);
        if (next != mIntervals.begin() && std::prev(next)->second.high >= low)
            --next;
        while (next != mIntervals.end() && next->first <= added.high) {
            const Interval& old = next->second;
            if (old.right >= box.x0) {
                mSets.unite(index, old.index);
                low = std::min(low, next->first);
                added.high = std::max(added.high, old.high);
                added.right = std::max(added.right, old.right);
            }
            next = mIntervals.erase(next);
        }
        mIntervals.emplace(low, added);
    }

private:
    struct Interval {
        double high, right;
        std::size_t index; ///< of one of its boxes
    };

    DisjointSets& mSets;
    std::map<double, Interval> mIntervals; ///< by the lower end
};

} // namespace

std::vector<ClipCluster> clipClusters(const ClipOperand& a, const ClipOperand& b)
{
    const std::size_t count = a.contours.size() + b.contours.size();
    const auto contourAt = [&](std::size_t i) -> const ClipOperand::Contour& {
        return i < a.contours.size() ? a.contours[i] : b.contours[i - a.contours.size()];
    };
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::sort(order.begin(), order.end(),
        [&](std::size_t i, std::size_t j) { return contourAt(i).box.x0 < contourAt(j).box.x0; });
    DisjointSets sets(count);
    SweptIntervals swept(sets);
    for (const std::size_t i : order)
        swept.add(contourAt(i).box, i);

    constexpr std::size_t none = std::size_t(-1);
    std::vector<std::size_t> clusterOf(count, none);
    std::vector<ClipCluster> clusters;
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t& cluster = clusterOf[sets.find(i)];
        if (cluster == none) {
            cluster = clusters.size();
            clusters.emplace_back();
        }
        (i < a.contours.size() ? clusters[cluster].a : clusters[cluster].b).add(contourAt(i));
    }
    return clusters;
}

} // namespace vxr
