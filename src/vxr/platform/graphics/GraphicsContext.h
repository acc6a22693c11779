#pragma once

#include <vxr/platform/graphics/Context.h>

namespace vxr {

/// The current drawing environment: a context, whether it draws to a screen, whether it is flipped.
/// Environments form a stack; drawing code that is not given a context draws into the top one.
class VXR_EXPORT GraphicsContext final : public Object {
public:
    GraphicsContext(std::shared_ptr<Context> context, bool drawsToScreen, bool isFlipped);
    ~GraphicsContext() override;

    Context& context() const { return *mContext; }
    std::shared_ptr<Context> graphicsPort() const { return mContext; }
    bool isDrawingToScreen() const { return mDrawsToScreen; }
    bool isFlipped() const { return mFlipped; }

    static GraphicsContext* currentContext(); ///< null if nothing is being drawn
    static bool currentContextDrawingToScreen(); ///< true if there is no current context
    static void push(std::shared_ptr<GraphicsContext>);
    static void pop(); ///< does nothing if the stack is empty
    static void saveGraphicsState(); ///< saves the state of the current context
    static void restoreGraphicsState();

private:
    std::shared_ptr<Context> mContext;
    bool mDrawsToScreen;
    bool mFlipped;
};

/// Makes a graphics context current for the duration of a scope.
class VXR_EXPORT CurrentContextScope {
public:
    explicit CurrentContextScope(std::shared_ptr<GraphicsContext>);
    /// Wraps a context owned by the caller, which must outlive the scope.
    CurrentContextScope(Context&, bool drawsToScreen, bool isFlipped);
    ~CurrentContextScope();
    CurrentContextScope(const CurrentContextScope&) = delete;
    CurrentContextScope& operator=(const CurrentContextScope&) = delete;
};

/// The current context. Throws `GenericException` if nothing is being drawn.
VXR_EXPORT Context& currentDrawingPort();

/// Fills with the current context's colour through `operation`.
VXR_EXPORT void fillRectUsingOperation(const Rect&, CompositeOperation operation);

} // namespace vxr
