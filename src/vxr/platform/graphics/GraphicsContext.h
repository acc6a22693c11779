#pragma once

#include <vxr/platform/graphics/Context.h>

namespace vxr {

/// The drawing environment of the moment: a context, whether it draws to a screen, whether it is flipped.
/// A stack of them is kept; drawing code that is handed no context draws into the top one.
class VXR_EXPORT GraphicsContext final : public Object {
public:
    GraphicsContext(std::shared_ptr<Context> context, bool drawsToScreen, bool isFlipped);
    ~GraphicsContext() override;

    Context& context() const { return *mContext; }
    std::shared_ptr<Context> graphicsPort() const { return mContext; }
    bool isDrawingToScreen() const { return mDrawsToScreen; }
    bool isFlipped() const { return mFlipped; }

    static GraphicsContext* currentContext(); ///< none when nothing is being drawn
    static bool currentContextDrawingToScreen(); ///< true when there is no current context
    static void push(std::shared_ptr<GraphicsContext>);
    static void pop(); ///< does nothing on an empty stack
    static void saveGraphicsState(); ///< of the current context's drawing port
    static void restoreGraphicsState();

private:
    std::shared_ptr<Context> mContext;
    bool mDrawsToScreen;
    bool mFlipped;
};

/// Makes a graphics context current for the length of a scope.
class VXR_EXPORT CurrentContextScope {
public:
    explicit CurrentContextScope(std::shared_ptr<GraphicsContext>);
    /// Over a caller-owned context that outlives the scope.
    CurrentContextScope(Context&, bool drawsToScreen, bool isFlipped);
    ~CurrentContextScope();
    CurrentContextScope(const CurrentContextScope&) = delete;
    CurrentContextScope& operator=(const CurrentContextScope&) = delete;
};

/// The current drawing port. Throws `GenericException` when nothing is being drawn.
VXR_EXPORT Context& currentDrawingPort();

/// Fills with the current context's colour through `operation`.
VXR_EXPORT void fillRectUsingOperation(const Rect&, CompositeOperation operation);

} // namespace vxr
