#pragma once

#include <vxr/platform/imaging/ImportProtocol.h>

#include <cstddef>
#include <exception>
#include <span>

namespace vxr::importing {

class JobInput;
class JobOutput;

/// Thrown by a job whose file has something in it that another program reads.
class JobForOthers : public std::exception { };

/// What the jobs of a program are.
class JobRunner {
public:
    virtual ~JobRunner() = default;

    /// Whether the program does jobs of this kind, as far as the first bytes of the file tell.
    virtual bool takes(const Request&, std::span<const std::byte> start) const = 0;
    /// Loads libraries that the job needs and answers whether there were any. Called in the program, not in
    /// the job's process.
    virtual bool load(const Request&, std::span<const std::byte> start) = 0;
    /// Does the job, in its own process. Throws when it can't.
    virtual void run(const Request&, const JobInput&, JobOutput&) = 0;
};

} // namespace vxr::importing
