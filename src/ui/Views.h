#pragma once

// What a program needs to show the views.

#include <QUrl>

namespace velmora::Views {

/// Makes the module "Velmora" and its typefaces known. Once, after the application object exists and before
/// the first view is loaded.
void prepare();

/// Where the view of that name is: "ContentView", "MainWindow".
QUrl url(const char* name);

} // namespace velmora::Views
