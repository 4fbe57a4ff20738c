#include "Dictation/PasteboardLoan.h"

#include "Dictation/InsertionError.h"
#include "Foundation/Log.h"
#include "Platform/Clock.h"

#include <QCoroFuture>

#include <algorithm>
#include <exception>
#include <utility>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

QList<PasteboardItem> passingText(const QString &text)
{
    PasteboardItem item;
    item.representations.append({QString::fromLatin1(PasteboardType::String), text.toUtf8(), {}});
    item.representations.append({QString::fromLatin1(PasteboardType::Transient), QByteArray(), {}});
    return {item};
}

} // namespace

PasteboardLoan::Turn::Turn(std::shared_ptr<QPromise<void>> end)
    : m_end(std::move(end))
{
}

PasteboardLoan::Turn::~Turn()
{
    if (m_end) {
        m_end->finish();
    }
}

PasteboardLoan::PasteboardLoan(Pasteboard &pasteboard, Clock &clock)
    : m_pasteboard(pasteboard)
    , m_clock(clock)
{
}

PasteboardLoan::~PasteboardLoan() { m_gone.cancel(); }

Task<PasteboardLoan::Turn> PasteboardLoan::turn()
{
    const QFuture<void> before = m_lastTurn;
    auto end = std::make_shared<QPromise<void>>();
    end->start();
    m_lastTurn = end->future();
    Turn mine(std::move(end));
    if (!before.isFinished()) {
        co_await before;
    }
    co_return mine;
}

bool PasteboardLoan::isOurs(const Lent &lent) const
{
    return !lent.count || m_pasteboard.changeCount(lent.board) == *lent.count;
}

Task<PasteboardSnapshot> PasteboardLoan::snapshot(PasteboardName board)
{
    const auto earlier =
        std::ranges::find_if(m_lent, [board](const Lent &lent) { return lent.board == board; });
    if (earlier != m_lent.end()) {
        const Lent lent = std::move(*earlier);
        m_lent.erase(earlier);
        if (isOurs(lent)) {
            co_return lent.before;
        }
    }
    co_return co_await m_pasteboard.read(board);
}

Task<> PasteboardLoan::layOut(QList<PasteboardName> boards, QString text)
{
    ++m_loan;
    std::exception_ptr failure;
    try {
        for (const PasteboardName board : boards) {
            const PasteboardSnapshot before = co_await snapshot(board);
            refuseAfterTheEnd();
            m_lent.push_back({board, before, std::nullopt});
            m_lent.back().count = co_await written(board, text);
            refuseAfterTheEnd();
        }
    } catch (...) {
        failure = std::current_exception();
    }
    if (failure) {
        giveBackLater();
        std::rethrow_exception(failure);
    }
}

/// A refused write left the board to somebody else: nothing of it is to be given back.
Task<qint64> PasteboardLoan::written(PasteboardName board, QString text)
{
    std::exception_ptr failure;
    try {
        const qint64 count = co_await m_pasteboard.write(board, passingText(text));
        co_return count;
    } catch (...) {
        failure = std::current_exception();
    }
    if (!m_isFinished) {
        m_lent.pop_back();
    }
    std::rethrow_exception(failure);
}

void PasteboardLoan::refuseAfterTheEnd() const
{
    if (m_isFinished) {
        throw InsertionError::unavailable(u"Nothing was inserted, because Vesk is ending."_s);
    }
}

void PasteboardLoan::giveBackLater()
{
    if (!m_isFinished) {
        launch(u"giving the clipboard back"_s, giveBackAfterTerm(m_gone, m_loan));
    }
}

// The turn is taken after the term: a paste that has begun meanwhile lays out its own text, and what was
// before the first one waits for that one's term.
Task<> PasteboardLoan::giveBackAfterTerm(CancellationToken gone, quint64 loan)
{
    co_await m_clock.after(Term);
    if (gone.isCancelled()) {
        co_return;
    }
    const Turn mine = co_await turn();
    if (gone.isCancelled() || loan != m_loan) {
        co_return;
    }
    std::vector<Task<qint64>> writes = giveBack();
    for (Task<qint64> &write : writes) {
        co_await write;
    }
}

/// Begins the writes and forgets what was lent. Their order is that of the calls, also for who does not wait.
std::vector<Task<qint64>> PasteboardLoan::giveBack()
{
    std::vector<Task<qint64>> writes;
    for (const Lent &lent : std::exchange(m_lent, {})) {
        if (!isOurs(lent)) {
            continue;
        }
        if (!lent.before.isComplete) {
            Log::write(
                lent.before.items.isEmpty()
                    ? u"the program that owned the clipboard did not answer: it is cleared after the paste"_s
                    : u"the program that owned the clipboard stopped answering: a part of it is lost"_s);
        }
        writes.push_back(lent.before.items.isEmpty() ? m_pasteboard.clear(lent.board)
                                                     : m_pasteboard.write(lent.board, lent.before.items));
    }
    return writes;
}

void PasteboardLoan::finish(std::chrono::milliseconds limit)
{
    m_isFinished = true;
    ++m_loan;
    giveBack();
    if (!m_pasteboard.persist(limit)) {
        Log::write(u"the clipboard could not be kept beyond the end of the program"_s);
    }
}

} // namespace vesk
