#include <vxr/platform/base/UserDefaults.h>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace vxr;

TEST(UserDefaults, ValuesReadAsNumbersAndTruths)
{
    struct Case {
        const char* text;
        int integer;
        bool boolean;
    };
    const Case cases[] = { { "12", 12, true }, { "  +7 px", 7, true }, { "-3", -3, true }, { "0", 0, false },
        { "", 0, false }, { "YES", 0, true }, { "true", 0, true }, { "no", 0, false },
        { "99999999999", 0, false } };
    for (const Case& c : cases) {
        const UserDefaults defaults(std::string("Key = ") + c.text + "\n");
        EXPECT_EQ(defaults.integerForKey("Key"), c.integer) << c.text;
        EXPECT_EQ(defaults.boolForKey("Key"), c.boolean) << c.text;
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
