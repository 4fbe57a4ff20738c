// How long a person waits for the text after letting the key go, and how many words are heard wrong when
// clips are recognised while they are spoken.
//
//   vesk_live_finish FOLDER [--fast] [--pieces] [--heard FILE] [--hold MINUTES]
//
// FOLDER holds clips: 16 kHz, one channel, any container. Each is fed at its own speed up to 150 ms after its
// last word, as the voice activity detector hears it, then finish() is timed. --fast feeds as fast as
// possible: the stretches, and so the words, are the same, the times mean nothing. --heard writes a table of
// file name, tab, text for a program that counts wrong words. --hold plays the clips over and over for so
// long and prints the memory meanwhile.
#include "Dictation/Transcriber.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Speech/FfmpegAudioConverter.h"
#include "Platform/Linux/Speech/FfmpegAudioFiles.h"
#include "Platform/Linux/Speech/SherpaSpeechModels.h"
#include "Platform/Linux/Speech/StretchCutter.h"
#include "Platform/Linux/Speech/VoiceActivity.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstdio>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace vesk;

namespace {

constexpr int Rate = 16000;
constexpr std::size_t BlockFrames = 320; // 20 ms, as sound servers deliver it
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

double processorMilliseconds()
{
    rusage used = {};
    getrusage(RUSAGE_SELF, &used);
    const auto of = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return of(used.ru_utime) + of(used.ru_stime);
}

/// What of this process is in memory, in MiB.
double residentMemory()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> fields = file.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toDouble() * double(sysconf(_SC_PAGESIZE)) / (1 << 20) : 0;
}

double percentile(std::vector<double> values, double share)
{
    std::ranges::sort(values);
    const auto at = std::size_t(double(values.size()) * share);
    return values.empty() ? 0 : values[std::min(values.size() - 1, at)];
}

std::vector<float> samplesOf(FfmpegAudioFiles &files, const QString &path)
{
    std::vector<float> samples;
    const auto reader = files.openForReading(path);
    while (const auto block = reader->read()) {
        samples.insert(samples.end(), block->samples.begin(), block->samples.end());
    }
    return samples;
}

/// The sound up to 150 ms after its last word; quiet noise goes on where the clip does not.
void letGoAfterTheLastWord(std::vector<float> &samples, const QString &voiceActivityModel)
{
    VoiceActivity voiceActivity(voiceActivityModel, VoiceActivity::Live);
    std::size_t last = 0;
    for (std::size_t at = 0; at + StretchCutter::Window <= samples.size(); at += StretchCutter::Window) {
        if (voiceActivity.isSpeech(std::span(samples).subspan(at, StretchCutter::Window))) {
            last = at + StretchCutter::Window;
        }
    }
    const std::size_t end = last + Rate * 15 / 100;
    std::uint32_t state = 1;
    while (samples.size() < end) {
        state = state * 1664525U + 1013904223U;
        samples.push_back((float(state >> 8) / float(1U << 24) - 0.5F) * 0.001F);
    }
    samples.resize(end);
}

/// Feeds blocks, each when its last sample would have been spoken.
void play(SpeechAnalyzer &analyzer, const std::vector<float> &samples, bool isFast)
{
    const auto begin = Clock::now();
    for (std::size_t at = 0; at < samples.size(); at += BlockFrames) {
        const std::size_t end = std::min(samples.size(), at + BlockFrames);
        if (!isFast) {
            std::this_thread::sleep_until(begin + std::chrono::microseconds(end * 1'000'000 / Rate));
        }
        analyzer.feed(
            {{Rate, 1}, {samples.begin() + std::ptrdiff_t(at), samples.begin() + std::ptrdiff_t(end)}});
    }
}

struct Heard {
    QString file;
    QString text;
    double seconds = 0;
    double finish = 0;    ///< ms
    double processor = 0; ///< of one core, while speaking
};

struct Options {
    bool isFast = false;
    bool showsPieces = false;
    double holdMinutes = 0;
};

Task<Heard> hear(SpeechModels &models, QString name, std::vector<float> samples, Options options)
{
    const auto analyzer = models.makeAnalyzer(u"en-US"_s);
    Heard heard = {name, {}, double(samples.size()) / Rate};
    analyzer->start();
    const double before = processorMilliseconds();
    play(*analyzer, samples, options.isFast);
    heard.processor = (processorMilliseconds() - before) / (heard.seconds * 10);
    const auto released = Clock::now();
    analyzer->finish();
    const auto onPiece = [&](const SpeechResult &piece) {
        if (options.showsPieces) {
            std::printf("%s\t%.2f\t%.2f\t%s\n", qPrintable(name), piece.start.count(), piece.end.count(),
                        qPrintable(piece.text));
        }
    };
    heard.text = co_await Transcriber::collect(*analyzer, onPiece);
    heard.finish = milliseconds(Clock::now() - released);
    co_return heard;
}

void report(const char *what, const std::vector<Heard> &all, double from, double to)
{
    std::vector<double> finishes;
    double processor = 0;
    for (const Heard &heard : all) {
        if (heard.seconds >= from && heard.seconds < to) {
            finishes.push_back(heard.finish);
            processor += heard.processor;
        }
    }
    std::printf("%-9s %2zu clips: finish %3.0f ms median, %3.0f ms p95, %3.0f ms worst; %.0f %% of a core "
                "while speaking\n",
                what, finishes.size(), percentile(finishes, 0.5), percentile(finishes, 0.95),
                percentile(finishes, 1), processor / std::max(1.0, double(finishes.size())));
}

/// One press held for a long time.
Task<> hold(SpeechModels &models, std::vector<std::vector<float>> clips, Options options)
{
    const auto analyzer = models.makeAnalyzer(u"en-US"_s);
    analyzer->start();
    double spoken = 0;
    double reported = 0;
    std::printf("hold: %.0f MiB at the press\n", residentMemory());
    for (std::size_t i = 0; spoken < options.holdMinutes * 60; ++i) {
        play(*analyzer, clips[i % clips.size()], options.isFast);
        spoken += double(clips[i % clips.size()].size()) / Rate;
        if (spoken - reported >= 60) {
            std::printf("hold: %.0f MiB after %.1f minutes\n", residentMemory(), spoken / 60);
            std::fflush(stdout);
            reported = spoken;
        }
    }
    const auto released = Clock::now();
    analyzer->finish();
    const QString text = co_await Transcriber::collect(*analyzer);
    std::printf("hold: %lld characters, finish %.0f ms, %.0f MiB\n", qlonglong(text.size()),
                milliseconds(Clock::now() - released), residentMemory());
}

Task<> run(QString folder, QString voiceActivityModel, SpeechModels &models, FfmpegAudioFiles &files,
           Options options, QString table)
{
    std::printf("memory: %.0f MiB at launch\n", residentMemory());
    co_await models.prepare(u"en-US"_s);
    std::printf("memory: %.0f MiB with the model\n", residentMemory());
    std::vector<Heard> all;
    std::vector<std::vector<float>> clips;
    const QStringList filters(u"*.wav"_s);
    for (const QString &name : QDir(folder).entryList(filters, QDir::Files, QDir::Name)) {
        std::vector<float> samples = samplesOf(files, folder + u'/' + name);
        letGoAfterTheLastWord(samples, voiceActivityModel);
        clips.push_back(samples);
        if (options.holdMinutes > 0) {
            continue;
        }
        all.push_back(co_await hear(models, name, std::move(samples), options));
    }
    if (options.holdMinutes > 0) {
        co_await hold(models, std::move(clips), options);
    } else {
        report("3-6 s", all, 3, 6.5);
        report("8-12 s", all, 8, 12.5);
        report("all", all, 0, 1e9);
        std::printf("memory: %.0f MiB\n", residentMemory());
    }
    if (QFile file(table); !table.isEmpty() && file.open(QIODevice::WriteOnly)) {
        for (const Heard &heard : all) {
            file.write(QString(heard.file + u'\t' + heard.text + u'\n').toUtf8());
        }
    }
    QCoreApplication::quit();
}

} // namespace

int main(int count, char **arguments)
{
    QCoreApplication application(count, arguments);
    QCommandLineParser parser;
    parser.addPositionalArgument(u"folder"_s, u"the clips"_s);
    parser.addOption({u"fast"_s, u"feed as fast as possible"_s});
    parser.addOption({u"pieces"_s, u"print each piece with its place"_s});
    parser.addOption({u"heard"_s, u"write what was heard"_s, u"file"_s});
    parser.addOption({u"hold"_s, u"one press, so long"_s, u"minutes"_s});
    parser.addHelpOption();
    parser.process(application);
    if (parser.positionalArguments().isEmpty()) {
        parser.showHelp(1);
    }
    const QString speech = QCoreApplication::applicationDirPath() + u"/../share/vesk/speech"_s;
    FfmpegAudioConverters converters;
    FfmpegAudioFiles files;
    SherpaSpeechModels models({speech + u"/models"_s, speech + u"/added"_s}, converters);
    const Options options = {parser.isSet(u"fast"_s), parser.isSet(u"pieces"_s),
                             parser.value(u"hold"_s).toDouble()};
    QMetaObject::invokeMethod(
        &application,
        [&] {
            launch(u"benchmark"_s,
                   run(parser.positionalArguments().constFirst(), speech + u"/silero_vad.onnx"_s, models,
                       files, options, parser.value(u"heard"_s)));
        },
        Qt::QueuedConnection);
    return QCoreApplication::exec();
}
