#pragma once

#include <apps/import/pict/PictRegion.h>
#include <apps/import/pict/PictText.h>

#include <functional>
#include <vector>

namespace vxr::importing {

/// Plays the opcodes of a picture onto a page, y downwards.
class PictPlayer {
public:
    /// `space` is what the picture draws in; `scaleX` and `scaleY` make its units the page's.
    PictPlayer(cairo_t* page, const PictRect& space, double scaleX = 1, double scaleY = 1);

    /// One opcode and its data. False at the picture's end. Throws `PictError` where nothing can follow.
    bool play(unsigned opcode, PictReader& reader);
    void setIsVersion2() { mIsVersion2 = true; }

private:
    // What is done to a shape, in the order of the opcodes of each kind.
    enum class Verb { Frame, Paint, Erase, Invert, Fill };
    /// Appends the shape's area, or that of its frame, to the path.
    using Shape = std::function<void(bool isFrame)>;

    bool playState(unsigned opcode, PictReader& reader);
    bool playColor(unsigned opcode, PictReader& reader);
    bool playLine(unsigned opcode, PictReader& reader);
    bool playText(unsigned opcode, PictReader& reader);
    bool playShape(unsigned opcode, PictReader& reader);
    bool playBitmap(unsigned opcode, PictReader& reader);
    void skipUnknown(unsigned opcode, PictReader& reader);
    void playCompressed(PictReader data);

    void applyClip();
    void draw(Verb, const Shape&);
    void drawLineTo(PictPoint);
    void drawTextAt(PictPoint, PictReader& reader);
    void drawCompressed(
        PictReader& jpeg, std::size_t size, const PictRect& source, const double (&matrix)[9]);
    void spend(std::size_t work);

    cairo_t* mPage;
    PictRect mSpace;
    double mScaleX, mScaleY;
    bool mIsVersion2 = false;
    std::size_t mWork = 0; ///< parts drawn so far, bounded

    PictColors mColors;
    PictPattern mPenPattern, mFillPattern, mBackgroundPattern = PictPattern::blank();
    int mPenMode = 8;
    PictPoint mPenSize { 1, 1 }, mPen, mOvalSize, mOrigin;
    PictRegion mClip;
    PictTextStyle mText;
    PictPoint mTextAt;

    // What "the same shape again" means, per kind.
    PictRect mRect, mRoundRect, mOval, mArc;
    std::vector<PictPoint> mPolygon;
    PictRegion mRegion;

    bool mHasCompressed = false; ///< what follows in its place is for readers that can't decompress it
    PictRect mCompressedTarget;
};

} // namespace vxr::importing
