#pragma once

#include <vxr/platform/base/Export.h>

#include <cstddef>
#include <cstdint>

namespace vxr {

class VXRTile;

/// The memory that the compositor layers of a process may keep together.
///
/// What is over the limit goes at the end of a composite, whole tiles at a time: first those out of sight,
/// least recently composed first, then the last ones drawn. So those that were kept stay, and a page that
/// doesn't fit is drawn anew only in part at each redraw.
class VXR_EXPORT VXRLayerBudget {
public:
    static constexpr std::size_t defaultLimit = std::size_t(256) << 20;

    static void setLimit(
        std::size_t bytes); ///< 0 keeps nothing. Takes effect at once, outside of composites.
    static std::size_t limit();
    static std::size_t bytesUsed();
    /// Whether a composite uses so much more that it has to go on in parts.
    static bool isOverBySlack();

    /// One composite; its tiles are safe until it ends, or asks for a trim when no record of its is in use.
    class Composite {
    public:
        Composite();
        ~Composite();
        Composite(const Composite&) = delete;
        Composite& operator=(const Composite&) = delete;
        void trim();
    };

private:
    friend class VXRTile;

    static void account(VXRTile&); ///< its size has changed
    static void noteDrawn(VXRTile&);
    static void noteComposed(VXRTile&);
    static void trim();
    static void unlink(VXRTile&);
    static void append(VXRTile&);
};

} // namespace vxr
