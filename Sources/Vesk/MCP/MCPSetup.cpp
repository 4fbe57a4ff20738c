#include "MCP/MCPSetup.h"

#include "Foundation/Files.h"
#include "Foundation/JsonView.h"
#include "Foundation/VeskError.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QString usedPlace(const QStringList &places)
{
    const auto isThere = [](const QString &path) {
        return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
    };
    const auto hasFolder = [](const QString &path) { return QFileInfo(path).dir().exists(); };
    auto place = std::find_if(places.begin(), places.end(), isThere);
    if (place == places.end()) {
        place = std::find_if(places.begin(), places.end(), hasFolder);
    }
    return place == places.end() ? places.front() : *place;
}

std::optional<JsonView> memberOf(const std::optional<JsonView> &object, QStringView name)
{
    return object ? object->member(name) : std::nullopt;
}

bool isObject(const std::optional<JsonView> &value)
{
    return value && value->kind() == JsonView::Kind::object;
}

bool isOnlyMcp(const std::optional<JsonView> &arguments)
{
    const std::vector<JsonView> words = arguments ? arguments->elements() : std::vector<JsonView>();
    return words.size() == 1 && words.front().text() == u"--mcp"_s;
}

} // namespace

MCPSetup::MCPSetup(const OtherPrograms &programs, QString command)
    : m_claudeDesktopFile(usedPlace(programs.claudeDesktopFiles()))
    , m_command(std::move(command))
{
}

QJsonObject MCPSetup::entry() const
{
    return {{u"command"_s, m_command}, {u"args"_s, QJsonArray{u"--mcp"_s}}};
}

QByteArray MCPSetup::otherAppsJSON() const
{
    return Json::compact(QJsonObject{{u"mcpServers"_s, QJsonObject{{u"vesk"_s, entry()}}}});
}

QString MCPSetup::claudeCommandLine() const
{
    return u"claude mcp add --scope user vesk -- \"" + m_command + u"\" --mcp";
}

/// The file's content, which is a JSON object; an empty one when there is no file.
QByteArray MCPSetup::read() const
{
    QByteArray content;
    try {
        content = Files::read(m_claudeDesktopFile);
    } catch (const FileError &error) {
        if (error.errorNumber() == ENOENT) {
            return "{}";
        }
        throw;
    }
    try {
        if (JsonView::parse(content).kind() == JsonView::Kind::object) {
            return content;
        }
    } catch (const DecodingError &) { // the same sentence for both: the file is the person's to repair
    }
    throw VeskError::claudeDesktopConfig();
}

MCPSetup::State MCPSetup::claudeDesktopState() const
{
    QByteArray content;
    try {
        content = read();
    } catch (const UserError &error) {
        return {State::Case::unreadable, error.errorDescription()};
    }
    const std::optional<JsonView> ours = memberOf(JsonView::parse(content).member(u"mcpServers"), u"vesk");
    if (!isObject(ours)) {
        return {State::Case::absent, {}};
    }
    const std::optional<JsonView> named = ours->member(u"command");
    const QString command = named ? named->text().value_or(QString()) : QString();
    if (command != m_command || !isOnlyMcp(ours->member(u"args"))) {
        return {State::Case::otherCopy, command};
    }
    return {State::Case::added, {}};
}

void MCPSetup::addToClaudeDesktop() const
{
    const QByteArray content = read();
    const JsonView settings = JsonView::parse(content);
    const QByteArray none = "{}";
    const JsonView servers = settings.member(u"mcpServers").value_or(JsonView::parse(none));
    const QByteArray ours = Json::compact(entry());
    const QByteArray changedServers = servers.withMember(u"vesk", ours);
    const QByteArray changed = settings.withMember(u"mcpServers", changedServers);

    const QString target = Files::linkTarget(m_claudeDesktopFile);
    const QByteArray path = QFile::encodeName(target);
    struct stat before = {};
    const bool isThere = ::stat(path.constData(), &before) == 0;
    Files::makeFolder(QFileInfo(target).path());
    Files::replace(target, JsonView::parse(changed).prettyPrinted());
    constexpr mode_t Permissions = 07777;
    if (isThere && ::chmod(path.constData(), before.st_mode & Permissions) != 0) {
        throw FileError(FileError::Operation::write, target, errno);
    }
}

} // namespace vesk
