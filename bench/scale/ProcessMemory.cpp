#include <bench/scale/ProcessMemory.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <memory>
#include <stdexcept>

namespace vxr::bench {

namespace {

std::size_t statusBytes(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word != key)
            continue;
        std::size_t kilobytes = 0;
        status >> kilobytes;
        return kilobytes * 1024;
    }
    return 0;
}

} // namespace

std::size_t residentBytes() { return statusBytes("VmRSS:"); }

std::size_t peakBytes() { return statusBytes("VmHWM:"); }

void resetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

std::size_t allocatedBytes()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void returnFreeMemory() { malloc_trim(0); }

double inFreshProcess(const std::string& name, const std::function<double()>& take)
{
    constexpr const char* isFresh = "VXR_BENCH_FRESH_PROCESS";
    if (std::getenv(isFresh))
        return take();
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    const std::string command
        = std::string(isFresh) + "=1 '" + program + "' --benchmark_filter='^" + name + "/'";
    const std::unique_ptr<FILE, int (*)(FILE*)> answer(popen(command.c_str(), "r"), pclose);
    double value = 0;
    if (!answer || std::fscanf(answer.get(), "%*s %lf", &value) != 1)
        throw std::runtime_error("no answer from " + command);
    return value;
}

} // namespace vxr::bench
