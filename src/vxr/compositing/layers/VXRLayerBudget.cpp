#include <vxr/compositing/layers/VXRLayerBudget.h>

#include <vxr/compositing/layers/VXRTile.h>

#include <algorithm>

namespace vxr {

namespace {

struct State {
    std::size_t limit = VXRLayerBudget::defaultLimit;
    std::size_t used = 0;
    VXRTile* oldest = nullptr; ///< of the tiles with pixels, by when they were composed last
    VXRTile* newest = nullptr;
    std::uint32_t composite = 0;
    int depth = 0;
};

State& state()
{
    static State shared;
    return shared;
}

} // namespace

void VXRLayerBudget::setLimit(std::size_t bytes)
{
    state().limit = bytes;
    if (!state().depth)
        trim();
}

std::size_t VXRLayerBudget::limit() { return state().limit; }

std::size_t VXRLayerBudget::bytesUsed() { return state().used; }

bool VXRLayerBudget::isOverBySlack()
{
    constexpr std::size_t megabyte = std::size_t(1) << 20;
    return bytesUsed() > limit() + std::clamp(limit(), megabyte, 16 * megabyte);
}

VXRLayerBudget::Composite::Composite()
{
    if (state().depth++ == 0)
        ++state().composite;
}

VXRLayerBudget::Composite::~Composite()
{
    --state().depth;
    VXRLayerBudget::trim();
}

// Within another composite its tiles may be in use.
void VXRLayerBudget::Composite::trim()
{
    if (state().depth == 1)
        VXRLayerBudget::trim();
}

void VXRLayerBudget::unlink(VXRTile& tile)
{
    State& s = state();
    (tile.mOlder ? tile.mOlder->mNewer : s.oldest) = tile.mNewer;
    (tile.mNewer ? tile.mNewer->mOlder : s.newest) = tile.mOlder;
    tile.mOlder = tile.mNewer = nullptr;
}

void VXRLayerBudget::append(VXRTile& tile)
{
    State& s = state();
    tile.mOlder = s.newest;
    (s.newest ? s.newest->mNewer : s.oldest) = &tile;
    s.newest = &tile;
}

void VXRLayerBudget::account(VXRTile& tile)
{
    State& s = state();
    const std::size_t bytes = tile.byteSize();
    s.used += bytes - tile.mAccounted;
    const bool was = tile.mAccounted != 0;
    tile.mAccounted = bytes;
    if (was == (bytes != 0))
        return;
    if (was)
        unlink(tile);
    else
        append(tile);
}

void VXRLayerBudget::noteDrawn(VXRTile& tile)
{
    tile.mDrawnIn = state().composite;
    account(tile);
}

void VXRLayerBudget::noteComposed(VXRTile& tile)
{
    if (!tile.mAccounted)
        return;
    unlink(tile);
    append(tile);
}

void VXRLayerBudget::trim()
{
    State& s = state();
    if (s.depth > 1 || s.used <= s.limit)
        return;
    for (VXRTile* tile = s.oldest; tile && s.used > s.limit;) {
        VXRTile* const next = tile->mNewer;
        if (!tile->isInSight())
            tile->dropPixels();
        tile = next;
    }
    for (const bool onlyNew : { true, false }) {
        for (VXRTile* tile = s.newest; tile && s.used > s.limit;) {
            VXRTile* const next = tile->mOlder;
            if (!onlyNew || tile->mDrawnIn == s.composite)
                tile->dropPixels();
            tile = next;
        }
    }
}

} // namespace vxr
