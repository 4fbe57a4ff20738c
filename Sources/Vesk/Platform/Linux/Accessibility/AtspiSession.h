#pragma once

#include "Platform/Linux/Accessibility/AtspiBus.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <memory>
#include <optional>

namespace vesk {

/// What is known about a program on the bus for as long as it stays there. Names on the bus are never given
/// twice, so nothing in here grows old.
struct AtspiProgram {
    std::optional<uint> processId;
    std::optional<QString> toolkit;
    std::optional<QString> name;
    bool lacksCollection = false;
    std::optional<atspi::Reference> focused; ///< what the program last called focused, if it still is
    QSet<QString> secrets;                   ///< paths of fields that once showed that they hide their text
};

/// The bus and what is remembered about it. Main thread; shared by every element and every open question.
class AtspiSession final : public QObject {
    Q_OBJECT

public:
    explicit AtspiSession(const std::shared_ptr<SerialQueue> &worker);

    const AtspiBus &bus() const { return *m_bus; }
    void ensureConnected() { m_bus->ensureConnected(); }

    AtspiProgram &program(const QString &service) { return m_programs[service]; }

    /// The names of the programs that are known to run in the process; those that left are not among them.
    QStringList servicesOf(qint64 processId) const;

    /// The program that last said that something in it has the focus; empty when none did.
    const QString &lastFocused() const { return m_lastFocused; }

private:
    void onFocusChanged(const atspi::Reference &element, bool isFocused);
    void forget(const QString &service);
    void forgetAll();

    std::shared_ptr<AtspiBus> m_bus;
    QHash<QString, AtspiProgram> m_programs;
    QString m_lastFocused;
};

using AtspiSessionPointer = std::shared_ptr<AtspiSession>;

/// The answers to questions that are on their way together, in the order of the questions.
Task<QList<QDBusMessage>> answers(QList<QDBusPendingCall> calls);

} // namespace vesk
