// A program to drag from: a magenta window, on X11 in the corner of the screen, that offers the data given by
// its arguments, in pairs of format and bytes. Tells on standard output when it can be dragged from
// ("ready"), which action its target offers ("offered copy"), and how the drag ended ("ended copy", "ended
// ignore").

#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>

#include <cstdio>

namespace {

const char* nameOf(Qt::DropAction action) {
    switch (action) {
    case Qt::CopyAction:
        return "copy";
    case Qt::IgnoreAction:
        return "ignore";
    default:
        return "something else";
    }
}

void tell(const char* what, Qt::DropAction action) {
    std::printf("%s %s\n", what, nameOf(action));
    std::fflush(stdout);
}

class Source : public QRasterWindow {
public:
    Source() {
        if (QGuiApplication::platformName() == "xcb") {
            setFlags(Qt::BypassWindowManagerHint); // stays where it is
        }
        setGeometry(0, 0, 80, 80);
    }

protected:
    void exposeEvent(QExposeEvent* event) override {
        QRasterWindow::exposeEvent(event);
        if (isExposed()) {
            std::puts("ready");
            std::fflush(stdout);
        }
    }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(0, 0, width(), height(), Qt::magenta);
    }

    void mousePressEvent(QMouseEvent* /*event*/) override {
        auto* data = new QMimeData;
        const QStringList arguments = QCoreApplication::arguments();
        for (qsizetype i = 1; i + 1 < arguments.size(); i += 2) {
            data->setData(arguments[i], arguments[i + 1].toUtf8());
        }
        auto* drag = new QDrag(this); // lives until the target has fetched the data
        drag->setMimeData(data);
        connect(drag, &QDrag::actionChanged, [](Qt::DropAction action) { tell("offered", action); });
        tell("ended", drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction));
    }
};

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    Source source;
    source.show();
    return QGuiApplication::exec();
}
