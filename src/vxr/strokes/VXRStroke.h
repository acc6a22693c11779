#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/path/Path.h>

#include <cstdint>
#include <memory>

namespace vxr {

class Color;
class VXRCanvasRole;
class VXRPaintedShape;
class VXRStrokePattern;

/// Outline style of a shape. A value: copied, compared, shared between shapes, and not changed once a
/// shape has it. Lengths are in canvas units.
class VXR_EXPORT VXRStroke : public Object {
public:
    static std::shared_ptr<VXRStroke> stroke(); ///< black, 1 wide, butt, miter, solid
    static std::shared_ptr<VXRStroke> emptyStroke(); ///< like `stroke` with the empty pattern
    static std::shared_ptr<VXRStroke> strokeWithColorWidth(std::shared_ptr<Color>, float width);
    static std::shared_ptr<VXRStroke> strokeWithColorWidthCapJoinPattern(
        std::shared_ptr<Color>, float width, int cap, int join, std::shared_ptr<VXRStrokePattern>);

    /// The miter limit is 4 whatever comes; another one is set afterwards.
    VXRStroke(std::shared_ptr<Color>, float width, int cap, int join, std::shared_ptr<VXRStrokePattern>);
    ~VXRStroke() override;

    const std::shared_ptr<Color>& color() const { return mColor; } ///< may be none
    void setColor(std::shared_ptr<Color>);
    float width() const { return mWidth; }
    void setWidth(float width) { mWidth = width; }
    int cap() const { return mCap; } ///< 0 butt, 1 round, 2 square
    void setCap(int cap) { mCap = cap; }
    int join() const { return mJoin; } ///< 0 miter, 1 round, 2 bevel
    void setJoin(int join) { mJoin = join; }
    const std::shared_ptr<VXRStrokePattern>& pattern() const { return mPattern; }
    void setPattern(std::shared_ptr<VXRStrokePattern>);
    float miterLimit() const { return mMiterLimit; }
    void setMiterLimit(float limit) { mMiterLimit = limit; }
    /// A word kept for the stroke's owner. It takes no part in equality and is not copied.
    std::uint32_t strokeMask() const { return mMask; }
    void setStrokeMask(std::uint32_t mask) { mMask = mask; }

    /// Whether anything is painted: a positive width (NaN is not) and a pattern that is not empty.
    bool shouldRender() const;

    /// Transfers width, cap, join, miter limit and dash to `path`. An inside stroke is drawn twice as wide
    /// and loses its outer half; its dashes are those of the visible width.
    virtual void applyToBezierPathInsideStroke(Path& path, bool insideStroke) const;
    /// The same for text wrap, which has to see the geometry that a subclass draws.
    virtual void applyInteriorWrapPropertiesToBezierPathInsideStroke(Path& path, bool insideStroke) const;

    /// Applies the stroke to `path` and answers the bounds of what it paints along it: exact but for square
    /// caps, whose corners reach a little further.
    virtual Rect boundsOfStrokedPath(Path& path) const;

    /// Paints the outline of `shape` into the current context. Leaves its clip changed: the caller
    /// brackets the call with a save and a restore.
    virtual void paintShape(VXRPaintedShape& shape);
    /// A simpler variant that clips with the shape's own operation, even where nothing is painted
    /// afterwards, and never paints a transparent colour. Leaves the clip changed.
    virtual void paintShapeWithNormalClip(VXRPaintedShape& shape);
    virtual void drawSwatchInRect(const Rect&); ///< a swatch of the colour alone

    bool isEqual(const Object& other) const override; ///< colours equivalent, everything else equal
    /// Shares the colour and copies the pattern.
    virtual std::shared_ptr<VXRStroke> copyWithZone() const;

protected:
    /// How an outline is to be painted.
    struct Drawing {
        bool insideStroke = false;
        float scale = 1; ///< of the canvas: device pixels per unit
        bool blackAndWhite = false;
    };
    /// Paints along `path`, which it may change. The current colour is the stroke's, or black.
    virtual void drawOutline(Path& path, const Drawing&) const;
    /// How far what is painted may lie beyond half the width.
    virtual float reachBeyondLine() const { return 0; }

    // A subclass answers for its own class in both, so that copies and equality keep to it.
    virtual std::shared_ptr<VXRStroke> makeOfSameClass(
        std::shared_ptr<Color>, float width, int cap, int join, std::shared_ptr<VXRStrokePattern>) const;
    virtual bool isOfReceiversClass(const Object& other) const;

private:
    bool hasTransparentColor() const; ///< no colour is as transparent as can be
    void setCurrentColor(const VXRCanvasRole* canvas) const;
    static Drawing drawingOn(const VXRCanvasRole* canvas, bool insideStroke);
    void eraseOutside(VXRPaintedShape& shape) const;

    std::shared_ptr<Color> mColor;
    float mWidth = 0;
    int mCap = 0;
    int mJoin = 0;
    std::shared_ptr<VXRStrokePattern> mPattern;
    float mMiterLimit = 4;
    std::uint32_t mMask = 0;
};

} // namespace vxr
