#include "Platform/Linux/Accessibility/DesktopEntries.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QSet>

#include <algorithm>

namespace vesk {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 LongestFile = 1 << 20; // no desktop file is; what lies in the folder may be anything
const QString Suffix = u".desktop"_s;

/// Starts other programs, so its name says nothing about the window that appears.
bool isLauncher(const QString &program)
{
    static const QSet<QString> launchers = {u"sh"_s,     u"bash"_s, u"env"_s,  u"flatpak"_s,
                                            u"snap"_s,   u"perl"_s, u"java"_s, u"gjs"_s,
                                            u"pkexec"_s, u"sudo"_s, u"wine"_s, u"electron"_s};
    return launchers.contains(program) || program.startsWith(u"python"); // with or without a version
}

QMap<QString, QString> readKeys(QFile &file)
{
    QMap<QString, QString> keys;
    bool isEntry = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(u'[')) {
            isEntry = line == u"[Desktop Entry]";
        } else if (isEntry && !line.startsWith(u'#')) {
            const qsizetype equals = line.indexOf(u'=');
            if (equals > 0) {
                keys.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
            }
        }
    }
    return keys;
}

QString localizedName(const QMap<QString, QString> &keys, const QString &locale)
{
    const QString candidates[] = {u"Name["_s + locale + u']', u"Name["_s + locale.section(u'_', 0, 0) + u']'};
    for (const QString &key : candidates) {
        if (!keys.value(key).isEmpty()) {
            return keys.value(key);
        }
    }
    return keys.value(u"Name"_s);
}

std::optional<DesktopEntry> readEntry(const QString &path, const QString &id, const QString &locale)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LongestFile) {
        return std::nullopt;
    }
    const QMap<QString, QString> keys = readKeys(file);
    const auto isTrue = [&keys](const QString &key) { return keys.value(key) == u"true"; };
    if (keys.value(u"Type"_s) != u"Application" || isTrue(u"Hidden"_s)) {
        return std::nullopt;
    }
    const QStringList command = keys.value(u"Exec"_s).split(u' ', Qt::SkipEmptyParts);
    QString program = command.value(0);
    program = program.remove(u'"').section(u'/', -1);
    const bool hasOptions =
        std::any_of(command.begin() + std::min<qsizetype>(1, command.size()), command.end(),
                    [](const QString &word) { return !word.startsWith(u'%'); });
    return DesktopEntry{id, localizedName(keys, locale), keys.value(u"StartupWMClass"_s),
                        isLauncher(program) ? QString() : program, !hasOptions && !isTrue(u"NoDisplay"_s)};
}

bool isSame(const QString &one, const QString &other)
{
    return !one.isEmpty() && one.compare(other, Qt::CaseInsensitive) == 0;
}

} // namespace

DesktopEntries DesktopEntries::read(const QStringList &folders, const QString &locale)
{
    DesktopEntries entries;
    QSet<QString> seen;
    for (const QString &folder : folders) {
        const QDir root(folder);
        QDirIterator files(folder, {u'*' + Suffix}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            // A folder below is part of the id, with a hyphen for the slash.
            const QString id = root.relativeFilePath(path).chopped(Suffix.size()).replace(u'/', u'-');
            if (seen.contains(id)) {
                continue;
            }
            seen.insert(id);
            if (auto entry = readEntry(path, id, locale)) {
                entries.m_entries.push_back(std::move(*entry));
            }
        }
    }
    std::ranges::stable_partition(entries.m_entries, &DesktopEntry::isPlain);
    return entries;
}

const DesktopEntry *DesktopEntries::find(const WindowDescription &window, const QString &executable) const
{
    const auto named = [&window](const QString &text) {
        return isSame(text, window.className) || isSame(text, window.instance);
    };
    // From what the program says itself to what merely fits.
    const std::function<bool(const DesktopEntry &)> matches[] = {
        [&](const DesktopEntry &entry) { return isSame(window.applicationId, entry.id); },
        [&](const DesktopEntry &entry) { return named(entry.windowClass); },
        [&](const DesktopEntry &entry) { return named(entry.id); },
        [&](const DesktopEntry &entry) { return named(entry.id.section(u'.', -1)); },
        [&](const DesktopEntry &entry) { return isSame(entry.program, executable); },
        [&](const DesktopEntry &entry) { return named(entry.program); },
    };
    for (const auto &match : matches) {
        const auto found = std::ranges::find_if(m_entries, match);
        if (found != m_entries.end()) {
            return &*found;
        }
    }
    return nullptr;
}

} // namespace vesk
