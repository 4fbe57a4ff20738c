#pragma once

#include "Platform/Linux/Pasteboard/KeeperStart.h"
#include "Platform/Linux/Pasteboard/KeptSelections.h"
#include "Platform/Pasteboard.h"

#include <QFuture>

#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace vesk {

/// The clipboard and the primary selection of an X display, on the thread "vesk.clipboard" with a connection
/// of its own.
///
/// QClipboard does neither part: it waits five seconds for an owner that hangs, on the main thread; it
/// changes what it reads (types become others, images are decoded); and it acquires with the time of the last
/// event of one of its own windows, which a program without a focused window has not had, so that the server
/// may ignore it. As two clients of the server they do not disturb each other.
///
/// A killed process must not take what the person had copied with it, so a second one stands by while
/// anything lies on a board by this one: with that content, or under a passing text with what was read there
/// before.
class X11Pasteboard final : public Pasteboard {
public:
    /// `keeper` is the program that offers our content when this one has ended (see ClipboardKeeper.cpp).
    explicit X11Pasteboard(QString keeper = defaultKeeper());
    /// Ends the thread; what still lies on a board by us is gone with it, unless persist() was called.
    ~X11Pasteboard() override;

    Availability availability() const override;
    Task<PasteboardSnapshot> read(PasteboardName board) override;
    Task<qint64> write(PasteboardName board, QList<PasteboardItem> items) override;
    Task<qint64> clear(PasteboardName board) override;
    qint64 changeCount(PasteboardName board) const override;
    bool persist(std::chrono::milliseconds limit) override;

    /// Beside the program's own libraries.
    static QString defaultKeeper();

private:
    template <typename Result>
    QFuture<Result> perform(std::function<Result()> work);
    xcb_atom_t atomOf(PasteboardName board) const;
    void refuseWithoutServer() const;
    qint64 writeNow(PasteboardName board, const QList<PasteboardItem> &items);
    bool persistNow(std::chrono::steady_clock::time_point end);
    void run();
    bool runWork();
    void secure(xcb_atom_t selection, const SelectionFormats &formats);
    void forget(xcb_atom_t selection);
    void renewStandBy();
    void wake() const;

    const QString m_keeper;
    X11Selections m_selections;         ///< used by the thread alone, its atomic change counts apart
    KeptSelections::Contents m_found;   ///< what was last read, until somebody else owns it
    KeptSelections::Contents m_secured; ///< what is to lie there should this process be killed
    bool m_isStandByOld = false;
    StandByKeeper m_standBy;
    std::atomic<bool> m_isServerThere;
    int m_wake; ///< an eventfd: there is work
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_work;
    bool m_isEnding = false;
    std::atomic<bool> m_isHurried = false; ///< no snapshot is worth waiting for any more
    std::thread m_thread;                  ///< last: it starts when all it uses is there
};

} // namespace vesk
