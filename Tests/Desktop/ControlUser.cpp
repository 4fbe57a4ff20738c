#include "Desktop/ControlUser.h"

#include "Support/Await.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <gtest/gtest.h>

namespace vesk::test {

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds Patience{30}; // only a failing test waits so long

QStringList texts(const QJsonObject &answer)
{
    QStringList all;
    for (const QJsonValue &text : answer.value(u"texts"_s).toArray()) {
        all.append(text.toString());
    }
    return all;
}

} // namespace

ControlUser::ControlUser(qint64 processId)
    : m_processId(processId)
    , m_process(u"/usr/bin/python3"_s,
                {{QStringLiteral(VESK_TEST_PEERS "/control_user.py")}, QProcess::SeparateChannels, {}, {}})
{
    m_process.readLine(); // "ready"
}

bool ControlUser::press(const QString &role, const QString &name)
{
    // A button shows for a tenth of a second that it is down, and acts when it comes up again.
    return isDone({{u"do"_s, u"press"_s}, {u"role"_s, role}, {u"name"_s, name}})
        && eventually([&] { return !hasState(role, name, u"pressed"_s); }, Patience);
}

bool ControlUser::type(const QString &name, const QString &text)
{
    return isDone({{u"do"_s, u"type"_s}, {u"role"_s, u"text"_s}, {u"name"_s, name}, {u"text"_s, text}});
}

bool ControlUser::reads(const QString &role, const QString &name, const QString &text)
{
    return eventually(
        [&] {
            return ask({{u"do"_s, u"read"_s}, {u"role"_s, role}, {u"name"_s, name}})
                .value(u"text"_s)
                .toString()
                .contains(text);
        },
        Patience);
}

bool ControlUser::select(const QString &name, const QString &words)
{
    return isDone({{u"do"_s, u"select"_s}, {u"role"_s, u"text"_s}, {u"name"_s, name}, {u"text"_s, words}});
}

bool ControlUser::finds(const QString &role, const QString &name)
{
    return eventually([&] { return isThere(role, name); }, Patience);
}

bool ControlUser::isThere(const QString &role, const QString &name)
{
    return ask({{u"do"_s, u"read"_s}, {u"role"_s, role}, {u"name"_s, name}}).value(u"ok"_s).toBool();
}

bool ControlUser::isEnabled(const QString &role, const QString &name)
{
    return hasState(role, name, u"enabled"_s);
}

bool ControlUser::isChecked(const QString &name) { return hasState(u"check box"_s, name, u"checked"_s); }

bool ControlUser::hasState(const QString &role, const QString &name, const QString &state)
{
    return ask({{u"do"_s, u"read"_s}, {u"role"_s, role}, {u"name"_s, name}})
        .value(u"states"_s)
        .toArray()
        .contains(state);
}

bool ControlUser::sees(const QString &text)
{
    const bool isSo = eventually([&] { return isSeen(text); }, Patience);
    EXPECT_TRUE(isSo) << "shown instead: " << texts(ask({{u"do"_s, u"texts"_s}})).join(u" | ").toStdString();
    return isSo;
}

bool ControlUser::seesNoLonger(const QString &text)
{
    return eventually([&] { return !isSeen(text); }, Patience);
}

QStringList ControlUser::namelessControls() { return texts(ask({{u"do"_s, u"nameless"_s}})); }

bool ControlUser::isSeen(const QString &text)
{
    const QStringList all = texts(ask({{u"do"_s, u"texts"_s}}));
    return std::ranges::any_of(all, [&text](const QString &shown) { return shown.contains(text); });
}

bool ControlUser::isDone(const QJsonObject &request)
{
    return eventually([&] { return ask(request).value(u"ok"_s).toBool(); }, Patience);
}

QJsonObject ControlUser::ask(QJsonObject request)
{
    request.insert(u"pid"_s, m_processId);
    m_process.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    return QJsonDocument::fromJson(m_process.readLine()).object();
}

} // namespace vesk::test
