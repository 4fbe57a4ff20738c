#pragma once

#include "Foundation/Cancellation.h"
#include "Platform/Pasteboard.h"

#include <QFuture>
#include <QPromise>

#include <memory>
#include <optional>
#include <vector>

namespace vesk {

class Clock;

/// The person's pasteboard while text of ours lies on it: what was there before, and when it goes back. One
/// for the program; both services must outlive it. Main thread.
class PasteboardLoan {
public:
    /// How long the other program has to read the text. Long for a busy one, short for the person who is
    /// about to paste something of their own.
    static constexpr std::chrono::milliseconds Term{800};

    /// The right to use the pasteboard, until it is destroyed.
    class Turn {
    public:
        explicit Turn(std::shared_ptr<QPromise<void>> end);
        Turn(Turn &&) = default;
        Turn &operator=(Turn &&) = delete;
        Turn(const Turn &) = delete;
        Turn &operator=(const Turn &) = delete;
        ~Turn();

    private:
        std::shared_ptr<QPromise<void>> m_end;
    };

    PasteboardLoan(Pasteboard &pasteboard, Clock &clock);
    ~PasteboardLoan();
    PasteboardLoan(const PasteboardLoan &) = delete;
    PasteboardLoan &operator=(const PasteboardLoan &) = delete;

    /// Waits for those who asked before; giving back takes a turn as well.
    Task<Turn> turn();

    /// Takes down what the boards hold and lays the text there, marked as passing. Where a text of ours still
    /// lies, what was there before it stays what will be given back. Throws PasteboardError; what was laid
    /// out until then is given back.
    Task<> layOut(QList<PasteboardName> boards, QString text);

    /// Gives every board back after the term, counted from now, except those that somebody has written to
    /// since. What a program that stopped answering did not tell cannot be given back: such a board is
    /// cleared.
    void giveBackLater();

    /// For the end of the program: gives back at once what is still due and waits, at most for `limit`, until
    /// it will outlive the program. Nothing can be laid out afterwards.
    void finish(std::chrono::milliseconds limit);

private:
    struct Lent {
        PasteboardName board = PasteboardName::general;
        PasteboardSnapshot before;
        std::optional<qint64> count; ///< once our text is known to lie there
    };

    void refuseAfterTheEnd() const;
    bool isOurs(const Lent &lent) const;
    Task<qint64> written(PasteboardName board, QString text);
    Task<PasteboardSnapshot> snapshot(PasteboardName board);
    Task<> giveBackAfterTerm(CancellationToken gone, quint64 loan);
    std::vector<Task<qint64>> giveBack();

    Pasteboard &m_pasteboard;
    Clock &m_clock;
    CancellationToken m_gone; ///< waiting coroutines outlive this object
    QFuture<void> m_lastTurn;
    std::vector<Lent> m_lent;
    quint64 m_loan = 0; ///< counts what was laid out; an older one's time limit means nothing any more
    bool m_isFinished = false;
};

} // namespace vesk
