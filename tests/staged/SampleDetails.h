#pragma once

// The details of a scan that never was.

#include "records/Records.h"
#include "scan/ScanDetails.h"

#include <memory>

namespace velmora::test {

struct SampleDetails {
    std::shared_ptr<const ScanDetails> details;
    ScanSummary summary;
};

/// As a scan of `dropped` would have found `details`.
SampleDetails sampleOf(ScanDetails details, const PathList& dropped);

/// Tracks of all kinds in folders and an archive, and one of each thing that cannot be read.
SampleDetails sampleDetails();

} // namespace velmora::test
