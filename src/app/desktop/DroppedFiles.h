#pragma once

// The files that a drag carries.

#include "app/desktop/FileUrls.h"

class QMimeData;

namespace velmora {

/// Whether the drag carries files, as far as its formats tell: nothing is fetched.
bool carriesFiles(const QMimeData& data);

/// The files a drop carries, in order; none when it carries no file URL. The files of a sandboxed
/// program are asked for at the desktop's document portal, which makes them accessible: a call on the session
/// bus with a time limit of five seconds.
Paths droppedFiles(const QMimeData& data);

} // namespace velmora
