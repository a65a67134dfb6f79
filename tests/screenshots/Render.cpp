// Renders the pictures as the program's launch does: velmora_render DIRECTORY

#include "screenshots/Screenshots.h"
#include "ui/Views.h"

#include <QGuiApplication>

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    velmora::Screenshots::prepareEnvironment();
    const QGuiApplication application(argc, argv);
    velmora::Views::prepare();
    velmora::Screenshots::render(argv[1]);
    return 0;
}
