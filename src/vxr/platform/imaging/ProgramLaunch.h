#pragma once

#include <string>

namespace vxr::importing {

/// Starts the program at `path` with `socket` as its descriptor 3 and nothing else of this process but its
/// standard streams and environment. Answers a descriptor that stands for the process, or the negative of
/// an error number.
///
/// Costs no copy of page tables, however large the host is, and runs none of its handlers.
int launchProgram(const std::string& path, int socket);

} // namespace vxr::importing
