#pragma once

#include <apps/import/JobRunner.h>

namespace vxr::importing {

/// The jobs that come most often, on JPEG and PNG files. They need few libraries: a process that has only
/// these is made in a small part of the time that one with every decoder takes.
class QuickJobs final : public JobRunner {
public:
    QuickJobs(); ///< lets the libraries do their first work

    bool takes(const Request&, std::span<const std::byte> start) const override;
    bool load(const Request&, std::span<const std::byte>) override { return false; }
    void run(const Request&, const JobInput&, JobOutput&) override;
};

} // namespace vxr::importing
