#pragma once

// The three lists of the details, each made of what a scan found.

#include "records/PathList.h"
#include "scan/ScanDetails.h"
#include "ui/details/Rows.h"

#include <functional>
#include <memory>

namespace velmora {

/// Makes a list, in any thread.
using RowsMaker = std::function<std::unique_ptr<const Rows>()>;

/// Every file: NAME, FOLDER, LENGTH, SIZE.
RowsMaker fileRows(std::shared_ptr<const ScanDetails> details);

/// Every folder in which audio was found, with all below it: NAME, IN, LENGTH, FILES.
RowsMaker folderRows(std::shared_ptr<const ScanDetails> details, PathList dropped);

/// What is missing in the total, folders before archives before files: NAME, FOLDER, REASON.
RowsMaker missingRows(std::shared_ptr<const ScanDetails> details);

} // namespace velmora
