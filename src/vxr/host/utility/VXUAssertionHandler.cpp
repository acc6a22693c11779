#include <vxr/host/utility/VXUAssertionHandler.h>

#include <utility>

namespace vxr {

VXUAssertionHandler& VXUAssertionHandler::currentHandler()
{
    static VXUAssertionHandler handler;
    return handler;
}

void VXUAssertionHandler::handleFailureInFile(std::string file, int line, std::string description)
{
    if (mFailures.size() == capacity)
        mFailures.pop_front();
    mFailures.push_back({ std::move(file), line, std::move(description) });
}

} // namespace vxr
