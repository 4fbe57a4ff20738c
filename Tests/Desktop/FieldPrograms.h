#pragma once

#include "Desktop/Peer.h"
#include "Desktop/PrivateDesktop.h"

#include <QDir>
#include <QFile>
#include <QUrl>

#include <map>

namespace vesk::test {

using namespace Qt::StringLiterals;

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
    return std::make_unique<Peer>(screen, u"/usr/bin/python3"_s,
                                  QStringList{peerFile("gtk_field.py"), QString::number(version), kind, text,
                                              QString::number(selected.start), QString::number(selected.end)},
                                  u"GTK %1 %2"_s.arg(version).arg(kind));
}

inline std::unique_ptr<Peer> startQt(Screen &screen, const QString &kind, const QString &text,
                                     Selected selected = {})
{
    return std::make_unique<Peer>(screen, QStringLiteral(VESK_TEST_QT_FIELD),
                                  QStringList{kind, text, QString::number(units(text, selected.start)),
                                              QString::number(units(text, selected.end))},
                                  u"Qt "_s + kind);
}

/// The address of the page with its field, content and selection.
inline QString pageAddress(const QString &field, const QString &text, Selected selected)
{
    QUrl page = QUrl::fromLocalFile(peerFile("field.html"));
    page.setFragment(QString::fromLatin1(QUrl::toPercentEncoding(
        u"%1,%2,%3,%4"_s.arg(field, text, QString::number(units(text, selected.start)),
                             QString::number(units(text, selected.end))))));
    return page.toString(QUrl::FullyEncoded);
}

inline std::unique_ptr<Peer> startChromium(Screen &screen, const QString &field, const QString &text,
                                           Selected selected = {}, bool isAccessible = true)
{
    QStringList arguments = {u"--no-sandbox"_s,
                             u"--no-first-run"_s,
                             u"--disable-background-networking"_s,
                             u"--disable-component-update"_s,
                             u"--disable-sync"_s,
                             u"--disable-quic"_s,
                             u"--disable-gpu"_s,
                             u"--password-store=basic"_s,
                             u"--disable-search-engine-choice-screen"_s,
                             u"--host-resolver-rules=MAP * ~NOTFOUND"_s,
                             u"--user-data-dir="_s + PrivateDesktop::current().folder(u"data/chromium"_s)};
    if (isAccessible) {
        arguments.append(u"--force-renderer-accessibility"_s);
    }
    arguments.append(pageAddress(field, text, selected));
    return std::make_unique<Peer>(screen, u"chromium"_s, arguments, u"Field page - Chromium"_s);
}

/// It is not installed for the tests, and takes half a minute more.
inline bool isFirefoxTried() { return qEnvironmentVariableIsSet("VESK_TEST_FIREFOX"); }

inline std::unique_ptr<Peer> startFirefox(Screen &screen, const QString &field, const QString &text,
                                          Selected selected = {})
{
    const QString profile = PrivateDesktop::current().folder(u"data"_s) + u"/firefox"_s;
    QDir().mkpath(profile);
    QFile preferences(profile + u"/user.js"_s);
    if (preferences.open(QIODevice::WriteOnly)) {
        preferences.write(
            "user_pref('network.proxy.type', 1); user_pref('network.proxy.http', '127.0.0.1');\n"
            "user_pref('network.proxy.http_port', 9); user_pref('network.proxy.ssl', '127.0.0.1');\n"
            "user_pref('network.proxy.ssl_port', 9); user_pref('browser.aboutwelcome.enabled', false);\n"
            "user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
            "user_pref('browser.shell.checkDefaultBrowser', false);\n");
    }
    preferences.close();
    return std::make_unique<Peer>(
        screen, u"firefox-esr"_s,
        QStringList{u"--no-remote"_s, u"--profile"_s, profile, pageAddress(field, text, selected)},
        u"Field page . Mozilla Firefox"_s);
}

/// Every kind of field that hides what stands in it, with the beginning of the secret selected.
inline std::map<std::string, std::unique_ptr<Peer> (*)(Screen &, const QString &)> passwordFields()
{
    std::map<std::string, std::unique_ptr<Peer> (*)(Screen &, const QString &)> fields = {
        {"GTK 3", [](Screen &on, const QString &text) { return startGtk(on, 3, u"hidden"_s, text, {0, 5}); }},
        {"GTK 4", [](Screen &on, const QString &text) { return startGtk(on, 4, u"hidden"_s, text, {0, 5}); }},
        {"GTK 4 password entry",
         [](Screen &on, const QString &text) { return startGtk(on, 4, u"password"_s, text, {0, 5}); }},
        {"GTK 4 peeked",
         [](Screen &on, const QString &text) { return startGtk(on, 4, u"peeked"_s, text, {0, 5}); }},
        {"Qt", [](Screen &on, const QString &text) { return startQt(on, u"password"_s, text, {0, 5}); }},
        {"Chromium",
         [](Screen &on, const QString &text) { return startChromium(on, u"password"_s, text, {0, 5}); }}};
    if (isFirefoxTried()) {
        fields.emplace("Firefox", [](Screen &on, const QString &text) {
            return startFirefox(on, u"password"_s, text, {0, 5});
        });
    }
    return fields;
}

} // namespace vesk::test
