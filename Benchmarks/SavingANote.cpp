// How long the main thread is busy when a note of one hour has changed and is saved, as it is for every
// segment that is spoken. Uses a folder of its own.

#include "Notes/NotesStore.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

using namespace vesk;

Note noteOfAnHour()
{
    Note note;
    for (int i = 0; i < 700; ++i) {
        note.segments.append(
            {i * 5.0, i % 2 == 0 ? Note::Source::me : Note::Source::them,
             QStringLiteral("what is said in five seconds, и на двата езика, и/or так").repeated(2)});
    }
    return note;
}

void savingAChangedNoteOfAnHour(benchmark::State &state)
{
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    NotesStore store;
    Note note = noteOfAnHour();
    store.save(note);
    int counted = 0;
    for (auto _ : state) {
        note.segments.back().text = QString::number(++counted);
        store.save(note);
        state.PauseTiming();
        store.flush();
        state.ResumeTiming();
    }
}

/// The same with the time of the file's own thread: what is lost at most when the power fails.
void savingUntilItIsOnDisk(benchmark::State &state)
{
    NotesStore store;
    Note note = noteOfAnHour();
    int counted = 0;
    for (auto _ : state) {
        note.segments.back().text = QString::number(++counted);
        store.save(note);
        store.flush();
    }
}

} // namespace

BENCHMARK(savingAChangedNoteOfAnHour)->Unit(benchmark::kMillisecond)->Iterations(100);
BENCHMARK(savingUntilItIsOnDisk)->Unit(benchmark::kMillisecond)->Iterations(100)->UseRealTime();
BENCHMARK_MAIN();
