#include <vxr/platform/views/UserDefaults.h>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace vxr;

namespace {

struct ValueCase {
    const char* text;
    int integer;
    bool boolean;
};
const ValueCase valueCases[] = {
    { "12", 12, true },
    { "  +7 px", 7, true },
    { "-3", -3, true },
    { "0", 0, false },
    { "", 0, false },
    { "YES", 0, true },
    { "true", 0, true },
    { "no", 0, false },
    { "99999999999", 0, false },
};

} // namespace

TEST(UserDefaults, ValuesReadAsNumbersAndTruths)
{
    for (const ValueCase& one : valueCases) {
        const UserDefaults defaults(std::string("Key = ") + one.text + "\n");
        EXPECT_EQ(defaults.integerForKey("Key"), one.integer) << one.text;
        EXPECT_EQ(defaults.boolForKey("Key"), one.boolean) << one.text;
    }
}

TEST(UserDefaults, ProgramComesBeforeEnvironmentBeforeFile)
{
    UserDefaults defaults(
        "# a comment\r\nOther=1\nVXRTestKey = first\n VXRTestKey =\tfile = last \r\nno sign");
    EXPECT_EQ(defaults.stringForKey("VXRTestKey"), "file = last");
    EXPECT_EQ(defaults.integerForKey("Other"), 1);
    EXPECT_FALSE(defaults.stringForKey("no sign"));
    setenv("VXRTestKey", "environment", 1);
    EXPECT_EQ(defaults.stringForKey("VXRTestKey"), "environment");
    defaults.setObjectForKey("program", "VXRTestKey");
    EXPECT_EQ(defaults.stringForKey("VXRTestKey"), "program");
    defaults.removeObjectForKey("VXRTestKey");
    EXPECT_EQ(defaults.stringForKey("VXRTestKey"), "environment");
    unsetenv("VXRTestKey");
}
