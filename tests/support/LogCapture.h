#pragma once

#include <vxr/host/utility/VXULog.h>

#include <regex>
#include <string>
#include <vector>

namespace vxr::testing {

/// Keeps what is logged while it lives, a line each: the level and the message, addresses written as "%p".
class LogCapture {
public:
    LogCapture()
        : mPrevious(VXUSetLogSink([this](int level, std::string_view, std::string_view message) {
            static const std::regex address("0x[0-9a-f]+");
            mLines.push_back(
                std::to_string(level) + " " + std::regex_replace(std::string(message), address, "%p"));
        }))
    {
    }
    ~LogCapture() { VXUSetLogSink(std::move(mPrevious)); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<std::string>& lines() const { return mLines; }

private:
    std::vector<std::string> mLines;
    VXULogSink mPrevious;
};

} // namespace vxr::testing
