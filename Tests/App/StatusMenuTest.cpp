#include "App/StatusItem.h"
#include "Support/FakeTrayHost.h"

#include <gmock/gmock.h>

namespace vesk {

namespace {

using testing::ElementsAre;

struct Owner final : StatusMenu::Owner {
    StatusMenu::State state;
    QStringList calls;

    StatusMenu::State menuNeedsUpdate() override
    {
        calls.append(QStringLiteral("update"));
        return state;
    }
    void openSetup() override { calls.append(QStringLiteral("setup")); }
    void openMain() override { calls.append(QStringLiteral("main")); }
    void copyLastText() override { calls.append(QStringLiteral("copy")); }
    void retryLast() override { calls.append(QStringLiteral("retry")); }
    void openSettings() override { calls.append(QStringLiteral("settings")); }
    void quit() override { calls.append(QStringLiteral("quit")); }
};

/// The items as they are seen; a separator is "-", and what cannot be chosen stands in brackets.
QStringList seen(const QMenu &menu)
{
    QStringList texts;
    for (const QAction *action : menu.actions()) {
        if (!action->isVisible()) {
            continue;
        }
        const QString text = action->isSeparator() ? QStringLiteral("-") : action->text();
        texts.append(action->isEnabled() ? text : u'[' + text + u']');
    }
    return texts;
}

} // namespace

TEST(StatusMenu, showsWhatIsTrueAtEachOpening)
{
    Owner owner;
    StatusMenu menu(owner);
    const struct {
        StatusMenu::State state;
        QString before;
        QString after;
    } rows[] = {
        {{}, {}, {}},
        {{true, {}, false, false}, QStringLiteral("Allow Access…|-|"), {}},
        {{false, QStringLiteral("No & no_no"), false, false}, QStringLiteral("[No && no_no]|-|"), {}},
        {{true, QStringLiteral("No"), true, true},
         QStringLiteral("Allow Access…|[No]|-|"),
         QStringLiteral("|Copy Last Dictation|Retry Last Dictation")},
        {{false, {}, true, false}, {}, QStringLiteral("|Copy Last Dictation")},
        {{false, {}, false, true}, {}, QStringLiteral("|Retry Last Dictation")},
    };
    for (const auto &row : rows) {
        owner.state = row.state;
        Q_EMIT menu.menu().aboutToShow();
        EXPECT_EQ(seen(menu.menu()).join(u'|'),
                  QString(row.before + QStringLiteral("Open Vesk") + row.after
                          + QStringLiteral("|-|Settings…|Quit Vesk")));
    }
}

TEST(StatusMenu, itsItemsDoWhatTheySay)
{
    Owner owner;
    StatusMenu menu(owner);
    for (QAction *action : menu.menu().actions()) {
        if (!action->isSeparator() && !action->text().isEmpty()) {
            action->trigger();
        }
    }
    EXPECT_EQ(owner.calls.join(u' '), u"setup main copy retry settings quit");
}

TEST(StatusItem, isMadeWhenThereIsATrayAndOnce)
{
    Owner owner;
    FakeTrayHost host;
    StatusItem item(host, owner);
    item.setIndicator(StatusItem::Indicator::listening);
    EXPECT_TRUE(owner.calls.isEmpty());
    host.become(TrayHost::Kind::statusNotifier);
    EXPECT_EQ(owner.calls.size(), 1); // it fills the menu, once
    host.become(TrayHost::Kind::none);
    host.become(TrayHost::Kind::statusNotifier);
    EXPECT_EQ(owner.calls.size(), 1);
}

} // namespace vesk
