#pragma once

#include "Foundation/JsonView.h"
#include "MCP/NoteTools.h"

namespace vesk {

/// Lets AI applications read the notes: JSON-RPC over two descriptors, one message a line, each answered
/// before the next is read. Remembers nothing between requests, writes no file, knows no network. Needs no
/// application object and no event loop.
class MCPServer {
public:
    explicit MCPServer(QString notesFolder)
        : m_tools(std::move(notesFolder))
    {
    }

    /// Answers until the input ends, and returns the process's exit status: 0, or 1 when the output takes no
    /// more. Announces itself on standard error. Blocking.
    int run(int input, int output);

    /// The answer to one line, without a line feed; nothing when it wants none.
    std::optional<QByteArray> reply(QByteArrayView line) const;

private:
    std::optional<QByteArray> answer(const JsonView &message) const;
    static QJsonObject initialize(const std::optional<JsonView> &params);
    QByteArray call(QByteArrayView id, const std::optional<JsonView> &params) const;

    NoteTools m_tools;
};

/// Serves the notes over standard input and output until the input ends; returns the process's exit status.
/// Whatever else the process prints to standard output goes to standard error from here on.
int serveNotes();

} // namespace vesk
