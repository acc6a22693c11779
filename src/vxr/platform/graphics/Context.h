#pragma once

#include <vxr/platform/graphics/color/ColorSpace.h>
#include <vxr/platform/graphics/path/Path.h>

#include <functional>
#include <span>

namespace vxr {

class Data;
class Image;
class Pattern;
class Shading;

/// The numbers are part of the contract.
enum class CompositeOperation : int { Clear = 0, Copy = 1, SourceOver = 2 };
enum class InterpolationQuality : int { Default = 0, None = 1, Low = 2, High = 3 };

/// Direct access to the pixels of a context, between `lock` and `unlock`.
class VXR_EXPORT PixelAccess {
public:
    virtual bool lock() = 0; ///< false if the pixels are not accessible now
    virtual void unlock() = 0;
    /// Maps the context's base space to the space of the surface that holds the pixels, y up.
    virtual AffineTransform transform() const = 0;
    virtual std::uint8_t* pixels() const = 0; ///< top row first; valid while locked
    virtual std::size_t bytesPerRow() const = 0;
    virtual int width() const = 0;
    virtual int height() const = 0;

protected:
    ~PixelAccess() = default;
};

/// The library's interface to a 2D engine.
///
/// Default user space has its origin at the lower left, y up, one unit one pixel (one point on paper).
/// `drawImage` puts an image's first row at the rectangle's largest y. Saved and restored state:
/// transform, clip, fill and stroke colour or pattern, line style, flatness, alpha, compositing
/// operation, antialiasing, interpolation quality range and shadow. The current path is not part of it.
///
/// What cannot be drawn (a singular transform, coordinates that are NaN) draws nothing and leaves the
/// context usable. Coordinates beyond the engine's range are first clipped to the visible area.
class VXR_EXPORT Context {
public:
    using PagePixels = std::function<std::shared_ptr<const Image>()>;

    virtual ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    // State.
    virtual void saveState() = 0;
    virtual void restoreState() = 0; ///< does nothing without a matching save
    /// open saves and transparency layers; 0 if not tracked
    virtual std::size_t stateDepth() const { return 0; }
    /// Restores states and discards unfinished layers until no more than `depth` are open. For recovery
    /// after drawing has thrown.
    virtual void unwindToDepth(std::size_t) { }

    // Transform. The base transform maps default user space to device space and is kept separately; the
    // current one maps user space to device space, base included.
    virtual AffineTransform currentTransform() const = 0;
    virtual AffineTransform baseTransform() const = 0;
    /// Replaces the base and resets the current transform to it. For the code that sets up a context.
    virtual void setBaseTransform(const AffineTransform&) = 0;
    virtual void concatTransform(const AffineTransform&) = 0; ///< applies before the current transform
    void translate(float dx, float dy) { concatTransform(AffineTransform::makeTranslation(dx, dy)); }
    void scale(float sx, float sy) { concatTransform(AffineTransform::makeScale(sx, sy)); }
    void rotate(float radians) { concatTransform(AffineTransform::makeRotation(radians)); }

    // Current path. Points are in the user space in force when they are added.
    void beginPath();
    void moveTo(Point);
    void lineTo(Point);
    void curveTo(Point control1, Point control2, Point end);
    void closePath();
    void addRect(const Rect&);
    void addPath(const Path&); ///< elements only
    /// Replaces the current path by the outline of its stroke in the context's line style.
    void replacePathWithStrokedPath();
    void clip(WindingRule); ///< intersects the clip with the current path and empties it
    void fillPath(WindingRule); ///< fills the current path and empties it
    void strokePath(); ///< strokes the current path with the context's line style and empties it

    // Whole paths. These do not use the current path.
    virtual void clipToPath(const Path&, WindingRule) = 0;
    virtual void clipToRect(const Rect&) = 0;
    virtual Rect clipBounds() const = 0; ///< in user space; the zero rectangle if nothing is visible
    virtual void fillPath(const Path&, WindingRule) = 0;
    virtual void strokePath(const Path&, const LineStyle&) = 0;
    virtual void fillRect(const Rect&) = 0;
    virtual void clearRect(const Rect&) = 0; ///< makes pixels transparent, ignoring the operation

    // Style.
    virtual void setFillColor(const ColorValue&) = 0;
    virtual void setStrokeColor(const ColorValue&) = 0;
    virtual void setFillPattern(std::shared_ptr<const Pattern>, float alpha) = 0;
    virtual void setStrokePattern(std::shared_ptr<const Pattern>, float alpha) = 0;
    virtual const LineStyle& lineStyle() const = 0; ///< used by strokePath() and the stroked outline
    virtual void setLineStyle(const LineStyle&) = 0;
    virtual float flatness() const = 0;
    virtual void setFlatness(float devicePixels) = 0;
    virtual void setAlpha(float alpha) = 0; ///< multiplied with the alpha of every drawing operation
    virtual void setCompositeOperation(CompositeOperation) = 0;
    virtual void setShouldAntialias(bool) = 0;
    virtual void setInterpolationQualityRange(InterpolationQuality least, InterpolationQuality most) = 0;
    void setInterpolationQuality(InterpolationQuality quality)
    {
        setInterpolationQualityRange(quality, quality);
    }

    /// Every following operation, or transparency layer as a whole, casts a shadow. Offset and blur are in
    /// base space: the current transform neither rotates nor scales them. The blur extends `blur` beyond the
    /// casting shape: a Gaussian of standard deviation blur / 3.
    virtual void setShadow(Size offset, float blur, const ColorValue&) = 0;
    virtual void clearShadow() = 0;

    // Transparency layers nest. What is drawn between the two calls is composed as one object, with the
    // alpha, operation and shadow in force at the begin; inside, alpha is 1 and there is no shadow.
    // The begin saves the state and the end restores it.
    virtual void beginTransparencyLayer() = 0;
    virtual void endTransparencyLayer() = 0; ///< does nothing without a matching begin

    // Images and shadings.
    virtual void drawImage(const Rect&, const Image&) = 0;
    virtual void drawShading(const Shading&) = 0; ///< fills the clip

    /// Draws page 1 of a PDF file as vectors, its media box mapped to the rectangle. `pixels` renders the
    /// page as an image where pixels are needed, such as for a shadow. Returns false, and draws nothing, if
    /// the context keeps no vectors.
    virtual bool placePage(const Rect&, const std::shared_ptr<const Data>&, const PagePixels&)
    {
        return false;
    }

    virtual PixelAccess* pixelAccess() { return nullptr; } ///< null if the context has no pixels

protected:
    Context();

    const Path& currentPath() const { return mPath; }

private:
    void alignPathToTransform(); ///< re-expresses the path's points in the current user space
    Point alignedPoint(Point p); ///< maps a point from the current user space to that of the path

    Path mPath;
    AffineTransform mPathTransform; ///< current transform in which mPath's points are given
};

/// Saves a context's state and restores it at the end of the scope. If drawing threw, states and layers
/// left open are closed and the layers' content is discarded.
class StateSaver {
public:
    explicit StateSaver(Context& context)
        : mContext(context)
        , mDepth(context.stateDepth())
    {
        mContext.saveState();
    }
    ~StateSaver()
    {
        mContext.unwindToDepth(mDepth + 1);
        mContext.restoreState();
    }
    StateSaver(const StateSaver&) = delete;
    StateSaver& operator=(const StateSaver&) = delete;

private:
    Context& mContext;
    std::size_t mDepth;
};

} // namespace vxr
