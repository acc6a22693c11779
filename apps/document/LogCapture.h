#pragma once

#include <functional>
#include <string>

namespace app {

/// While it lives, what the library logs of things that had to be repaired goes to a function. Addresses,
/// which say nothing to a reader, are taken out of the messages.
class LogCapture {
public:
    explicit LogCapture(std::function<void(const std::string&)>);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

private:
    std::function<void(int, std::string_view, std::string_view)> mOld;
};

} // namespace app
