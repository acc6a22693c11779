#include <vxr/host/utility/VXUSystemVersion.h>

#include <utility>

namespace vxr {

namespace {
int systemVersion = 0x1040;
}

int GetSystemVersion() { return systemVersion; }

int VXUSetSystemVersion(int code) { return std::exchange(systemVersion, code); }

} // namespace vxr
