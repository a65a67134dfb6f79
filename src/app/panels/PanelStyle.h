#pragma once

// The look of the panels, which are widgets, in the colours of the window.

class QDialog;

namespace velmora {

/// Gives `panel` the palette's colours and a comfortable size.
void stylePanel(QDialog& panel);

} // namespace velmora
