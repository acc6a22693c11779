#include "LogCapture.h"

#include <vxr/host/utility/VXULog.h>

#include <cctype>

namespace app {

namespace {

std::string withoutAddresses(std::string_view message)
{
    std::string result;
    for (std::size_t i = 0; i < message.size();) {
        if (message.substr(i, 2) != "0x") {
            result += message[i++];
            continue;
        }
        for (i += 2; i < message.size() && std::isxdigit(static_cast<unsigned char>(message[i]));)
            ++i;
        result += "the document";
    }
    return result;
}

} // namespace

LogCapture::LogCapture(std::function<void(const std::string&)> receive)
    : mOld(vxr::VXUSetLogSink(
        [receive = std::move(receive)](int level, std::string_view, std::string_view message) {
            if (level >= vxr::VXULogLevelWarning)
                receive(withoutAddresses(message));
        }))
{
}

LogCapture::~LogCapture() { vxr::VXUSetLogSink(std::move(mOld)); }

} // namespace app
