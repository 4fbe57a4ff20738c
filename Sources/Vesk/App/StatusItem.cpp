#include "App/StatusItem.h"

#include "App/Glyph.h"
#include "Platform/TrayHost.h"

namespace vesk {

namespace {

// Nobody says whether a panel is light or dark: this grey is as far from white as from the usual dark grey of
// panels (3.7 to 1 from both). The red is about as light.
constexpr QColor Foreground(0x84, 0x84, 0x84);
constexpr QColor Listening(0xff, 0x3b, 0x30);

QIcon picture(StatusItem::Indicator indicator)
{
    switch (indicator) {
    case StatusItem::Indicator::idle: break;
    case StatusItem::Indicator::listening: return Glyph::icon(Listening, Glyph::Look::normal);
    case StatusItem::Indicator::working: return Glyph::icon(Foreground, Glyph::Look::disabled);
    }
    return Glyph::icon(Foreground, Glyph::Look::normal);
}

} // namespace

StatusItem::StatusItem(TrayHost &host, StatusMenu::Owner &owner)
    : m_host(host)
    , m_owner(owner)
    , m_menu(owner)
{
    m_host.setChangeHandler([this] { appear(); });
    appear();
}

StatusItem::~StatusItem() { m_host.setChangeHandler({}); }

// Qt decides at its first icon, and once for the whole process, how it reaches the tray: an icon made before
// there is one never appears. Made later, Qt brings it back itself whenever the tray comes back.
void StatusItem::appear()
{
    if (m_icon || m_host.kind() == TrayHost::Kind::none) {
        return;
    }
    m_menu.setUnderscores(m_host.kind() == TrayHost::Kind::statusNotifier
                              ? StatusMenu::Underscores::doubled
                              : StatusMenu::Underscores::asTheyAre);
    m_menu.update(); // some trays show nothing for a menu that is empty before it opens
    m_icon = std::make_unique<QSystemTrayIcon>(picture(m_indicator));
    m_icon->setToolTip(QStringLiteral("Vesk"));
    m_icon->setContextMenu(&m_menu.menu());
    QObject::connect(m_icon.get(), &QSystemTrayIcon::activated, m_icon.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             m_owner.openMain();
                         }
                     });
    m_icon->show();
}

void StatusItem::setIndicator(Indicator indicator)
{
    m_indicator = indicator;
    if (m_icon) {
        m_icon->setIcon(picture(indicator));
    }
}

} // namespace vesk
