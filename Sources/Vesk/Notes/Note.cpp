#include "Notes/Note.h"

#include "Foundation/Config.h"
#include "Foundation/ParallelFor.h"
#include "Notes/NoteDecoder.h"
#include "Notes/NoteFolder.h"

#include <algorithm>
#include <cmath>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// Whole seconds, cut off toward zero. A file may hold any number; those beyond every recording stay within
/// what an integer holds.
qint64 wholeSeconds(double seconds)
{
    constexpr double Most = 1e15;
    return static_cast<qint64>(std::clamp(seconds, -Most, Most));
}

} // namespace

const QString &Note::folder()
{
    static const QString path = Config::directory() + u"/Notes";
    return path;
}

QString Note::identifier(const QUuid &id) { return id.toString(QUuid::WithoutBraces).toUpper(); }

std::optional<QUuid> Note::identity(QAnyStringView text)
{
    constexpr qsizetype Length = 36; // Qt also takes other forms, with braces
    const QUuid id = text.size() == Length ? QUuid::fromString(text) : QUuid();
    const bool isNull = id.isNull() && text != u"00000000-0000-0000-0000-000000000000";
    return isNull ? std::nullopt : std::optional(id);
}

QString Note::file(const QUuid &id) { return folder() + u'/' + identifier(id) + u".json"; }

QList<Note> Note::readAll()
{
    const NoteFolder folder(Note::folder());
    std::vector<std::optional<Note>> read(folder.size());
    folder.forEach(workersForAllCores(), [&](NoteReader &reader, std::size_t index, unsigned) {
        NoteDecoder decoder;
        if (folder.read(reader, index, decoder)) {
            read[index] = decoder.takeNote();
        }
    });
    QList<Note> notes;
    for (std::optional<Note> &note : read) {
        if (note) {
            notes.append(*std::move(note));
        }
    }
    std::stable_sort(notes.begin(), notes.end(),
                     [](const Note &a, const Note &b) { return a.created > b.created; });
    return notes;
}

QString Note::displayTitle() const { return displayTitle(title); }

QString Note::displayTitle(const QString &title) { return title.trimmed().isEmpty() ? u"New note"_s : title; }

QString Note::transcriptText() const
{
    const auto isFrom = [](Source source) {
        return [source](const Segment &segment) { return segment.source == source; };
    };
    const bool hasLabels = std::any_of(segments.begin(), segments.end(), isFrom(Source::me))
        && std::any_of(segments.begin(), segments.end(), isFrom(Source::them));
    QStringList lines;
    for (const Segment &segment : segments) {
        const QString label = hasLabels ? QString(u' ' + speaker(segment.source) + u':') : QString();
        lines.append(u'[' + clock(segment.start) + u']' + label + u' ' + segment.text);
    }
    return lines.join(u'\n');
}

QString Note::length(double seconds)
{
    constexpr double Minute = 60;
    if (seconds < Minute) {
        return QString::number(wholeSeconds(seconds)) + u" s";
    }
    const qint64 minutes = wholeSeconds(std::round(seconds / Minute));
    if (minutes < 60) {
        return QString::number(minutes) + u" min";
    }
    return u"%1 h %2 min"_s.arg(minutes / 60).arg(minutes % 60);
}

QString Note::clock(double seconds)
{
    const qint64 whole = wholeSeconds(seconds);
    if (whole < 3600) {
        return QString::asprintf("%lld:%02lld", whole / 60, whole % 60);
    }
    return QString::asprintf("%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
}

QStringView Note::speaker(Source source) { return source == Source::me ? u"Me" : u"Them"; }

} // namespace vesk
