#pragma once

#include <vxr/platform/graphics/Context.h>
#include <vxr/platform/views/View.h>

#include <optional>

namespace vxr {

class FirstFailure;
class PixelRegion;
struct IntRect;

/// The pixels of a locked window. A separate alpha plane has one byte per pixel; without one its base is
/// null.
struct WindowBits {
    int depthCode = 4; ///< 4 for 32-bit pixels, anything else for 16-bit ones
    std::uint8_t* colorBase = nullptr;
    std::uint8_t* alphaBase = nullptr;
    int colorBytesPerRow = 0;
    int alphaBytesPerRow = 0;
};

/// A window's pixels in memory and the views in it. Whoever has a screen copies the damaged rectangles
/// there.
///
/// A window that is deferred gets its number, which the lock needs, when it is first ordered front.
class VXR_EXPORT Window : public Object {
public:
    explicit Window(const Rect& frame, bool deferred = false);
    ~Window() override;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    const Rect& frame() const { return mFrame; } ///< on the screen, y up; whole numbers
    void setFrame(const Rect&); ///< a new size needs display
    int windowNumber() const { return mNumber; } ///< positive; 0 before the window has one
    bool isVisible() const { return mVisible && !mMiniaturized; }
    bool isMiniaturized() const { return mMiniaturized; }
    void orderFront();
    void orderOut();

    View* contentView() const { return mContentView.get(); }
    void setContentView(std::shared_ptr<View>); ///< resized to the window; none stands for an empty view

    // The backing store: premultiplied ARGB32, top row first, transparent black at first.
    const std::uint32_t* pixels() const { return mPixels.data(); }
    int width() const { return mWidth; }
    int height() const { return mHeight; }
    std::size_t bytesPerRow() const { return std::size_t(mWidth) * 4; }

    /// Hands out the pixels, of which those of an area in window coordinates will change; nothing when the
    /// window has no number.
    virtual std::optional<WindowBits> lockBits(const Rect& area);
    virtual void unlockBits();
    bool isLocked() const { return mLocks > 0; }

    /// Draws all dirty areas of all views, each once and clipped to it. When drawing throws, the rest is
    /// drawn all the same and the first exception is passed on at the end; nothing stays dirty, focused or
    /// locked.
    void displayIfNeeded();
    void display();
    /// Moves the pixels within an area of window coordinates. False, and nothing done, when the distances
    /// or the edges aren't whole pixels.
    bool movePixels(const Rect& area, float dx, float dy);

    /// Rectangles of pixels, from the upper left corner, that have changed since the last call. None
    /// while screen updates are disabled; they are kept for later.
    std::vector<Rect> takeDamage();
    void disableScreenUpdates() { ++mUpdatesDisabled; }
    void enableScreenUpdates();
    bool areScreenUpdatesDisabled() const { return mUpdatesDisabled > 0; }

    // Each posts a notification, the closing and the miniaturizing ones before anything happens.
    void miniaturize();
    void deminiaturize();
    void close();

private:
    friend class View;

    void displayViewIfNeeded(View&);
    void propagate(View&);
    /// Draws what is dirty of the view and of the views in it, and where `beneath` has been drawn anew.
    /// Answers all that was drawn.
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

/// Locks a window's pixels for the length of a scope.
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
