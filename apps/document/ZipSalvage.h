#pragma once

#include "Container.h"

namespace app {

struct SalvagedEntry {
    std::string name, bytes;
    std::uint32_t checksum = 0;
};

/// The whole and undamaged entries of a zip file whose list of contents is not to be had, by what stands
/// before each of them. Stops at the limits.
std::vector<SalvagedEntry> salvageZip(std::string_view, const ContainerLimits&);

} // namespace app
