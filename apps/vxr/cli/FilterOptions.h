#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace app {

/// A picture with other colours.
struct FilterOptions {
    struct Value {
        std::string_view property; ///< a user property of the filter adaptors
        float value;
    };

    std::string input, output;
    std::vector<Value> values;
    std::string levels; ///< empty for none, luminance or channels
    float clipPercent = 0.5f;
};

/// Adds the options of `vxr filter`. Values out of range are refused with the adaptors' own words.
void addFilterOptions(CLI::App& command, FilterOptions&);

} // namespace app
