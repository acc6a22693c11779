#include <vxr/host/utility/VXULog.h>

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace vxr {

namespace {

VXULogSink& currentSink()
{
    static VXULogSink sink;
    return sink;
}

} // namespace

void VXULog_Fn(int level, std::string_view file, std::string_view message)
{
    // A copy: the sink may replace itself while it runs.
    if (const VXULogSink sink = currentSink())
        sink(level, file, message);
    else
        fmt::print(stderr, "{}: {}\n", file, message);
}

VXULogSink VXUSetLogSink(VXULogSink sink) { return std::exchange(currentSink(), std::move(sink)); }

} // namespace vxr
