#pragma once

#include <QDBusArgument>
#include <QDBusMessage>
#include <QMap>
#include <QMetaType>
#include <QString>

/// The accessibility bus in plain values. Numbers are those of its protocol (AtspiRole, AtspiStateType).
namespace vesk::atspi {

/// An object that a program shows: the program's name on the bus and the object's path in it.
struct Reference {
    QString service;
    QString path;

    /// Programs name nothing by a path of its own.
    bool isNull() const { return service.isEmpty() || path.isEmpty() || path.endsWith(u"/null"); }

    friend bool operator==(const Reference &, const Reference &) = default;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Reference &reference);
const QDBusArgument &operator>>(const QDBusArgument &argument, Reference &reference);

/// The question "which objects are focused?" of the Collection interface, in the one form that every program
/// with that interface answers: all of the states, all of no attributes, any of no roles, all of no
/// interfaces.
struct FocusedRule {};

QDBusArgument &operator<<(QDBusArgument &argument, const FocusedRule &rule);
const QDBusArgument &operator>>(const QDBusArgument &argument, FocusedRule &rule);

/// Before the first message; any thread, any number of times.
void registerTypes();

enum class State { active = 1, defunct = 6, editable = 7, focused = 12, multiLine = 17 };

/// The states of an object as the bus packs them.
struct States {
    quint64 bits = 0;
    bool has(State state) const { return (bits >> static_cast<int>(state)) & 1U; }
};

namespace Role {
inline constexpr uint Invalid = 0;
inline constexpr uint Filler = 20;
inline constexpr uint PasswordText = 40;
inline constexpr uint Terminal = 60;
inline constexpr uint Text = 61;
inline constexpr uint Entry = 79;
} // namespace Role

/// The logic's word for a role ("AXTextArea"); "AXUnknown" for one that it has no use for.
QString accessibilityRole(uint role, States states);

inline const QString RootPath = QStringLiteral("/org/a11y/atspi/accessible/root");
inline const QString AccessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
inline const QString ApplicationInterface = QStringLiteral("org.a11y.atspi.Application");
inline const QString CollectionInterface = QStringLiteral("org.a11y.atspi.Collection");
inline const QString TextInterface = QStringLiteral("org.a11y.atspi.Text");

/// What a message carries, provided that it has the signature that the protocol promises.
std::optional<QList<Reference>> references(const QDBusMessage &message);
std::optional<States> states(const QDBusMessage &message);
std::optional<uint> number(const QDBusMessage &message);
std::optional<QString> text(const QDBusMessage &message);
std::optional<QStringList> names(const QDBusMessage &message);
std::optional<QMap<QString, QString>> attributes(const QDBusMessage &message);
QVariant property(const QDBusMessage &message); ///< invalid when there is none

} // namespace vesk::atspi

Q_DECLARE_METATYPE(vesk::atspi::Reference)
Q_DECLARE_METATYPE(vesk::atspi::FocusedRule)
