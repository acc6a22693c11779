#include <vxr/persistence/NodeAccess.h>

#include <limits>

namespace vxr {

int intFromDouble(double value)
{
    constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
    if (!(value > least))
        return value <= least ? least : 0;
    return value >= most ? most : static_cast<int>(value);
}

int indexOfWord(std::span<const char* const> words, std::string_view word)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (word == words[i])
            return static_cast<int>(i);
    }
    return -1;
}

} // namespace vxr
