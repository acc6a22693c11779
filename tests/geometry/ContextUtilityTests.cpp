#include <tests/support/RecordingContext.h>
#include <vxr/geometry/VXRContextUtilities.h>
#include <vxr/platform/base/OptionalOperations.h>

#include <gtest/gtest.h>

using namespace vxr;

namespace {

/// Pixels that are part of a larger surface, at (100, 50) in it.
struct WindowPixels final : PixelAccess {
    bool locks = true;
    int held = 0;

    bool lock() override { return locks && ++held; }
    void unlock() override { --held; }
    AffineTransform transform() const override { return AffineTransform::makeTranslation(100, 50); }
    std::uint8_t* pixels() const override { return nullptr; }
    std::size_t bytesPerRow() const override { return 0; }
    int width() const override { return 0; }
    int height() const override { return 0; }
};

/// A flipped view at twice the size.
struct WindowContext final : test::RecordingContext {
    WindowContext() { concatTransform({ 2, 0, 0, -2, 10, 500 }); }

    WindowPixels access;

    PixelAccess* pixelAccess() override { return &access; }
};

Point shiftedPoint(Context&, Point p) { return { p.x + 1000, p.y }; }
Size doubledSize(Context&, Size s) { return { s.width * 2, s.height * 2 }; }

const char pointToDevice[] = "CGContextConvertPointToDeviceSpace";
const char sizeToUser[] = "CGContextConvertSizeToUserSpace";

class ContextConversion : public ::testing::Test {
protected:
    void SetUp() override { VXRForgetContextOperations(); }
    void TearDown() override
    {
        registerOptionalOperation(pointToDevice, nullptr);
        registerOptionalOperation(sizeToUser, nullptr);
        VXRForgetContextOperations();
    }

    WindowContext context;
};

} // namespace

TEST_F(ContextConversion, GoesIntoTheSurfaceWhereItsPixelsCanBeLockedAndBack)
{
    EXPECT_EQ(
        VXRContextGetUserSpaceToDeviceSpaceTransform(context), (AffineTransform { 2, 0, 0, -2, 110, 550 }));
    EXPECT_EQ(VXRContextConvertPointToUserSpace(context, { 116, 542 }), (Point { 3, 4 }));
    context.access.locks = false;
    EXPECT_EQ(VXRContextConvertPointToDeviceSpace(context, { 3, 4 }), (Point { 16, 492 }));
    EXPECT_EQ(VXRContextConvertPointToUserSpace(context, { 16, 492 }), (Point { 3, 4 }));
    EXPECT_EQ(VXRContextConvertSizeToDeviceSpace(context, { 3, 4 }), (Size { 6, -8 }));
    EXPECT_EQ(VXRContextConvertSizeToUserSpace(context, { 6, -8 }), (Size { 3, 4 }));
    EXPECT_EQ(context.access.held, 0);
}

TEST_F(ContextConversion, SingularTransformsStandInForTheirInverse)
{
    test::RecordingContext flat;
    flat.concatTransform({ 1, 0, 0, 0, 5, 0 });
    EXPECT_EQ(VXRContextConvertPointToUserSpace(flat, { 1, 7 }), (Point { 6, 0 }));
}

TEST_F(ContextConversion, RemembersFromTheFirstCallWhetherThePlatformHasTheOperation)
{
    const Point ours { 116, 542 }, platforms { 1003, 4 };
    EXPECT_EQ(VXRContextConvertPointToDeviceSpace(context, { 3, 4 }), ours);
    registerOptionalOperationOfType<VXRConvertPointOperation>(pointToDevice, shiftedPoint);
    registerOptionalOperationOfType<VXRConvertSizeOperation>(sizeToUser, doubledSize);
    EXPECT_EQ(VXRContextConvertPointToDeviceSpace(context, { 3, 4 }), ours) << "there was none";
    EXPECT_EQ(VXRContextConvertSizeToUserSpace(context, { 3, 4 }), (Size { 6, 8 })) << "first call";
    VXRForgetContextOperations();
    EXPECT_EQ(VXRContextConvertPointToDeviceSpace(context, { 3, 4 }), platforms);
    registerOptionalOperation(pointToDevice, nullptr);
    EXPECT_EQ(VXRContextConvertPointToDeviceSpace(context, { 3, 4 }), platforms) << "there was one";
}
