#pragma once

#include <vxr/platform/graphics/values/AffineTransform.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace vxr {

class VXRCanvasRole;
class VXRRenderable;

/// Finds the objects of a canvas's drawing list that may meet a rectangle, without asking all of them.
///
/// Objects that tell their canvas of changed bounds stand in a grid with a level for each doubling of size,
/// each in the one cell that holds its centre. All others are found every time: those of classes that do not
/// tell (`VXRRenderable::tellsOfChangedBounds`), those on another canvas, those that the list names again.
class RenderableIndex {
public:
    using List = std::vector<std::shared_ptr<VXRRenderable>>;

    explicit RenderableIndex(const VXRCanvasRole& canvas);
    ~RenderableIndex(); ///< while the canvas's objects are gone from it, or still alive

    /// Brings the index up to date with the list, of which only what changed costs more than a comparison. A
    /// version other than 0 that was seen before spares that too.
    void update(const List&, std::uint64_t version);
    void boundsMayChange(const VXRRenderable&);
    void remove(const VXRRenderable&); ///< it leaves the canvas
    void forget(); ///< everything; the next update starts anew

    /// Places in the list, ascending, of all objects whose hit bounds meet the rectangle, edges included, and
    /// of those that are found every time.
    std::vector<std::uint32_t> find(const Rect&) const;
    /// In any order, those of them whose layer may round to another pixel when the view scrolls by whole
    /// pixels at scale 1, 2 or 4, within the view's reach: near an eighth of a unit but not at it, the
    /// difference of two coordinates can round across half a pixel.
    std::vector<std::uint32_t> findUnsteady(const Rect&) const;
    /// The largest coordinate, and the largest view, for which that holds.
    static constexpr float steadyReach = 1 << 20, steadyView = 4096;

    std::size_t byteSize() const;

private:
    static constexpr std::uint32_t none = UINT32_MAX;
    static constexpr int levels = 24;

    struct Entry {
        Rect bounds; ///< as they were when it was placed
        std::uint32_t rank = 0; ///< place in the list
        std::uint32_t next = none, previous = none; ///< in the cell; `next` also chains free entries
        bool tells = false; ///< not a free one, nor that of an object that left the canvas or must be asked
        bool inGrid = false;
        bool isStale = false;
        bool hasShadow = false;
        bool isUnsteady = true;
    };

    bool isSame(std::size_t rank, const List&) const;
    VXRRenderable* objectOf(const Entry&) const; ///< none unless it tells
    void makeRoom(std::size_t entries);
    void insert(std::uint32_t rank, VXRRenderable*);
    void erase(std::uint32_t entry);
    void place(std::uint32_t entry);
    void unlink(std::uint32_t entry);
    void refresh();
    bool mayLieInGrid(const Entry&) const;
    template <class Accepts> std::vector<std::uint32_t> findInAnyOrder(const Rect&, Accepts accepts) const;
    template <class Take> void visitLevel(int level, const Rect&, Take take) const;

    const VXRCanvasRole& mCanvas;
    // By place in the list.
    std::vector<VXRRenderable*> mObjects;
    std::vector<std::uint32_t> mEntryOfRank;

    std::vector<Entry> mEntries;
    std::uint32_t mFirstFree = none;
    std::unordered_map<std::uint64_t, std::uint32_t> mCells; ///< the first entry of each
    std::array<std::uint32_t, levels> mCountAtLevel {};
    std::vector<std::uint32_t> mAlwaysFound; ///< entries; the place in it is kept as `previous`
    std::vector<std::uint32_t> mStale;
    std::uint64_t mVersion = 0; ///< of the list; 0 has it compared
    std::uint32_t mShadowChanges = 0;
    std::optional<AffineTransform> mShadowTransform;
};

} // namespace vxr
