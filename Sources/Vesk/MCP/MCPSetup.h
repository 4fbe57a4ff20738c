#pragma once

#include "Platform/OtherPrograms.h"

#include <QByteArray>
#include <QJsonObject>

namespace vesk {

/// Tells AI applications of the notes server: reads and edits Claude Desktop's own settings, and gives the
/// words to copy for others. The person's file is edited, never rewritten by guess: on any doubt it is left
/// alone. Blocking, main thread.
class MCPSetup {
public:
    /// What Claude Desktop's file says about this server.
    struct State {
        enum class Case {
            otherCopy,  ///< the entry names another program, or other arguments
            unreadable, ///< the file cannot be read, or is no JSON object
            absent,
            added,
        };

        Case stateCase = Case::absent;
        QString text; ///< of otherCopy the command that stands there, of unreadable the reason

        friend bool operator==(const State &, const State &) = default;
    };

    /// `command` is the path of this program's executable.
    MCPSetup(const OtherPrograms &programs, QString command);

    /// The file that is there, else the one whose folder is, else the first of all places.
    const QString &claudeDesktopFile() const { return m_claudeDesktopFile; }
    const QString &command() const { return m_command; }

    /// What a client's settings say of this server.
    QJsonObject entry() const;
    /// The same as text to copy into another application's settings.
    QByteArray otherAppsJSON() const;
    /// What to type where the claude command-line tool is.
    QString claudeCommandLine() const;

    State claudeDesktopState() const;

    /// Adds or replaces this server's entry. Everything else in the file keeps its value and its spelling,
    /// but members are sorted; the file's permissions stay; a link to it stays one. Throws VeskError or
    /// FileError, and then nothing was written.
    void addToClaudeDesktop() const;

private:
    QByteArray read() const;

    QString m_claudeDesktopFile;
    QString m_command;
};

} // namespace vesk
