#pragma once

// The folders that the desktop knows the user to be at: home and what lies in it by custom, bookmarks,
// mounted volumes.

#include "ui/panel/FilePanel.h"

#include <QByteArray>

#include <vector>

namespace velmora {

/// All of them, and those of `usedLast` that are none of them, in the order in which they are shown. Any
/// thread; may block while a folder cannot be looked at.
std::vector<Place> presentPlaces(const Paths& usedLast);

/// GTK's bookmarks: a URL a line, after it, parted by a blank, the title it was given.
std::vector<Place> gtkBookmarks(const QByteArray& text);

/// KDE's: XBEL, https://pyxml.sourceforge.net/topics/xbel/. Those that it hides, and its own standard
/// places ("isSystemItem"), are left out.
std::vector<Place> kdeBookmarks(const QByteArray& xbel);

/// The volumes below /media, /run/media and /mnt, from the text of /proc/self/mountinfo (proc(5)).
std::vector<Place> volumes(const QByteArray& mountInfo);

} // namespace velmora
