#include "Platform/Linux/Accessibility/AtspiSession.h"

#include <QCoroDBusPendingCall>

namespace vesk {

AtspiSession::AtspiSession(const std::shared_ptr<SerialQueue> &worker)
    : m_bus(std::make_shared<AtspiBus>(worker))
{
    connect(m_bus.get(), &AtspiBus::focusChanged, this, &AtspiSession::onFocusChanged);
    connect(m_bus.get(), &AtspiBus::serviceVanished, this, &AtspiSession::forget);
    connect(m_bus.get(), &AtspiBus::disconnected, this, &AtspiSession::forgetAll);
}

QStringList AtspiSession::servicesOf(qint64 processId) const
{
    QStringList services;
    for (auto program = m_programs.cbegin(); program != m_programs.cend(); ++program) {
        if (processId > 0 && program->processId == processId) {
            services.append(program.key());
        }
    }
    return services;
}

void AtspiSession::onFocusChanged(const atspi::Reference &element, bool isFocused)
{
    AtspiProgram &program = m_programs[element.service];
    if (isFocused) {
        program.focused = element;
        m_lastFocused = element.service;
    } else if (program.focused == element) {
        program.focused.reset();
    }
}

void AtspiSession::forget(const QString &service)
{
    m_programs.remove(service);
    if (m_lastFocused == service) {
        m_lastFocused.clear();
    }
}

void AtspiSession::forgetAll()
{
    m_programs.clear();
    m_lastFocused.clear();
}

Task<QList<QDBusMessage>> answers(QList<QDBusPendingCall> calls)
{
    QList<QDBusMessage> messages;
    messages.reserve(calls.size());
    for (const QDBusPendingCall &call : calls) {
        messages.append(co_await call);
    }
    co_return messages;
}

} // namespace vesk
