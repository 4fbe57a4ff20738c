#pragma once

#include "Desktop/Peer.h"
#include "Desktop/PrivateDesktop.h"
#include "Dictation/FocusCapture.h"
#include "Platform/Linux/Accessibility/LinuxAccessibility.h"
#include "Support/Await.h"

#include <QFile>
#include <QUrl>

#include <gtest/gtest.h>

namespace vesk::test {

constexpr qint64 SelectionLimit = 2000;

/// Where the text of a program's field is selected, in code points.
struct Selected {
    int start = 0;
    int end = 0;
};

/// The same place in UTF-16 units.
inline int units(const QString &text, int codePoints)
{
    const QList<uint> all = text.toUcs4();
    return static_cast<int>(
        QString::fromUcs4(reinterpret_cast<const char32_t *>(all.constData()), codePoints).size());
}

inline QString peerFile(const char *name)
{
    return QStringLiteral(VESK_TEST_PEERS "/") + QLatin1String(name);
}

inline std::unique_ptr<Peer> startGtk(Screen &screen, int version, const QString &kind, const QString &text,
                                      Selected selected = {})
{
    return std::make_unique<Peer>(screen, QStringLiteral("/usr/bin/python3"),
                                  QStringList{peerFile("gtk_field.py"), QString::number(version), kind, text,
                                              QString::number(selected.start), QString::number(selected.end)},
                                  QStringLiteral("GTK %1 %2").arg(version).arg(kind));
}

inline std::unique_ptr<Peer> startQt(Screen &screen, const QString &kind, const QString &text,
                                     Selected selected = {})
{
    return std::make_unique<Peer>(screen, QStringLiteral(VESK_TEST_QT_FIELD),
                                  QStringList{kind, text, QString::number(units(text, selected.start)),
                                              QString::number(units(text, selected.end))},
                                  QStringLiteral("Qt ") + kind);
}

/// The address of the page with its field, content and selection.
inline QString pageAddress(const QString &field, const QString &text, Selected selected)
{
    QUrl page = QUrl::fromLocalFile(peerFile("field.html"));
    page.setFragment(QString::fromLatin1(
        QUrl::toPercentEncoding(QStringLiteral("%1,%2,%3,%4")
                                    .arg(field, text, QString::number(units(text, selected.start)),
                                         QString::number(units(text, selected.end))))));
    return page.toString(QUrl::FullyEncoded);
}

inline std::unique_ptr<Peer> startChromium(Screen &screen, const QString &field, const QString &text,
                                           Selected selected = {}, bool isAccessible = true)
{
    QStringList arguments = {QStringLiteral("--no-sandbox"),
                             QStringLiteral("--no-first-run"),
                             QStringLiteral("--disable-background-networking"),
                             QStringLiteral("--disable-component-update"),
                             QStringLiteral("--disable-sync"),
                             QStringLiteral("--disable-quic"),
                             QStringLiteral("--disable-gpu"),
                             QStringLiteral("--password-store=basic"),
                             QStringLiteral("--disable-search-engine-choice-screen"),
                             QStringLiteral("--host-resolver-rules=MAP * ~NOTFOUND"),
                             QStringLiteral("--user-data-dir=")
                                 + PrivateDesktop::current().folder(QStringLiteral("data/chromium"))};
    if (isAccessible) {
        arguments.append(QStringLiteral("--force-renderer-accessibility"));
    }
    arguments.append(pageAddress(field, text, selected));
    return std::make_unique<Peer>(screen, QStringLiteral("chromium"), arguments,
                                  QStringLiteral("Field page - Chromium"));
}

inline std::unique_ptr<Peer> startFirefox(Screen &screen, const QString &field, const QString &text,
                                          Selected selected = {})
{
    const QString profile =
        PrivateDesktop::current().folder(QStringLiteral("data")) + QStringLiteral("/firefox");
    QDir().mkpath(profile);
    QFile preferences(profile + QStringLiteral("/user.js"));
    if (preferences.open(QIODevice::WriteOnly)) {
        preferences.write(
            "user_pref('network.proxy.type', 1); user_pref('network.proxy.http', '127.0.0.1');\n"
            "user_pref('network.proxy.http_port', 9); user_pref('network.proxy.ssl', '127.0.0.1');\n"
            "user_pref('network.proxy.ssl_port', 9); user_pref('browser.aboutwelcome.enabled', false);\n"
            "user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
            "user_pref('browser.shell.checkDefaultBrowser', false);\n");
    }
    preferences.close();
    return std::make_unique<Peer>(screen, QStringLiteral("firefox-esr"),
                                  QStringList{QStringLiteral("--no-remote"), QStringLiteral("--profile"),
                                              profile, pageAddress(field, text, selected)},
                                  QStringLiteral("Field page . Mozilla Firefox"));
}

/// A Vesk that has been running for a while, in front of a desktop.
class AccessibilityTest : public testing::Test {
protected:
    AccessibilityTest()
    {
        if (!eventually([this] { return accessibility.isReady(); })) {
            throw std::runtime_error("no accessibility bus");
        }
    }

    FocusContext captured()
    {
        return awaited(FocusCapture::capture(accessibility, SelectionLimit)).value_or(FocusContext());
    }

    /// The context once it satisfies the condition: a program that has just started needs a moment.
    template <typename Condition>
    FocusContext contextWhen(Condition condition)
    {
        FocusContext context;
        const bool isSo = eventually(
            [&] {
                context = captured();
                return condition(context);
            },
            std::chrono::seconds(30));
        EXPECT_TRUE(isSo) << describe(context);
        return context;
    }

    FocusContext contextWithText()
    {
        return contextWhen([](const FocusContext &context) {
            return context.textBefore && context.textAfter
                && !QString(*context.textBefore + *context.textAfter).isEmpty();
        });
    }

    static std::string describe(const FocusContext &context)
    {
        const auto shown = [](const std::optional<QString> &text) {
            return text ? u'\'' + text->left(80) + u'\'' : QStringLiteral("absent");
        };
        const QStringList parts = {context.appName,
                                   context.bundleID,
                                   shown(context.windowTitle),
                                   shown(context.role),
                                   shown(context.label),
                                   shown(context.textBefore),
                                   shown(context.selectedText),
                                   shown(context.textAfter),
                                   context.isSecure ? QStringLiteral("secure") : QStringLiteral("plain")};
        return parts.join(u" | ").toStdString();
    }

    Screen screen;
    LinuxAccessibility accessibility;
};

} // namespace vesk::test
