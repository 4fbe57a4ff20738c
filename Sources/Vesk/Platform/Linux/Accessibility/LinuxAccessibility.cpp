#include "Platform/Linux/Accessibility/LinuxAccessibility.h"

#include "Platform/Linux/Accessibility/ApplicationElement.h"
#include "Platform/Linux/Accessibility/FocusFinder.h"

#include <QCoroDBusPendingCall>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

constexpr std::chrono::milliseconds
    DisplayLimit(250); // it answers in less than one, unless the machine is very busy
constexpr std::chrono::milliseconds NameLimit(100); // of the 350 for everything

/// What the program calls itself on the bus.
Task<std::optional<QString>> accessibleName(AtspiSessionPointer session, WindowDescription window)
{
    for (const QString &service : session->servicesOf(window.processId)) {
        if (const auto known = session->program(service).name) {
            co_return known;
        }
    }
    const Patience patience{NameLimit, Patience::Clock::now() + NameLimit};
    const auto program = co_await FocusFinder::findProgram(session, window, patience);
    if (!program) {
        co_return std::nullopt;
    }

    atspi::Reference root;
    root.service = program->service;
    root.path = atspi::RootPath;
    const QDBusMessage reply =
        co_await session->bus().property(patience, root, atspi::AccessibleInterface, u"Name"_s);
    const QString name = atspi::property(reply).toString();
    if (name.trimmed().isEmpty()) {
        co_return std::nullopt;
    }
    session->program(program->service).name = name;
    co_return name;
}

std::optional<QString> ifAny(const QString &text)
{
    return text.isEmpty() ? std::nullopt : std::optional(text);
}

} // namespace

LinuxAccessibility::LinuxAccessibility()
    : m_worker(std::make_shared<SerialQueue>("vesk.access"))
    , m_window(std::make_shared<ActiveWindow>())
    , m_session(std::make_shared<AtspiSession>(m_worker))
    , m_names(std::make_shared<ProgramNames>(m_worker))
    , m_front(std::make_shared<Front>())
{
    m_session->ensureConnected();
    m_names->refresh();
}

bool LinuxAccessibility::isReady() const { return m_session->bus().isConnected() && m_names->isReady(); }

Availability LinuxAccessibility::availability() const
{
    if (!m_window->isConnected()) {
        return Availability::unavailable(
            u"Vesk cannot see which program is in front, because this session has no X11 display."_s);
    }
    if (!m_session->bus().isConnected()) {
        return Availability::unavailable(
            u"Vesk cannot see the field you are typing in, because this session has no accessibility bus."_s);
    }
    return Availability::available();
}

Task<std::optional<FrontApplication>> LinuxAccessibility::frontmostApplication()
{
    m_session->ensureConnected();
    *m_front = {{}, Patience::Clock::now()};
    return describe(m_window, m_session, m_names, m_front);
}

Task<std::optional<FrontApplication>> LinuxAccessibility::describe(std::shared_ptr<ActiveWindow> window,
                                                                   AtspiSessionPointer session,
                                                                   std::shared_ptr<ProgramNames> names,
                                                                   std::shared_ptr<Front> front)
{
    const auto inFront = co_await window->read(DisplayLimit);
    if (!inFront) {
        co_return std::nullopt;
    }
    front->window = *inFront;
    FrontApplication application;
    application.processIdentifier = inFront->processId;
    application.bundleIdentifier = ifAny(inFront->className);
    if (const DesktopEntry *entry = names->find(*inFront)) {
        application.bundleIdentifier = entry->id;
        application.localizedName = ifAny(entry->name);
    }
    if (!application.localizedName) {
        application.localizedName = co_await accessibleName(session, *inFront);
    }
    if (!application.localizedName) {
        application.localizedName = ifAny(inFront->className);
    }
    co_return application;
}

std::shared_ptr<AccessibilityElement> LinuxAccessibility::applicationElement(qint64 processIdentifier,
                                                                             AccessibilityLimits limits)
{
    // A process that is not the one in front has no window that could have the focus.
    const bool isFront = m_front->window.window != 0 && m_front->window.processId == processIdentifier;
    return std::make_shared<ApplicationElement>(m_session, isFront ? m_front->window : WindowDescription(),
                                                Patience::from(m_front->asked, limits));
}

} // namespace vesk
