#include <vxr/platform/graphics/GraphicsContext.h>

#include <vxr/platform/base/Exceptions.h>

#include <utility>
#include <vector>

namespace vxr {

namespace {

std::vector<std::shared_ptr<GraphicsContext>>& contextStack()
{
    static std::vector<std::shared_ptr<GraphicsContext>> stack;
    return stack;
}

/// Wraps a pointer to an object owned and kept alive elsewhere.
std::shared_ptr<Context> notOwned(Context& context) { return { std::shared_ptr<void>(), &context }; }

} // namespace

GraphicsContext::GraphicsContext(std::shared_ptr<Context> context, bool drawsToScreen, bool isFlipped)
    : mContext(std::move(context))
    , mDrawsToScreen(drawsToScreen)
    , mFlipped(isFlipped)
{
    if (!mContext)
        throw InvalidArgumentException("A graphics context needs a drawing port.");
}

GraphicsContext::~GraphicsContext() = default;

GraphicsContext* GraphicsContext::currentContext()
{
    const auto& stack = contextStack();
    return stack.empty() ? nullptr : stack.back().get();
}

bool GraphicsContext::currentContextDrawingToScreen()
{
    const GraphicsContext* current = currentContext();
    return !current || current->isDrawingToScreen();
}

void GraphicsContext::push(std::shared_ptr<GraphicsContext> context)
{
    if (!context)
        throw InvalidArgumentException("No graphics context to make current.");
    contextStack().push_back(std::move(context));
}

void GraphicsContext::pop()
{
    auto& stack = contextStack();
    if (!stack.empty())
        stack.pop_back();
}

void GraphicsContext::saveGraphicsState() { currentDrawingPort().saveState(); }

void GraphicsContext::restoreGraphicsState() { currentDrawingPort().restoreState(); }

CurrentContextScope::CurrentContextScope(std::shared_ptr<GraphicsContext> context)
{
    GraphicsContext::push(std::move(context));
}

CurrentContextScope::CurrentContextScope(Context& context, bool drawsToScreen, bool isFlipped)
{
    GraphicsContext::push(std::make_shared<GraphicsContext>(notOwned(context), drawsToScreen, isFlipped));
}

CurrentContextScope::~CurrentContextScope() { GraphicsContext::pop(); }

Context& currentDrawingPort()
{
    GraphicsContext* current = GraphicsContext::currentContext();
    if (!current)
        throw GenericException("There is no current graphics context.");
    return current->context();
}

void fillRectUsingOperation(const Rect& rect, CompositeOperation operation)
{
    Context& port = currentDrawingPort();
    StateSaver saved(port);
    port.setCompositeOperation(operation);
    port.fillRect(rect);
}

} // namespace vxr
