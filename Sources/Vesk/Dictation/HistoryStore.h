#pragma once

#include "Dictation/Dictation.h"
#include "Foundation/SerialQueue.h"

#include <QList>
#include <QObject>

#include <functional>

namespace vesk {

/// The person's recent dictations, newest first, mirrored in "history.jsonl" of the program's folder. Main
/// thread; the file is written on the queue "vesk.history", in the order of the calls. What cannot be added
/// is left out in silence: a dictation is not held up by its history. What cannot be forgotten is said.
class HistoryStore final : public QObject {
    Q_OBJECT

public:
    /// So many are kept; a longer file is cut at the next addition.
    static constexpr qsizetype Limit = 1000;

    /// Reads the file; a line that cannot be read costs that entry only. A file that cannot be read at all is
    /// only added to, so that what is in it is not lost.
    explicit HistoryStore(QObject *parent = nullptr);

    static const QString &file();

    const QList<Dictation> &entries() const { return m_entries; }

    /// These return before the file is written; see flush().
    void append(const Dictation &dictation);
    /// Forgets one entry, in the file as well; nothing when it is not there any more.
    void remove(const QUuid &id);
    void clear();

    /// Waits until everything is on disk. The destructor does so as well.
    void flush();

Q_SIGNALS:
    void entriesChanged();
    /// What was to go is still in the file, for this reason; entries() has it again.
    void couldNotForget(const QString &reason);

private:
    void load();
    void forgetting(std::function<void()> work);
    static void rewrite(const QList<Dictation> &entries);

    QList<Dictation> m_entries;
    bool m_isLoaded = true; ///< false when there is a file that could not be read
    SerialQueue m_files{"vesk.history"};
};

} // namespace vesk
