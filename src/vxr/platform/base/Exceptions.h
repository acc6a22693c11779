#pragma once

#include <vxr/platform/base/Export.h>

#include <stdexcept>
#include <string>

namespace vxr {

/// A programming error detected at run time, such as calling an abstract operation.
/// `what()` is the exact message.
class VXR_EXPORT GenericException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~GenericException() override;
};

/// An argument that the callee cannot accept. `what()` is the exact message.
class VXR_EXPORT InvalidArgumentException : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
    ~InvalidArgumentException() override;
};

/// A failed assertion, with the place where it was stated.
class VXR_EXPORT AssertionFailure : public std::logic_error {
public:
    AssertionFailure(std::string subject, int line, const std::string& description);
    ~AssertionFailure() override;

    const std::string& subject() const { return mSubject; } ///< the class or source file that asserted
    int line() const { return mLine; }

private:
    std::string mSubject;
    int mLine;
};

/// The platform's assertion handler: throws an `AssertionFailure` whose `what()` is `description`.
[[noreturn]] VXR_EXPORT void raiseAssertion(std::string subject, int line, const std::string& description);

} // namespace vxr
