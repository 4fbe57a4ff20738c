#include "App/StatusMenu.h"

namespace vesk {

// All items exist from the beginning and are hidden and shown. A tray in another program names the item that
// was clicked by a number it learnt earlier; items made anew in the meantime would lose the click.
StatusMenu::StatusMenu(Owner &owner)
    : m_owner(owner)
{
    const auto hasNotice = [](const State &state) { return state.needsAccess || state.configError; };
    add(QStringLiteral("Allow Access…"), &Owner::openSetup, [](const State &s) { return s.needsAccess; });
    addConfigError();
    addSeparator(hasNotice);
    add(QStringLiteral("Open Vesk"), &Owner::openMain);
    add(QStringLiteral("Copy Last Dictation"), &Owner::copyLastText,
        [](const State &s) { return s.hasLastText; });
    add(QStringLiteral("Retry Last Dictation"), &Owner::retryLast, [](const State &s) { return s.canRetry; });
    addSeparator();
    add(QStringLiteral("Settings…"), &Owner::openSettings);
    add(QStringLiteral("Quit Vesk"), &Owner::quit);
    QObject::connect(&m_menu, &QMenu::aboutToShow, &m_menu, [this] { update(); });
}

void StatusMenu::add(const QString &text, void (Owner::*action)(), std::function<bool(const State &)> isShown)
{
    QAction *item = m_menu.addAction(text);
    QObject::connect(item, &QAction::triggered, &m_menu, [this, action] { (m_owner.*action)(); });
    m_items.push_back({item, std::move(isShown)});
}

void StatusMenu::addConfigError()
{
    m_configError = m_menu.addAction(QString());
    m_configError->setEnabled(false);
    m_items.push_back({m_configError, [](const State &state) { return state.configError.has_value(); }});
}

void StatusMenu::addSeparator(std::function<bool(const State &)> isShown)
{
    m_items.push_back({m_menu.addSeparator(), std::move(isShown)});
}

void StatusMenu::update()
{
    const State state = m_owner.menuNeedsUpdate();
    QString error = state.configError.value_or(QString());
    error.replace(u'&', QStringLiteral("&&"));
    if (m_underscores == Underscores::doubled) {
        error.replace(u'_', QStringLiteral("__"));
    }
    m_configError->setText(error);
    for (const Item &item : m_items) {
        item.action->setVisible(!item.isShown || item.isShown(state));
    }
}

} // namespace vesk
