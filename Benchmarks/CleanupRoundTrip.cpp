// What one exchange with the server costs on our side: the client's work, the loopback and the hand-over
// between threads, without the server's own share. The server runs on a thread of its own and answers at
// once; the connection is open.

#include "Server/ServerClient.h"
#include "Server/ServerConnection.h"
#include "Support/VeskServer.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QTemporaryFile>
#include <QThread>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace vesk;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

namespace {

class Machine final : public Host {
public:
    std::optional<QString> platformIdentifier() const override { return u"benchmark"_s; }
    std::optional<QString> localizedName() const override { return u"benchmark"_s; }
};

/// Vesk's server on a thread of its own.
class ServerThread {
public:
    ServerThread()
    {
        m_thread.start();
        m_anchor.moveToThread(&m_thread);
        QMetaObject::invokeMethod(
            &m_anchor, [this] { m_server = std::make_unique<VeskServer>(); }, Qt::BlockingQueuedConnection);
    }
    ~ServerThread()
    {
        QMetaObject::invokeMethod(&m_anchor, [this] { m_server.reset(); }, Qt::BlockingQueuedConnection);
        m_thread.quit();
        m_thread.wait();
    }

    QUrl baseURL() const { return m_server->baseURL(); }

    /// How long the server was busy with each request so far.
    std::vector<Milliseconds> shares()
    {
        std::vector<Milliseconds> shares;
        QMetaObject::invokeMethod(
            &m_anchor,
            [this, &shares] {
                for (const ReceivedRequest &request : m_server->requests()) {
                    shares.push_back(request.handling);
                }
            },
            Qt::BlockingQueuedConnection);
        return shares;
    }

private:
    QThread m_thread;
    QObject m_anchor;
    std::unique_ptr<VeskServer> m_server;
};

void print(const char *name, std::vector<Milliseconds> times)
{
    std::sort(times.begin(), times.end());
    const auto at = [&times](double part) {
        return times[static_cast<size_t>(part * static_cast<double>(times.size() - 1))].count();
    };
    std::printf("%-28s median %.3f ms, p95 %.3f ms, worst %.3f ms, of %zu\n", name, at(0.5), at(0.95), at(1),
                times.size());
}

/// Times `count` runs of an exchange and prints our share of each.
template <typename Exchange>
void measure(const char *name, ServerThread &server, int count, Exchange exchange)
{
    constexpr int WarmUp = 20; // opens the connection and fills the caches
    const size_t before = server.shares().size() + WarmUp;
    std::vector<Milliseconds> times;
    for (int i = 0; i < WarmUp + count; ++i) {
        const Clock::time_point start = Clock::now();
        QCoro::waitFor(exchange());
        if (i >= WarmUp) {
            times.push_back(Clock::now() - start);
        }
    }
    const std::vector<Milliseconds> shares = server.shares();
    for (size_t i = 0; i < times.size(); ++i) {
        times[i] -= shares.at(before + i);
    }
    print(name, std::move(times));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ServerThread server;
    const Machine machine;
    ServerConnection connection(machine);
    const ServerClient client(connection, server.baseURL(), VeskServer::validToken());

    FocusContext context;
    context.appName = u"Editor"_s;
    context.bundleID = u"org.editor"_s;
    context.textBefore = u"What stood there before. "_s.repeated(80);
    const QString transcript = u"um this is what a person says in a few seconds uh as a rule"_s;
    measure("cleanup", server, 1000, [&] { return client.cleanup(transcript, context, {u"Vesk"_s}); });

    QTemporaryFile recording;
    if (!recording.open() || recording.write(QByteArray(100'000, 'x')) < 0 || !recording.flush()) {
        std::fprintf(stderr, "no recording: %s\n", qPrintable(recording.errorString()));
        return 1;
    }
    measure("dictation, 100 kB recording", server, 300,
            [&] { return client.dictation(recording.fileName(), context, {u"Vesk"_s}); });
    return 0;
}
