#pragma once

#include <exception>

namespace vxr {

/// Runs several pieces of work that must all be tried, and keeps the first failure to rethrow at the end.
class FirstFailure {
public:
    /// Whether the work completed.
    template <class Work> bool attempt(Work&& work)
    {
        try {
            work();
            return true;
        } catch (...) {
            if (!mFirst)
                mFirst = std::current_exception();
            return false;
        }
    }

    void rethrow() const
    {
        if (mFirst)
            std::rethrow_exception(mFirst);
    }

private:
    std::exception_ptr mFirst;
};

} // namespace vxr
