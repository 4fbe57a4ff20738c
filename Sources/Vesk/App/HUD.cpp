#include "App/HUD.h"

#include "App/HUDPanel.h"
#include "Platform/Compositing.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace vesk {

/// What a delayed hide may still find, or no longer.
struct HUD::Shared {
    HUDPanel panel;
    quint64 showNumber = 0; ///< grows with every show: tells a hide whether it is still meant
};

HUD::HUD(Clock &clock, const Compositing &compositing)
    : m_clock(clock)
    , m_compositing(compositing)
    , m_shared(std::make_shared<Shared>())
{
    // Queued: while Qt tells of a change, it has not yet put everything in its place.
    HUDPanel *panel = &m_shared->panel;
    const auto placeAgain = [this] { place(); };
    const auto watch = [panel, placeAgain](const QScreen *screen) {
        QObject::connect(screen, &QScreen::availableGeometryChanged, panel, placeAgain, Qt::QueuedConnection);
    };
    for (const QScreen *screen : QGuiApplication::screens()) {
        watch(screen);
    }
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, panel, watch);
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, panel, placeAgain, Qt::QueuedConnection);
}

HUD::~HUD() = default;

void HUD::showListening(bool locked, bool command)
{
    m_shared->panel.showBars(locked, command);
    present();
}

void HUD::setLevel(float level) { m_shared->panel.setLevel(level); }

void HUD::showText(const QString &text, bool spinning)
{
    m_shared->panel.showMessage(text, spinning);
    present();
}

void HUD::flash(const QString &text, std::chrono::milliseconds time)
{
    showText(text, false);
    launch(QStringLiteral("hiding the indicator"), hideLater(m_clock, time, m_shared, m_shared->showNumber));
}

Task<> HUD::hideLater(Clock &clock, std::chrono::milliseconds time, std::weak_ptr<Shared> weak,
                      quint64 number)
{
    co_await clock.after(time);
    const auto shared = weak.lock();
    if (shared && shared->showNumber == number) {
        shared->panel.hide();
    }
}

void HUD::hide() { m_shared->panel.hide(); }

void HUD::present()
{
    ++m_shared->showNumber;
    HUDPanel &panel = m_shared->panel;
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) {
        return;
    }
    panel.setComposited(m_compositing.isActive());
    panel.setGeometry(panel.arrangement().frame(screen->availableGeometry()));
    panel.show();
    panel.raise();
}

void HUD::place()
{
    HUDPanel &panel = m_shared->panel;
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (panel.isVisible() && screen != nullptr) {
        panel.setGeometry(panel.arrangement().frame(screen->availableGeometry()));
    }
}

} // namespace vesk
