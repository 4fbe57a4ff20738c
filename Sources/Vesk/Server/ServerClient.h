#pragma once

#include "Foundation/FocusContext.h"
#include "Foundation/Task.h"
#include "Server/MultipartBody.h"
#include "Server/ServerOperations.h"

#include <QNetworkRequest>
#include <QUrl>

#include <chrono>

namespace vesk {

class ServerConnection;
class ServerError;
enum class HttpMethod;

/// The one way in which the program talks to its server. A plain value: made anew for each operation, so that
/// a changed address or a new sign-in takes effect at once, copied freely, and free to go while its
/// operations run. Main thread; the connection must live until they have ended. Every operation fails with
/// ServerError when the server did not do it, and with DecodingError when its answer is not the promised
/// one. None tries again.
class ServerClient {
public:
    ServerClient(ServerConnection &connection, QUrl baseURL, std::optional<QString> token);

    /// A client of the stored settings and the stored sign-in. Settings that cannot be read, and an address
    /// that is none, count as the defaults.
    static ServerClient current(ServerConnection &connection);

    const QUrl &baseURL() const { return m_baseURL; }
    /// Nothing while nobody is signed in.
    const std::optional<QString> &token() const { return m_token; }

    /// The transcript, put into the shape that its field wants.
    Task<QString> cleanup(const QString &text, const std::optional<FocusContext> &context,
                          const QStringList &vocabulary) const;

    /// Uploads a recording. Also fails with FileError, then nothing is sent.
    Task<Dictated> dictation(const QString &audioFile, const std::optional<FocusContext> &context,
                             const QStringList &vocabulary) const;

    /// Rewrites a selection. Also fails with FileError, then nothing is sent.
    Task<Commanded> command(const QString &selection, const Instruction &instruction,
                            const std::optional<FocusContext> &context, const QStringList &vocabulary) const;

    Task<NoteSummary> noteSummary(const NoteMaterial &note, const QStringList &vocabulary) const;

    /// `elapsed`: since the note's recording started. MissedQuestion asks for a catch-up.
    Task<QString> noteAnswer(const QString &question, const NoteMaterial &note,
                             std::chrono::duration<double> elapsed, const QStringList &vocabulary) const;

    /// One question about many notes.
    Task<QString> notesAnswer(const QString &question, const QList<NoteMaterial> &notes,
                              const QStringList &vocabulary) const;

    /// Has a letter with a sign-in link sent to the address.
    Task<Started> startSignIn(const QString &email) const;
    Task<Poll> poll(const QString &request) const;
    Task<> signOut() const;
    Task<Account> account() const;

private:
    using Seconds = std::chrono::seconds;

    /// Undefined members of `json` do not exist, so an absent value is never sent as null.
    Task<JsonReader> send(const QString &path, HttpMethod method, const std::optional<QJsonObject> &json,
                          Seconds timeout) const;
    Task<JsonReader> send(const QString &path, const MultipartBody::Fields &form,
                          const std::optional<QString> &audioFile) const;
    QNetworkRequest request(const QString &path, Seconds timeout) const;

    static Task<JsonReader> upload(ServerConnection &connection, QNetworkRequest request,
                                   MultipartBody::Fields form, std::optional<QString> audioFile);
    static Task<JsonReader> perform(ServerConnection &connection, HttpMethod method, QNetworkRequest request,
                                    QByteArray body);
    /// A value as the text of a form field; "null" for what is undefined.
    static QString json(const QJsonValue &value);
    static ServerError error(int status, const QByteArray &body);

    ServerConnection *m_connection;
    QUrl m_baseURL;
    std::optional<QString> m_token;
};

} // namespace vesk
