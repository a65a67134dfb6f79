#pragma once

// What a drag carries: the files it names, or that it names none.

#include "app/desktop/FileUrls.h"

class QMimeData;

namespace velmora {

/// Whether the drag carries files, as far as its formats tell: nothing is fetched.
bool carriesFiles(const QMimeData& data);

/// The files a drop carries, in order; none when it carries no file URL. A sandboxed source's files come
/// through the desktop's document portal, which makes them reachable: that is a call on the session bus,
/// given up after a few seconds.
Paths droppedFiles(const QMimeData& data);

} // namespace velmora
