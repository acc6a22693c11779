#pragma once

#include <functional>
#include <string>

namespace vxr::importing {

class JobRunner;
class Successor;

/// What `main` of an import program does: serves the host behind the socket that the program was started
/// with. `load` gets the libraries ready and answers what runs the jobs. `successor` is null for none.
int runImportProgram(int argc, const std::function<JobRunner&()>& load, Successor* successor);

/// Of the program beside this one.
std::string pathOfNeighbour(const std::string& name);

} // namespace vxr::importing
