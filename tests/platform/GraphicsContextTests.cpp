#include <tests/platform/ContextTestSupport.h>
#include <tests/support/RecordingContext.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/graphics/GraphicsContext.h>

namespace vxr::test {

namespace {

TEST(GraphicsContext, ScopesNestAndTellWhereDrawingGoes)
{
    EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
    EXPECT_TRUE(GraphicsContext::currentContextDrawingToScreen());
    EXPECT_THROW(currentDrawingPort(), GenericException);
    GraphicsContext::pop();
    RecordingContext outer;
    const auto inner = bitmap(1, 1);
    {
        CurrentContextScope printing(outer, false, true);
        {
            CurrentContextScope screen(std::make_shared<GraphicsContext>(inner, true, false));
            EXPECT_EQ(&currentDrawingPort(), inner.get());
            EXPECT_TRUE(GraphicsContext::currentContextDrawingToScreen());
            EXPECT_FALSE(GraphicsContext::currentContext()->isFlipped());
        }
        EXPECT_EQ(&currentDrawingPort(), &outer);
        EXPECT_FALSE(GraphicsContext::currentContextDrawingToScreen());
        EXPECT_TRUE(GraphicsContext::currentContext()->isFlipped());
    }
    EXPECT_EQ(GraphicsContext::currentContext(), nullptr);
}

TEST(GraphicsContext, FillingWithAnOperationLeavesTheStateAlone)
{
    EXPECT_EQ(recordingOf([] {
        fillRectUsingOperation({ 1, 2, 3, 4 }, CompositeOperation::Clear);
    }),
        "save\nset-operation clear\nfill-rect 1 2 3 4\nrestore\n");
}

} // namespace

} // namespace vxr::test
