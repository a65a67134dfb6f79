#pragma once

// The files that a drag carries.

#include "app/desktop/FileUrls.h"

class QMimeData;

namespace velmora {

/// Whether the drag carries files: those of a sandboxed program, as far as the formats tell, or a list of
/// URLs with at least one of a file. The list is fetched from the program that the drag comes from; one that
/// is not handed out before the drop counts as one of files.
bool carriesFiles(const QMimeData& data);

/// The files a drop carries, in order; none when it carries no file URL. The files of a sandboxed
/// program are asked for at the desktop's document portal, which makes them accessible: a call on the session
/// bus with a time limit of five seconds.
Paths droppedFiles(const QMimeData& data);

} // namespace velmora
