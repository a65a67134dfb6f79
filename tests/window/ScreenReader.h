#pragma once

// Reads windows as a screen reader does: through the accessibility bus, by roles, names and places.

#include <QDBusConnection>
#include <QList>
#include <QRect>
#include <QString>

#include <optional>

namespace velmora::test {

/// Something that a window shows.
struct Element {
    QString name;
    QString description;
    QString role;  ///< such as "push button", "label", "frame"
    QRect place;   ///< on the screen; on Wayland, where no window knows its position, only the size is right
    QString owner; ///< the program's name on the accessibility bus
    QString path;  ///< on the accessibility bus
};

class ScreenReader {
public:
    /// Reads the programs whose session bus is `session`.
    explicit ScreenReader(const QDBusConnection& session);
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;
    ~ScreenReader();

    /// Everything that is shown at the moment, in all windows.
    QList<Element> shown() const;

    /// The element of that name; absent while it is not shown.
    std::optional<Element> find(const QString& name) const;

    /// Asks `element` to do what a click would do, without waiting for it.
    void activate(const Element& element) const;

private:
    QString m_name;
};

} // namespace velmora::test
