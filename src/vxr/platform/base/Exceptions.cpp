#include <vxr/platform/base/Exceptions.h>

#include <utility>

namespace vxr {

GenericException::~GenericException() = default;
InvalidArgumentException::~InvalidArgumentException() = default;
AssertionFailure::~AssertionFailure() = default;

AssertionFailure::AssertionFailure(std::string subject, int line, const std::string& description)
    : std::logic_error(description)
    , mSubject(std::move(subject))
    , mLine(line)
{
}

void raiseAssertion(std::string subject, int line, const std::string& description)
{
    throw AssertionFailure(std::move(subject), line, description);
}

} // namespace vxr
