#pragma once

// The look of the dialogs, which are widgets, in the colours of the window.

class QDialog;

namespace velmora {

/// Gives `dialog` the palette's colours and a comfortable size.
void styleDialog(QDialog& dialog);

} // namespace velmora
