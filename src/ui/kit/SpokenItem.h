#pragma once

// What assistive technology reads of texts and of progress bars. Qt 6.4 by itself offers the focus of every
// text that stands still, and tells no value of a progress bar.

namespace velmora {

/// From here on, painted items with a role of their own are what they say (`PaintedItem::spokenRole`): texts
/// are labels that cannot have the focus, progress bars have a value. Once, before the first view is loaded.
void installSpokenItems();

} // namespace velmora
