#pragma once

// A child of velmora-libav at work.

#include "system/FileDescriptor.h"

namespace velmora {

/// Puts up the wall around this process, reports, and answers what comes over `socket` until its end.
void serve(const FileDescriptor& socket);

} // namespace velmora
