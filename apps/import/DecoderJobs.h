#pragma once

#include <apps/import/Job.h>
#include <apps/import/JobRunner.h>

namespace vxr::importing {

/// Every job, by the libraries that know the most.
class DecoderJobs final : public JobRunner {
public:
    bool takes(const Request&, std::span<const std::byte> start) const override;
    bool load(const Request&, std::span<const std::byte> start) override;
    void run(const Request&, const JobInput&, JobOutput&) override;
};

// The jobs.
void listFileTypes(JobOutput&);
void measureDocument(const JobInput&, JobOutput&);
void renderPageArea(const Request&, const JobInput&, JobOutput&);
void normaliseDocument(const JobInput&, JobOutput&);
void convertEPS(const JobInput&, JobOutput&); ///< becomes Ghostscript and does not return
void placePages(const JobInput&, JobOutput&);
void misbehave(Misdeed, JobOutput&);

} // namespace vxr::importing
