#include "Platform/Linux/Accessibility/AtspiTypes.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace vesk::atspi {

namespace {

enum class Match { all = 1, any = 2 };

template <typename T>
std::optional<T> first(const QDBusMessage &message, QStringView signature)
{
    const bool isAnswer = message.type() == QDBusMessage::ReplyMessage && message.signature() == signature;
    return isAnswer ? std::optional(qdbus_cast<T>(message.arguments().constFirst())) : std::nullopt;
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const Reference &reference)
{
    argument.beginStructure();
    argument << reference.service << QDBusObjectPath(reference.path);
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Reference &reference)
{
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> reference.service >> path;
    argument.endStructure();
    reference.path = path.path();
    return argument; // NOLINT(bugprone-return-const-ref-from-parameter): Qt's signature
}

QDBusArgument &operator<<(QDBusArgument &argument, const FocusedRule &)
{
    const QList<int> states = {1 << static_cast<int>(State::focused), 0};
    argument.beginStructure();
    argument << states << static_cast<int>(Match::all);
    argument << QMap<QString, QString>() << static_cast<int>(Match::all);
    argument << QList<int>() << static_cast<int>(Match::any);
    argument << QStringList() << static_cast<int>(Match::all);
    argument << false;
    argument.endStructure();
    return argument;
}

// Only ever sent, but the bus's registration of types asks for both directions.
const QDBusArgument &operator>>(const QDBusArgument &argument, FocusedRule &)
{
    return argument; // NOLINT(bugprone-return-const-ref-from-parameter): Qt's signature
}

void registerTypes()
{
    qDBusRegisterMetaType<Reference>();
    qDBusRegisterMetaType<FocusedRule>();
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
}

std::optional<QList<Reference>> references(const QDBusMessage &message)
{
    return first<QList<Reference>>(message, u"a(so)");
}

std::optional<States> states(const QDBusMessage &message)
{
    const auto words = first<QList<uint>>(message, u"au");
    if (!words || words->isEmpty()) {
        return std::nullopt;
    }
    return States{static_cast<quint64>(words->value(1)) << 32U | words->value(0)};
}

std::optional<uint> number(const QDBusMessage &message) { return first<uint>(message, u"u"); }

std::optional<QString> text(const QDBusMessage &message)
{
    // The ranged questions answer with the range behind the text.
    const auto ranged = first<QString>(message, u"sii");
    return ranged ? ranged : first<QString>(message, u"s");
}

std::optional<QStringList> names(const QDBusMessage &message) { return first<QStringList>(message, u"as"); }

std::optional<QMap<QString, QString>> attributes(const QDBusMessage &message)
{
    return first<QMap<QString, QString>>(message, u"a{ss}");
}

QVariant property(const QDBusMessage &message)
{
    const auto value = first<QDBusVariant>(message, u"v");
    return value ? value->variant() : QVariant();
}

} // namespace vesk::atspi
