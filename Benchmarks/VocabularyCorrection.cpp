// How long correction takes with a large vocabulary, and what it does to prose that nobody dictated.
//
//   vesk_vocabulary_correction [--benchmark_...] [file or folder of English prose]...
//
// Without files it reads the licence texts that the system keeps. Every replacement by sound is printed: in
// prose without the names of people there should be none.
#include "Platform/Linux/Speech/VocabularyCorrection.h"

#include "Platform/Linux/Speech/Vocabulary/Letters.h"
#include "Platform/Linux/Speech/Vocabulary/VocabularyMatch.h"
#include "Platform/Linux/Speech/Vocabulary/WordLists.h"

#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QStandardPaths>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <numeric>

using namespace Qt::StringLiterals;
using namespace vesk;

namespace {

const QStringList TypicalVocabulary{
    u"Zürich"_s,       u"QCoro"_s,         u"Nadezhda"_s,  u"PostgreSQL"_s, u"Kubernetes"_s,
    u"PulseAudio"_s,   u"Vesk"_s,          u"Thera"_s,     u"Kroner"_s,     u"Siobhan"_s,
    u"Łukasz"_s,       u"O'Shaughnessy"_s, u"H264"_s,      u"Qt"_s,         u"kubectl"_s,
    u"Will"_s,         u"May"_s,           u"Rust"_s,      u"Redis"_s,      u"Светлана"_s,
    u"Ljubljana"_s,    u"Node.js"_s,       u"Müller"_s,    u"Marc"_s,       u"macOS"_s,
    u"Olga Petrova"_s, u"YouTube"_s,       u"NoSQL"_s,     u"OnePlus"_s,    u"Wireshark"_s,
    u"Keycloak"_s,     u"FFmpeg"_s,        u"CMake"_s,     u"GStreamer"_s,  u"SQLite"_s,
    u"RabbitMQ"_s,     u"GraphQL"_s,       u"PyTorch"_s,   u"KeePassXC"_s,  u"Tchaikovsky"_s,
    u"Atorvastatin"_s, u"Omeprazole"_s,    u"Reykjavík"_s, u"Gdańsk"_s,     u"Dvořák"_s,
    u"McAllister"_s,   u"Mario"_s,         u"Oleksandr"_s, u"Wayland"_s,    u"systemd"_s,
    u"Grafana"_s,      u"Jira"_s,          u"Catherine"_s, u"Anneliese"_s,  u"Jürgen"_s,
    u"Ayşe"_s,         u"Ilya"_s,          u"Zapier"_s,    u"Emacs"_s,      u"Kafka"_s,
};

/// Names from all over the alphabet.
QStringList largeVocabulary(qsizetype count)
{
    const QStringList names = QString::fromLatin1(WordLists::Names.data(), qsizetype(WordLists::Names.size()))
                                  .split(u'\n', Qt::SkipEmptyParts);
    QStringList vocabulary;
    for (qsizetype i = 0; i < count; ++i) {
        QString name = names.at(i * names.size() / count);
        name.front() = name.front().toUpper();
        vocabulary << name;
    }
    return vocabulary;
}

const QString Speech =
    u"We talked about Cubanetes yesterday and Wukash said that the rabbit mq cluster in zurich needs "
    u"more memory before post gress queue ell can move there, which I find hard to believe at all"_s;
const QString Gibberish =
    u"Nageda kshishtov olksener brovasky trinolet vandrush kolmari stemberg liffard droscoe "
    u"pelinar gartosh winnebar stolkin jarvoss menthru caldrin foskett brannika olvery "
    u"tresk morvane pilchart sundrick havlora grentish yostle dranquin ketterby lumosk"_s;

void makeIndex(benchmark::State &state)
{
    const QStringList vocabulary = largeVocabulary(state.range(0));
    for (auto _ : state) {
        VocabularyCorrection correction(vocabulary);
        benchmark::DoNotOptimize(&correction);
    }
}

void correct(benchmark::State &state, const QString &text)
{
    const VocabularyCorrection correction(largeVocabulary(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(correction.corrected(text));
    }
    state.counters["words"] = double(text.count(u' ') + 1);
}

BENCHMARK(makeIndex)->Arg(60)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(correct, speech, Speech)->Arg(60)->Arg(5000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(correct, wordsOfNoLanguage, Gibberish)->Arg(60)->Arg(5000)->Unit(benchmark::kMicrosecond);

QStringList filesBelow(const QStringList &places)
{
    QStringList files;
    for (const QString &place : places) {
        if (!QFileInfo(place).isDir()) {
            files << place;
            continue;
        }
        for (QDirIterator it(place, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) {
            files << it.next();
        }
    }
    return files;
}

struct Tally {
    qsizetype words = 0;
    qsizetype byLetters = 0;
    QMap<QString, int> bySound;
};

void count(const VocabularyIndex &index, const QString &text, Tally &tally)
{
    const std::vector<HeardWord> words = heardWords(text);
    tally.words += qsizetype(words.size());
    for (const VocabularyMatch &match : vocabularyMatches(index, words)) {
        const HeardWord &last = words[match.first + match.count - 1];
        const qsizetype begin = words[match.first].begin;
        const QString heard = text.mid(begin, (match.coversEnding ? last.end : last.stemEnd) - begin);
        const bool isSpelled =
            std::ranges::count(match.entry->keys, Letters::key(heard)) > 0 || match.isPlural;
        if (isSpelled) {
            tally.byLetters += match.entry->isOrdinary ? 0 : 1;
        } else {
            ++tally.bySound[heard + u" -> "_s + match.entry->written];
        }
    }
}

int reportProse(const QStringList &places)
{
    std::vector<VocabularyEntry> entries;
    for (const QString &text : TypicalVocabulary) {
        entries.push_back(*VocabularyEntry::make(text));
    }
    const VocabularyIndex index(std::move(entries));
    Tally tally;
    for (const QString &name : filesBelow(places)) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(name), qPrintable(file.errorString()));
            return 1;
        }
        while (!file.atEnd()) {
            count(index, QString::fromUtf8(file.readLine()), tally);
        }
    }
    const auto bySound = std::accumulate(tally.bySound.begin(), tally.bySound.end(), 0);
    std::printf("\nprose: %lld words, %lld entries; respelled by their letters %lld, replaced by sound %d\n",
                qlonglong(tally.words), qlonglong(TypicalVocabulary.size()), qlonglong(tally.byLetters),
                bySound);
    for (const auto &[what, times] : tally.bySound.asKeyValueRange()) {
        std::printf("  %5d  %s\n", times, qPrintable(what));
    }
    return tally.words == 0 ? 1 : 0;
}

} // namespace

int main(int count, char **arguments)
{
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    QStringList places;
    for (int i = 1; i < count; ++i) {
        places << QString::fromLocal8Bit(arguments[i]);
    }
    if (places.isEmpty()) {
        places = QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, u"common-licenses"_s,
                                           QStandardPaths::LocateDirectory);
    }
    return reportProse(places);
}
