#include "ui/kit/SpokenItem.h"

#include "ui/kit/PaintedItem.h"

#include <QAccessibleObject>
#include <QQuickWindow>

namespace velmora {

namespace {

/// An item without children that never has the focus.
class SpokenItem : public QAccessibleObject {
public:
    explicit SpokenItem(PaintedItem* item)
        : QAccessibleObject(item) {}

    QAccessibleInterface* parent() const override {
        const QQuickItem* const top = item()->window() == nullptr ? nullptr : item()->window()->contentItem();
        for (QQuickItem* above = item()->parentItem(); above != nullptr && above != top;
             above = above->parentItem()) {
            if (QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(above)) {
                return spoken;
            }
        }
        return QAccessible::queryAccessibleInterface(item()->window());
    }

    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }

    int childCount() const override { return 0; }

    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

    QWindow* window() const override { return item()->window(); }

    QRect rect() const override {
        const QRect place = item()->mapRectToScene({{}, item()->size()}).toRect();
        return window() == nullptr ? QRect() : place.translated(window()->mapToGlobal(QPoint()));
    }

    QString text(QAccessible::Text kind) const override {
        const bool isText = role() == QAccessible::StaticText;
        return kind == QAccessible::Name ? item()->property(isText ? "text" : "label").toString() : QString();
    }

    QAccessible::Role role() const override { return item()->spokenRole(); }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.readOnly = true;
        state.disabled = !item()->isEnabled();
        state.invisible = window() == nullptr || !window()->isVisible() || !item()->isVisible();
        state.offscreen = window() == nullptr || !window()->geometry().intersects(rect());
        return state;
    }

protected:
    PaintedItem* item() const { return static_cast<PaintedItem*>(object()); }
};

class SpokenBar : public SpokenItem, public QAccessibleValueInterface {
public:
    using SpokenItem::SpokenItem;

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this) : nullptr;
    }

    QVariant currentValue() const override { return item()->property("value"); }

    void setCurrentValue(const QVariant& /*value*/) override {}

    QVariant minimumValue() const override { return item()->property("minimumValue"); }

    QVariant maximumValue() const override { return item()->property("maximumValue"); }

    QVariant minimumStepSize() const override { return {}; }
};

/// Qt asks with the name of each class of an object, the most derived one first.
QAccessibleInterface* spoken(const QString& className, QObject* object) {
    if (className != u"velmora::PaintedItem") {
        return nullptr;
    }
    auto* const item = static_cast<PaintedItem*>(object);
    switch (item->spokenRole()) {
    case QAccessible::StaticText:
        return new SpokenItem(item);
    case QAccessible::ProgressBar:
        return new SpokenBar(item);
    default:
        return nullptr; // Qt's own
    }
}

} // namespace

void installSpokenItems() {
    QAccessible::installFactory(&spoken);
}

} // namespace velmora
