#pragma once

#include <apps/vxr/svg/Drawing.h>

#include <cstdio>
#include <string>

namespace app {

/// Messages and progress on standard error, in the form that editors and other programs read:
/// `file:line: error: what is wrong`.
class Console {
public:
    /// `total` is how many steps there will be; a bar is shown on a terminal when it is more than one.
    explicit Console(std::size_t total = 1);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    void startStep(const std::string& name);
    void error(const std::string& file, int line, const std::string& message);
    void warning(const std::string& file, const svg::Warning&);

private:
    void say(const std::string& file, int line, const char* kind, const std::string& message);
    void clearBar();
    void drawBar();

    std::size_t mTotal;
    std::size_t mStarted = 0;
    std::string mName;
    bool mHasBar;
};

} // namespace app
