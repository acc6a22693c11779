#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace vxr::testing {

/// How the bytes of a coordinate become a number.
enum class Form { Lattice, Fine, Raw };

inline Form formOf(std::uint8_t head)
{
    return head % 4 == 3 ? Form::Raw : head % 4 == 2 ? Form::Fine : Form::Lattice;
}

/// The bytes of an input from its front. Zeros stand behind its end.
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* data, std::size_t size)
        : mData(data)
        , mLeft(size)
    {
    }

    std::size_t left() const { return mLeft; }

    template <class T> T next()
    {
        T value {};
        const std::size_t size = std::min(sizeof value, mLeft);
        std::copy_n(mData, size, reinterpret_cast<std::uint8_t*>(&value));
        mData += size;
        mLeft -= size;
        return value;
    }
    std::uint8_t byte() { return next<std::uint8_t>(); }

private:
    const std::uint8_t* mData;
    std::size_t mLeft;
};

/// Ends the run when a law does not hold.
inline void expect(bool holds, const char* law)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s does not hold\n", law);
    std::abort();
}

} // namespace vxr::testing
