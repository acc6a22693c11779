#pragma once

#include <exception>

namespace vxr {

/// Pieces of work that are all to be tried: keeps the first failure, to be passed on when all are done.
class FirstFailure {
public:
    /// Whether the work came to its end.
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
