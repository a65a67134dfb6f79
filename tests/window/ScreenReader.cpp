#include "tests/window/ScreenReader.h"

#include "tests/window/Process.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QDBusVariant>

#include <gtest/gtest.h>

namespace velmora::test {

namespace {

const QString accessible = "org.a11y.atspi.Accessible";
const QString component = "org.a11y.atspi.Component";

constexpr uint showing = 1U << 25; // in the first word of the states

/// A node of the tree that the accessibility bus offers.
struct Node {
    QString owner;
    QString path;
};

QDBusPendingCall ask(const QDBusConnection& bus, const Node& node, const QString& interface,
                     const QString& method, const QVariantList& arguments = {}) {
    QDBusMessage call = QDBusMessage::createMethodCall(node.owner, node.path, interface, method);
    call.setArguments(arguments);
    return bus.asyncCall(call);
}

QDBusPendingCall askProperty(const QDBusConnection& bus, const Node& node, const QString& property) {
    return ask(bus, node, "org.freedesktop.DBus.Properties", "Get", {accessible, property});
}

/// The answer's first value; invalid when the node has gone.
QVariant answer(QDBusPendingCall call) {
    call.waitForFinished();
    return call.isError() ? QVariant() : call.reply().arguments().value(0);
}

QString textOf(const QDBusPendingCall& call) {
    return answer(call).value<QDBusVariant>().variant().toString();
}

QRect placeOf(const QDBusPendingCall& call) {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    if (const QVariant value = answer(call); value.isValid()) {
        const auto fields = value.value<QDBusArgument>();
        fields.beginStructure();
        fields >> x >> y >> width >> height;
        fields.endStructure();
    }
    return {x, y, width, height};
}

QList<Node> nodesOf(const QDBusPendingCall& call) {
    QList<Node> nodes;
    const QVariant value = answer(call);
    if (!value.isValid()) {
        return nodes;
    }
    const auto list = value.value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString owner;
        QDBusObjectPath path;
        list.beginStructure();
        list >> owner >> path;
        list.endStructure();
        nodes.append({owner, path.path()});
    }
    list.endArray();
    return nodes;
}

/// Those of `nodes` that are shown. All are asked at once.
QList<Node> shownOf(const QDBusConnection& bus, const QList<Node>& nodes) {
    QList<QDBusPendingCall> states;
    for (const Node& node : nodes) {
        states.append(ask(bus, node, accessible, "GetState"));
    }
    QList<Node> result;
    for (qsizetype i = 0; i < nodes.size(); ++i) {
        if ((qdbus_cast<QList<uint>>(answer(states[i])).value(0) & showing) != 0) {
            result.append(nodes[i]);
        }
    }
    return result;
}

/// What is asked of one node, all at once.
struct Questions {
    Questions(const QDBusConnection& bus, const Node& node)
        : name(askProperty(bus, node, "Name"))
        , description(askProperty(bus, node, "Description"))
        , role(ask(bus, node, accessible, "GetRoleName"))
        , place(ask(bus, node, component, "GetExtents", {0U}))
        , children(ask(bus, node, accessible, "GetChildren")) {}

    QDBusPendingCall name;
    QDBusPendingCall description;
    QDBusPendingCall role;
    QDBusPendingCall place;
    QDBusPendingCall children;
};

} // namespace

ScreenReader::ScreenReader(const QDBusConnection& session)
    : m_name(session.name() + "-accessibility") {
    if (!session.isConnected()) {
        return;
    }
    EXPECT_TRUE(comesTrue([&] {
        const QDBusReply<QString> address = session.call(
            QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"));
        return address.isValid() && QDBusConnection::connectToBus(address, m_name).isConnected();
    }));
}

ScreenReader::~ScreenReader() {
    QDBusConnection::disconnectFromBus(m_name);
}

QList<Element> ScreenReader::shown() const {
    const QDBusConnection bus(m_name);
    QList<Element> elements;
    const Node desktop{"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"};
    QList<Node> level = nodesOf(ask(bus, desktop, accessible, "GetChildren"));
    while (!level.isEmpty()) {
        level = shownOf(bus, level);
        QList<Questions> questions;
        for (const Node& node : level) {
            questions.append({bus, node});
        }
        QList<Node> below;
        for (qsizetype i = 0; i < level.size(); ++i) {
            const Questions& asked = questions[i];
            elements.append({textOf(asked.name), textOf(asked.description), answer(asked.role).toString(),
                             placeOf(asked.place), level[i].owner, level[i].path});
            below += nodesOf(asked.children);
        }
        level = below;
    }
    return elements;
}

std::optional<Element> ScreenReader::find(const QString& name) const {
    for (const Element& element : shown()) {
        if (element.name == name) {
            return element;
        }
    }
    return std::nullopt;
}

void ScreenReader::activate(const Element& element) const {
    QDBusMessage call =
        QDBusMessage::createMethodCall(element.owner, element.path, "org.a11y.atspi.Action", "DoAction");
    EXPECT_TRUE(QDBusConnection(m_name).send(call << 0));
}

} // namespace velmora::test
