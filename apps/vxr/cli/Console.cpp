#include "Console.h"

#include <fmt/format.h>

#include <unistd.h>

namespace app {

Console::Console(std::size_t total)
    : mTotal(total)
    , mHasBar(total > 1 && isatty(STDERR_FILENO))
{
}

Console::~Console() { clearBar(); }

void Console::startStep(const std::string& name)
{
    ++mStarted;
    mName = name;
    drawBar();
}

void Console::error(const std::string& file, int line, const std::string& message)
{
    say(file, line, "error", message);
}

void Console::warning(const std::string& file, const svg::Warning& warning)
{
    say(file, warning.line, "warning", warning.message);
}

void Console::say(const std::string& file, int line, const char* kind, const std::string& message)
{
    clearBar();
    const std::string place = line > 0 ? fmt::format("{}:{}", file, line) : file;
    fmt::print(stderr, "{}: {}: {}\n", place, kind, message);
    drawBar();
}

void Console::clearBar()
{
    if (mHasBar)
        fmt::print(stderr, "\r\033[K");
}

void Console::drawBar()
{
    if (!mHasBar || mStarted == 0)
        return;
    constexpr std::size_t cells = 24;
    const std::size_t filled = (mStarted - 1) * cells / mTotal;
    fmt::print(stderr, "\r[{:#<{}}{:-<{}}] {}/{} {:.40}\033[K", "", filled, "", cells - filled, mStarted,
        mTotal, mName);
    std::fflush(stderr);
}

} // namespace app
