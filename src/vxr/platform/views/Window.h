#pragma once

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/views/View.h>

#include <optional>

namespace vxr {

class FirstFailure;
class PixelRegion;
class Image;
struct IntRect;

/// The pixels of a locked window. A separate alpha plane has one byte per pixel; its base is null if there
/// is none.
struct WindowBits {
    int depthCode = 4; ///< 4 for 32-bit pixels, anything else for 16-bit ones
    std::uint8_t* colorBase = nullptr;
    std::uint8_t* alphaBase = nullptr;
    int colorBytesPerRow = 0;
    int alphaBytesPerRow = 0;
};

/// A window's pixels in memory, and the views in it. The host copies damaged rectangles to the
/// screen.
///
/// A deferred window gets its number, which locking requires, when it is first ordered front.
class VXR_EXPORT Window : public Object {
public:
    explicit Window(const Rect& frame, bool deferred = false);
    ~Window() override;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    const Rect& frame() const { return mFrame; } ///< on the screen, y up; integers
    void setFrame(const Rect&); ///< a new size marks everything for display
    int windowNumber() const { return mNumber; } ///< positive; 0 before the window has one
    bool isVisible() const { return mVisible && !mMiniaturized; }
    bool isMiniaturized() const { return mMiniaturized; }
    void orderFront();
    void orderOut();

    View* contentView() const { return mContentView.get(); }
    void setContentView(std::shared_ptr<View>); ///< resized to the window; null stands for an empty view

    // The backing store: premultiplied ARGB32, top row first, initially transparent black.
    const std::uint32_t* pixels() const { return mPixels.data(); }
    int width() const { return mWidth; }
    int height() const { return mHeight; }
    std::size_t bytesPerRow() const { return std::size_t(mWidth) * 4; }
    /// An opaque RGBA image, black where the box lies outside the window. Null for an empty box.
    std::shared_ptr<const Image> copyPixels(const IntRect&) const;

    /// Gives access to the pixels, of which those in an area in window coordinates will change; empty if the
    /// window has no number.
    virtual std::optional<WindowBits> lockBits(const Rect& area);
    virtual void unlockBits();
    bool isLocked() const { return mLocks > 0; }

    /// Draws all dirty areas of all views, each once and clipped to it. If drawing throws, the rest is still
    /// drawn and the first exception is rethrown at the end; nothing stays dirty, focused or
    /// locked.
    void displayIfNeeded();
    void display();
    /// Moves the pixels within an area in window coordinates. Returns false, and does nothing, if the
    /// distance or the edges are not whole pixels.
    bool movePixels(const Rect& area, float dx, float dy);

    /// Rectangles of pixels, from the upper left corner, that have changed since the last call. Empty while
    /// screen updates are disabled; the changes are kept for later.
    std::vector<Rect> takeDamage();
    void disableScreenUpdates() { ++mUpdatesDisabled; }
    void enableScreenUpdates();
    bool areScreenUpdatesDisabled() const { return mUpdatesDisabled > 0; }

    // Each posts a notification; closing and miniaturizing post theirs before anything changes.
    void miniaturize();
    void deminiaturize();
    void close();

private:
    friend class View;

    void displayViewIfNeeded(View&);
    void propagate(View&);
    /// Draws the dirty parts of the view and its subviews, and everything where `beneath` has been redrawn.
    /// Returns all that was drawn.
    PixelRegion drawView(View&, const PixelRegion& beneath, FirstFailure&);
    void drawSubviews(View&, PixelRegion& drawn, const View* behind, FirstFailure&);
    void drawBoxOfView(View&, const IntRect&, FirstFailure&);
    void focus(View&);
    static void unfocus(View&);
    static View* focusedView();
    void makeStore();

    Rect mFrame;
    int mNumber = 0;
    bool mVisible = false;
    bool mMiniaturized = false;
    int mLocks = 0;
    int mUpdatesDisabled = 0;
    int mWidth = 0, mHeight = 0;
    std::vector<std::uint32_t> mPixels;
    std::shared_ptr<Context> mContext; ///< draws into the pixels
    std::shared_ptr<View> mContentView;
    struct Damage;
    std::unique_ptr<Damage> mDamage;
};

inline constexpr char NSWindowWillMiniaturizeNotification[] = "NSWindowWillMiniaturizeNotification";
inline constexpr char NSWindowDidMiniaturizeNotification[] = "NSWindowDidMiniaturizeNotification";
inline constexpr char NSWindowDidDeminiaturizeNotification[] = "NSWindowDidDeminiaturizeNotification";
inline constexpr char NSWindowWillCloseNotification[] = "NSWindowWillCloseNotification";

/// Locks a window's pixels for the duration of a scope.
class WindowLock {
public:
    WindowLock(Window& window, const Rect& area)
        : mWindow(window)
        , mBits(window.lockBits(area))
    {
    }
    ~WindowLock()
    {
        if (mBits)
            mWindow.unlockBits();
    }
    WindowLock(const WindowLock&) = delete;
    WindowLock& operator=(const WindowLock&) = delete;

    explicit operator bool() const { return mBits.has_value(); }
    const WindowBits& bits() const { return *mBits; }

private:
    Window& mWindow;
    std::optional<WindowBits> mBits;
};

} // namespace vxr
