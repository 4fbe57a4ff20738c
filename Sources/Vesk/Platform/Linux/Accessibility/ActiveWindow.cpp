#include "Platform/Linux/Accessibility/ActiveWindow.h"

#include <QCoroFuture>
#include <QPromise>

#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace vesk {

namespace {

using Time = std::chrono::steady_clock;

constexpr std::uint32_t LongestProperty = 1024; // in units of four bytes; titles are shorter
constexpr int LatenessInterval = 20;            // milliseconds between looks at what is late

struct Freed {
    void operator()(void *memory) const { std::free(memory); } // what xcb hands out comes from malloc
};

quint32 word(const QByteArray &value)
{
    quint32 number = 0;
    if (value.size() >= static_cast<qsizetype>(sizeof number)) {
        std::memcpy(&number, value.constData(), sizeof number);
    }
    return number;
}

} // namespace

struct ActiveWindow::Question {
    std::uint32_t sequence;
    Time::time_point end;
    QPromise<Property> promise;

    void answer(Property property)
    {
        promise.addResult(std::move(property));
        promise.finish();
    }
};

struct ActiveWindow::Atoms {
    explicit Atoms(xcb_connection_t *connection)
    {
        static constexpr const char *Names[] = {"_NET_ACTIVE_WINDOW",  "_NET_WM_PID",
                                                "_NET_WM_NAME",        "UTF8_STRING",
                                                "_GTK_APPLICATION_ID", "_KDE_NET_WM_DESKTOP_FILE"};
        quint32 *const atoms[] = {&activeWindow, &processId, &name, &utf8, &gtkApplication, &kdeDesktopFile};
        xcb_intern_atom_cookie_t cookies[std::size(Names)];
        for (std::size_t i = 0; i < std::size(Names); ++i) {
            cookies[i] =
                xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(Names[i])), Names[i]);
        }
        for (std::size_t i = 0; i < std::size(Names); ++i) {
            const std::unique_ptr<xcb_intern_atom_reply_t, Freed> reply(
                xcb_intern_atom_reply(connection, cookies[i], nullptr));
            *atoms[i] = reply ? reply->atom : quint32(XCB_ATOM_NONE);
        }
    }

    quint32 activeWindow = XCB_ATOM_NONE;
    quint32 processId = XCB_ATOM_NONE;
    quint32 name = XCB_ATOM_NONE;
    quint32 utf8 = XCB_ATOM_NONE;
    quint32 gtkApplication = XCB_ATOM_NONE;
    quint32 kdeDesktopFile = XCB_ATOM_NONE;
};

ActiveWindow::ActiveWindow()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    if (!isConnected()) {
        return;
    }
    // Desktops of several screens are long gone; where one exists, its first screen is meant.
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    m_atoms = std::make_unique<Atoms>(m_connection);
    m_notifier =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ActiveWindow::collect);
    connect(&m_lateness, &QTimer::timeout, this, &ActiveWindow::giveUpLate);
    m_lateness.setInterval(LatenessInterval);
}

ActiveWindow::~ActiveWindow()
{
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

bool ActiveWindow::isConnected() const { return xcb_connection_has_error(m_connection) == 0; }

QFuture<ActiveWindow::Property> ActiveWindow::ask(quint32 window, quint32 property, Time::time_point end)
{
    const xcb_get_property_cookie_t cookie =
        xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, LongestProperty);
    m_questions.push_back({cookie.sequence, end, {}});
    QPromise<Property> &promise = m_questions.back().promise;
    promise.start();
    return promise.future();
}

void ActiveWindow::collect()
{
    // Nobody asked for events, but some are sent to every client, and they would pile up.
    while (const std::unique_ptr<xcb_generic_event_t, Freed> event{xcb_poll_for_event(m_connection)}) {}
    m_questions.remove_if([this](Question &question) {
        void *reply = nullptr;
        xcb_generic_error_t *error = nullptr;
        if (xcb_poll_for_reply(m_connection, question.sequence, &reply, &error) == 0 && isConnected()) {
            return false;
        }
        const std::unique_ptr<xcb_get_property_reply_t, Freed> property(
            static_cast<xcb_get_property_reply_t *>(reply));
        const std::unique_ptr<xcb_generic_error_t, Freed> dropped(error);
        question.answer(
            property ? Property{property->type,
                                QByteArray(static_cast<const char *>(xcb_get_property_value(property.get())),
                                           xcb_get_property_value_length(property.get()))}
                     : Property{});
        return true;
    });
    if (m_questions.empty()) {
        m_lateness.stop();
    }
    if (!isConnected()) {
        m_notifier->setEnabled(false); // a dead socket is always readable
    }
}

void ActiveWindow::giveUpLate()
{
    collect(); // an answer may have been read along with another one, and the socket is silent since
    m_questions.remove_if([this](Question &question) {
        if (question.end > Time::now()) {
            return false;
        }
        xcb_discard_reply(m_connection, question.sequence);
        question.answer({});
        return true;
    });
}

Task<std::optional<WindowDescription>> ActiveWindow::read(std::chrono::milliseconds limit)
{
    return read(shared_from_this(), limit);
}

Task<std::optional<WindowDescription>> ActiveWindow::read(std::shared_ptr<ActiveWindow> self,
                                                          std::chrono::milliseconds limit)
{
    if (!self->isConnected()) {
        co_return std::nullopt;
    }
    const Atoms &atoms = *self->m_atoms;
    const auto end = Time::now() + limit;
    const auto sent = [&self](QFuture<Property> last) {
        xcb_flush(self->m_connection);
        self->m_lateness.start();
        return last;
    };
    const Property active = co_await sent(self->ask(self->m_root, atoms.activeWindow, end));
    const quint32 window = word(active.value);
    if (window == XCB_WINDOW_NONE || !self->isConnected()) {
        co_return std::nullopt;
    }
    const QFuture<Property> process = self->ask(window, atoms.processId, end);
    const QFuture<Property> gtk = self->ask(window, atoms.gtkApplication, end);
    const QFuture<Property> kde = self->ask(window, atoms.kdeDesktopFile, end);
    const QFuture<Property> classes = self->ask(window, XCB_ATOM_WM_CLASS, end);
    const QFuture<Property> oldName = self->ask(window, XCB_ATOM_WM_NAME, end);
    const Property name = co_await sent(self->ask(window, atoms.name, end));
    const Property plainName = co_await oldName;
    const Property named = co_await classes;
    const Property gtkApplication = co_await gtk;
    const Property kdeDesktopFile = co_await kde;
    const Property processId = co_await process;

    WindowDescription description;
    description.window = window;
    description.processId = word(processId.value);
    description.title = name.type == atoms.utf8 ? QString::fromUtf8(name.value)
        : plainName.type == atoms.utf8          ? QString::fromUtf8(plainName.value)
                                                : QString::fromLatin1(plainName.value);
    description.instance = QString::fromUtf8(named.value.split('\0').value(0));
    description.className = QString::fromUtf8(named.value.split('\0').value(1));
    description.applicationId =
        QString::fromUtf8(gtkApplication.value.isEmpty() ? kdeDesktopFile.value : gtkApplication.value);
    co_return description;
}

} // namespace vesk
