#include <vxr/host/utility/VXUAssertionHandler.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/host/utility/VXUMutableDictionary.h>
#include <vxr/host/utility/VXUMutablePointerSet.h>
#include <vxr/host/utility/VXUSystemVersion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using namespace vxr;
using ::testing::ElementsAre;

TEST(Log, SinkGetsMessagesUntilItIsReplacedWhichItMayDoItself)
{
    std::vector<std::string> lines;
    const VXULogSink previous = VXUSetLogSink(
        [&lines, mark = std::string(30, '*')](int level, std::string_view file, std::string_view text) {
            VXUSetLogSink(nullptr);
            // Reads the closure after the replacement.
            lines.push_back(mark + std::to_string(level) + ' ' + std::string(file) + ' ' + std::string(text));
        });
    VXULog_Fn(VXULogLevelWarning, "Path.cpp", "Warning: odd");
    EXPECT_THAT(lines, ElementsAre(std::string(30, '*') + "10 Path.cpp Warning: odd"));
    ::testing::internal::CaptureStderr();
    VXULog_Fn(3, "Path.cpp", "not for us");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Path.cpp: not for us\n");
    VXUSetLogSink(previous);
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
    const int previous = VXUSetSystemVersion(0x1029);
    EXPECT_GE(previous, 0x1040);
    EXPECT_EQ(GetSystemVersion(), 0x1029);
    VXUSetSystemVersion(previous);
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

TEST(MutablePointerSet, IsWhatAListOfItsMembersWouldBe)
{
    std::mt19937 random(8);
    std::vector<double> objects(300);
    std::vector<double*> members;
    VXUMutablePointerSet<double> set;
    for (int step = 0; step < 20000; ++step) {
        // Now more are added, now more removed.
        const bool adds = int(random() % 10) < (step / 2000 % 2 ? 3 : 7);
        double& object = objects[random() % objects.size()];
        const auto found = std::find(members.begin(), members.end(), &object);
        ASSERT_EQ(set.containsObject(object), found != members.end());
        if (adds) {
            ASSERT_EQ(set.addObject(object), found == members.end());
            if (found == members.end())
                members.push_back(&object);
        } else {
            ASSERT_EQ(set.removeObject(object), found != members.end());
            if (found != members.end())
                members.erase(found);
        }
        ASSERT_EQ(set.count(), members.size());
        if (step % 100 == 0) {
            ASSERT_EQ(set.allObjects(), members) << step;
        }
    }
    set.removeAllObjects();
    EXPECT_FALSE(set.containsObject(objects[0]));
    EXPECT_TRUE(set.addObject(objects[0]));
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
    EXPECT_TRUE(set.removeObject(objects[98]));
    EXPECT_FALSE(set.containsObject(objects[98]));
    EXPECT_THAT(set.allObjects(), ElementsAre(&objects[97], &objects[99], &objects[5]));
    EXPECT_EQ(set.count(), 3u);
}
