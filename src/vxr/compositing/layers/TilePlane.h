#pragma once

#include <vxr/compositing/layers/ScratchPixels.h>
#include <vxr/platform/graphics/values/IntRect.h>

#include <memory>
#include <vector>

namespace vxr {

class Context;
struct LayerInfo;

/// One bitmap of a tile. Of what was drawn it keeps the smallest box around all that isn't transparent, and
/// of a large box of one opaque colour the colour alone.
class TilePlane {
public:
    const IntRect& ink() const { return mInk; } ///< of the bitmap; encloses all that is not transparent
    std::size_t byteSize() const { return 4 * mPixels.capacity(); }
    /// Whether nothing is drawn in `part` of the bitmap.
    bool isTransparent(const IntRect& part) const;
    /// Writes the alpha of the pixels of `ink`; the first one goes to `to`.
    void copyAlpha(std::uint8_t* to, std::ptrdiff_t bytesPerRow) const;

    // Drawing.
    /// A context of that many pixels, y up, clipped to `part`, or to everything the first time. The part is
    /// transparent at first, or as it was unless `clears`. The same one until `keep`.
    Context& context(int wide, int high, const IntRect& part, bool clears);
    /// Takes what was drawn, as far as it lies within `limit`, over from the context.
    void keep(const IntRect& limit);
    void compress(); ///< to the colour, where it is one
    void expand();

    /// Fills in pixels, frame and opaque box for a bitmap that lies at (x, y), and `shown` as the clip.
    void describe(LayerInfo&, int x, int y, const IntRect& shown);

private:
    std::vector<std::uint32_t> mPixels; ///< those of the ink
    IntRect mInk, mOpaque;
    bool mIsUniform = false;
    std::uint32_t mColor = 0;
    bool mIsDrawn = false;
    // While it is being drawn.
    ScratchPixels mBitmap;
    int mWide = 0, mHigh = 0;
    IntRect mPart; ///< what is drawn anew
    std::shared_ptr<Context> mContext;
};

} // namespace vxr
