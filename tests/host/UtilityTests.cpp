#include <vxr/host/utility/VXUAssertionHandler.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/host/utility/VXUMutableDictionary.h>
#include <vxr/host/utility/VXUMutablePointerSet.h>
#include <vxr/host/utility/VXUSystemVersion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using namespace vxr;
using ::testing::ElementsAre;

TEST(Log, ReplacedSinkGetsMessagesUntilThePreviousOneIsPutBack)
{
    std::vector<std::string> lines;
    const VXULogSink previous
        = VXUSetLogSink([&](int level, std::string_view file, std::string_view message) {
              lines.push_back(std::to_string(level) + ' ' + std::string(file) + ' ' + std::string(message));
          });
    VXULog_Fn(VXULogLevelWarning, "Path.cpp", "Warning: odd");
    const VXULogSink ours = VXUSetLogSink(previous);
    ::testing::internal::CaptureStderr();
    VXULog_Fn(3, "Path.cpp", "not for us");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Path.cpp: not for us\n");
    EXPECT_THAT(lines, ElementsAre("10 Path.cpp Warning: odd"));
    EXPECT_TRUE(ours);
}

TEST(Log, SinkMayReplaceItselfWhileItRuns)
{
    int calls = 0;
    const VXULogSink previous = VXUSetLogSink([&calls, big = std::string(100, 'x')](int, auto, auto) {
        VXUSetLogSink([](int, auto, auto) {});
        calls += static_cast<int>(big.size()); // reads the closure after the replacement
    });
    VXULog_Fn(1, "a", "b");
    VXULog_Fn(1, "a", "b");
    VXUSetLogSink(previous);
    EXPECT_EQ(calls, 100);
}

TEST(AssertionHandler, RecordsFailuresAndForgetsTheOldestBeyondItsCapacity)
{
    VXUAssertionHandler handler;
    for (int line = 0; line < 300; ++line)
        handler.handleFailureInFile("Image.cpp", line, "Bad parameter");
    ASSERT_EQ(handler.failures().size(), VXUAssertionHandler::capacity);
    EXPECT_EQ(
        handler.failures().front(), (VXUAssertionHandler::Failure { "Image.cpp", 44, "Bad parameter" }));
    EXPECT_EQ(handler.failures().back().line, 299);
}

TEST(SystemVersion, TakesTheNewerBranchesUntilToldOtherwise)
{
    EXPECT_GE(GetSystemVersion(), 0x1040);
    const int previous = VXUSetSystemVersion(0x1029);
    EXPECT_EQ(GetSystemVersion(), 0x1029);
    VXUSetSystemVersion(previous);
    EXPECT_GE(GetSystemVersion(), 0x1040);
}

TEST(MutableDictionary, TellsEqualKeysApartByIdentity)
{
    const std::string one = "same", two = "same";
    VXUMutableDictionary<std::string, int> order;
    order.setObjectForKey(1, one);
    EXPECT_EQ(order.objectForKey(two), nullptr);
    order.setObjectForKey(2, two);
    order.setObjectForKey(3, one);
    EXPECT_EQ(*order.objectForKey(one), 3);
    EXPECT_EQ(*order.objectForKey(two), 2);
    order.removeObjectForKey(one);
    EXPECT_EQ(order.count(), 1u);
    EXPECT_EQ(order.objectForKey(one), nullptr);
}

TEST(MutablePointerSet, KeepsTheOrderOfAddingThroughRemovals)
{
    int objects[100] = {};
    VXUMutablePointerSet<int> set;
    for (int& object : objects)
        EXPECT_TRUE(set.addObject(object));
    EXPECT_FALSE(set.addObject(objects[7])) << "a member stays where it is";
    // Enough removals for the gaps to be closed on the way.
    for (int i = 0; i < 97; ++i)
        EXPECT_TRUE(set.removeObject(objects[i]));
    EXPECT_FALSE(set.removeObject(objects[5]));
    EXPECT_TRUE(set.addObject(objects[5]));
    EXPECT_THAT(set.allObjects(), ElementsAre(&objects[97], &objects[98], &objects[99], &objects[5]));
    EXPECT_TRUE(set.removeObject(objects[98]));
    EXPECT_FALSE(set.containsObject(objects[98]));
    EXPECT_TRUE(set.containsObject(objects[99]));
    EXPECT_THAT(set.allObjects(), ElementsAre(&objects[97], &objects[99], &objects[5]));
    EXPECT_EQ(set.count(), 3u);
}
