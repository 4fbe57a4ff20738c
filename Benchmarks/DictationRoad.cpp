// How long after the release of the key the words can be read in a real editor, and how many are wrong, when
// recorded people speak into the virtual microphone of a private desktop at their own speed. The application
// is driven as it is installed: by keys. The key is pressed 0.1 s before a clip begins and let go 0.2 s after
// its end; the reader is a program of its own.
//
//   vesk_dictation_road [--road mac|cleanup|upload] [--count N] [--heard FILE] CLIP...
//
// The clips are said in turn until there were N dictations. With the roads cleanup and upload a server on the
// loopback answers after 0.1 s. --heard writes a table of file name, tab, text for a program that counts
// wrong words.

#include "Desktop/Peer.h"
#include "Desktop/ShippedApplication.h"
#include "DesktopProgram.h"
#include "Dictation/HistoryStore.h"
#include "Foundation/Config.h"
#include "ProcessFigures.h"
#include "Server/AccountFile.h"
#include "Support/VeskServer.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>

namespace {

using namespace vesk;
using namespace Qt::StringLiterals;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr auto ServerTime = std::chrono::milliseconds(100);
constexpr double BucketWidth = 25; // milliseconds

struct Options {
    QString road = u"mac"_s;
    int count = 0;
    QStringList clips;
};

struct Times {
    std::vector<double> readable; ///< in the order of the dictations
    QByteArray heard;
    int lost = 0; ///< dictations after which nothing came
};

void configure(const Options &options, VeskServer &server)
{
    Config config;
    config.speech = options.road == u"upload" ? u"cloud"_s : u"mac"_s;
    config.cleanup = options.road == u"cleanup";
    config.serverURL = server.baseURL().toString();
    config.write();
    if (options.road == u"mac") {
        AccountFile::remove();
        return;
    }
    AccountFile{VeskServer::validToken(), u"someone@example.com"_s}.write();
    Script script;
    script.answer = {200, R"({"text":"What the server made of it.","raw":"what it heard","words":6})", {}};
    script.delay = ServerTime;
    server.script(options.road == u"upload" ? "dictation" : "cleanup", script);
}

Times measure(const Options &options)
{
    VeskServer server;
    configure(options, server);
    test::Screen screen;
    const auto editor = test::startMousepad(screen);
    test::ShippedApplication application(QCoreApplication::applicationDirPath() + u"/vesk");
    std::printf("memory with the model: %.0f MiB\n", ProcessFigures::memory(application.processId()));
    test::Process reader(
        u"/usr/bin/python3"_s,
        {{QStringLiteral(VESK_TEST_PEERS "/insertion_times.py"), QString::number(editor->process().id())},
         QProcess::SeparateChannels,
         {},
         {}});
    reader.readLine();
    Times times;
    for (int i = 0; i < options.count; ++i) {
        const QString &clip = options.clips[i % options.clips.size()];
        const auto released = application.dictate(clip);
        test::ShippedApplication::waitForLog(" dictation ", i + 1); // the loopback server answers meanwhile
        try {
            const QByteArray line = reader.readLine(std::chrono::seconds(5));
            const std::chrono::nanoseconds read(line.left(line.indexOf(' ')).toLongLong());
            times.readable.push_back(Milliseconds(read - released.time_since_epoch()).count());
            times.heard +=
                QFileInfo(clip).fileName().toUtf8() + '\t' + line.mid(line.indexOf(' ') + 1) + '\n';
        } catch (const std::runtime_error &) {
            std::printf("%s: nothing came\n", qPrintable(QFileInfo(clip).fileName()));
            ++times.lost;
        }
        test::pause(std::chrono::seconds(1)); // the clipboard goes back
        if ((i + 1) % 50 == 0 || i + 1 == options.count) {
            std::printf("memory after %d dictations: %.0f MiB\n", i + 1,
                        ProcessFigures::memory(application.processId()));
        }
    }
    const HistoryStore history;
    std::printf("history: %lld entries; files left behind: %lld; lines of the log: %lld\n",
                static_cast<long long>(history.entries().size()),
                static_cast<long long>(QDir::temp().entryList({u"vesk-*"_s}, QDir::Files).size()),
                static_cast<long long>(test::ShippedApplication::log().count("dictation how=")));
    return times;
}

void print(Times times)
{
    if (times.readable.empty()) {
        return;
    }
    std::printf("first dictation after the launch: %.0f ms\n", times.readable.front());
    std::ranges::sort(times.readable);
    const auto at = [&times](double share) {
        return times
            .readable[static_cast<std::size_t>(share * static_cast<double>(times.readable.size() - 1))];
    };
    std::printf(
        "release -> text readable: median %.0f ms, p95 %.0f ms, worst %.0f ms; %zu dictations, %d lost\n",
        at(0.5), at(0.95), times.readable.back(), times.readable.size(), times.lost);
    for (double from = 0; from <= times.readable.back(); from += BucketWidth) {
        const auto count = std::ranges::count_if(
            times.readable, [from](double time) { return time >= from && time < from + BucketWidth; });
        if (count > 0) {
            std::printf("%4.0f ms %4lld %s\n", from, static_cast<long long>(count),
                        std::string(static_cast<std::size_t>(count), '#').c_str());
        }
    }
}

int run(const QStringList &words)
{
    QCommandLineParser parser;
    const QCommandLineOption heardFile(u"heard"_s, {}, u"file"_s);
    const QCommandLineOption road(u"road"_s, {}, u"road"_s, u"mac"_s);
    const QCommandLineOption count(u"count"_s, {}, u"number"_s);
    parser.addOptions({heardFile, road, count});
    parser.process(QStringList(QCoreApplication::applicationName()) + words);
    Options options{parser.value(road), parser.value(count).toInt(), parser.positionalArguments()};
    if (options.clips.isEmpty()
        || !QStringList({u"mac"_s, u"cleanup"_s, u"upload"_s}).contains(options.road)) {
        std::fprintf(stderr,
                     "usage: vesk_dictation_road [--road mac|cleanup|upload] [--count N] [--heard FILE] "
                     "CLIP...\n");
        return 2;
    }
    options.count = options.count > 0 ? options.count : static_cast<int>(options.clips.size());
    const Times times = measure(options);
    print(times);
    QFile file(parser.value(heardFile));
    if (parser.isSet(heardFile) && file.open(QIODevice::WriteOnly)) {
        file.write(times.heard);
    }
    return times.lost == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) { return test::runOnPrivateDesktop(argc, argv, run); }
