#include "Platform/Linux/Pasteboard/X11Pasteboard.h"

#include "Foundation/ThreadName.h"
#include "Platform/Linux/Pasteboard/PasteboardFormats.h"
#include "Platform/PasteboardError.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QDir>
#include <QPromise>

#include <algorithm>
#include <future>
#include <memory>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace vesk {

using namespace Qt::StringLiterals;

namespace {

/// Starting a process takes a moment in which nobody is answered, so it waits until the program that we paste
/// into has had its text.
constexpr std::chrono::milliseconds Lull(30);

/// More than this is not copied into another process with every paste.
constexpr qsizetype MostSecured = 32 * 1024 * 1024;

bool isPassing(const QList<PasteboardItem> &items)
{
    return std::ranges::any_of(items, [](const PasteboardItem &item) {
        return std::ranges::any_of(item.representations, [](const PasteboardData &data) {
            return data.type == QLatin1StringView(PasteboardType::Transient);
        });
    });
}

QString noServer() { return u"The clipboard cannot be used, because there is no X11 display."_s; }

} // namespace

X11Pasteboard::X11Pasteboard(QString keeper)
    : m_keeper(std::move(keeper))
    , m_isServerThere(m_selections.isUsable())
    , m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_thread([this] { run(); })
{
}

X11Pasteboard::~X11Pasteboard()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_isHurried = true;
    wake();
    m_thread.join();
    close(m_wake);
}

QString X11Pasteboard::defaultKeeper()
{
    return QDir::cleanPath(
        QString(QCoreApplication::applicationDirPath() + u"/../lib/vesk/vesk-clipboard-keeper"));
}

Availability X11Pasteboard::availability() const
{
    return m_isServerThere ? Availability::available() : Availability::unavailable(noServer());
}

Task<PasteboardSnapshot> X11Pasteboard::read(PasteboardName board)
{
    std::function<PasteboardSnapshot()> work = [this, board] {
        refuseWithoutServer();
        const SelectionContent content = m_selections.read(atomOf(board), [this] { return !m_isHurried; });
        m_found[atomOf(board)] = content.formats;
        return PasteboardSnapshot{itemsFor(m_selections.connection(), content.formats), content.isComplete};
    };
    const QFuture<PasteboardSnapshot> result = perform(std::move(work));
    co_return co_await result;
}

Task<qint64> X11Pasteboard::write(PasteboardName board, QList<PasteboardItem> items)
{
    std::function<qint64()> work = [this, board, items] { return writeNow(board, items); };
    const QFuture<qint64> result = perform(std::move(work));
    co_return co_await result;
}

Task<qint64> X11Pasteboard::clear(PasteboardName board) { return write(board, {}); }

qint64 X11Pasteboard::changeCount(PasteboardName board) const
{
    return m_selections.changeCount(atomOf(board));
}

bool X11Pasteboard::persist(std::chrono::milliseconds limit)
{
    m_isHurried = true;
    const auto end = std::chrono::steady_clock::now() + limit;
    const auto done = std::make_shared<std::promise<bool>>();
    std::future<bool> answer = done->get_future();
    std::function<bool()> work = [this, done, end] {
        const bool isKept = persistNow(end);
        done->set_value(isKept);
        return isKept;
    };
    perform(std::move(work));
    return answer.wait_until(end) == std::future_status::ready && answer.get();
}

bool X11Pasteboard::persistNow(std::chrono::steady_clock::time_point end)
{
    m_selections.handlePending();
    m_standBy.dismiss();
    if (!m_selections.isUsable() || !m_selections.ownsAnything()) {
        return true; // nothing of ours that could be lost
    }
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    return left.count() > 0
        && startClipboardKeeper(
               m_keeper,
               KeptSelections::packed(m_selections.connection(), KeptSelections::offered(m_selections)),
               left);
}

qint64 X11Pasteboard::writeNow(PasteboardName board, const QList<PasteboardItem> &items)
{
    refuseWithoutServer();
    const xcb_atom_t selection = atomOf(board);
    const SelectionFormats formats = formatsFor(m_selections.connection(), items);
    const SelectionFormats before = m_found[selection];
    const auto count = m_selections.write(selection, formats);
    if (!count) {
        refuseWithoutServer();
        throw PasteboardError(u"The clipboard could not be used, because the display refused it."_s);
    }
    secure(selection, isPassing(items) ? before : formats);
    return *count;
}

void X11Pasteboard::secure(xcb_atom_t selection, const SelectionFormats &formats)
{
    m_found[selection] = formats;
    SelectionFormats &secured = m_secured[selection];
    m_isStandByOld = m_isStandByOld || secured != formats;
    secured = formats;
}

/// Somebody else has copied something, or emptied the board on purpose: what was there is not to come back.
void X11Pasteboard::forget(xcb_atom_t selection)
{
    m_found.erase(selection);
    m_isStandByOld = m_secured.erase(selection) > 0 || m_isStandByOld;
}

void X11Pasteboard::renewStandBy()
{
    m_isStandByOld = false;
    std::erase_if(m_secured, [](const auto &entry) { return entry.second.empty(); });
    const QByteArray packed = KeptSelections::packed(m_selections.connection(), m_secured);
    const bool isWorthIt = !m_secured.empty() && packed.size() <= MostSecured && !m_isHurried;
    if (!isWorthIt || !m_standBy.replace(m_keeper, packed, m_selections.window())) {
        m_standBy.dismiss();
    }
}

void X11Pasteboard::refuseWithoutServer() const
{
    if (!m_selections.isUsable()) {
        throw PasteboardError(noServer());
    }
}

xcb_atom_t X11Pasteboard::atomOf(PasteboardName board) const
{
    return board == PasteboardName::general ? m_selections.clipboard() : m_selections.primary();
}

template <typename Result>
QFuture<Result> X11Pasteboard::perform(std::function<Result()> work)
{
    const auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    {
        const std::lock_guard lock(m_mutex);
        m_work.emplace_back([promise, work = std::move(work)] {
            try {
                promise->addResult(work());
            } catch (...) {
                promise->setException(std::current_exception());
            }
            promise->finish();
        });
    }
    wake();
    return promise->future();
}

void X11Pasteboard::run()
{
    setCurrentThreadName("vesk.clipboard");
    m_selections.onTaken = [this](xcb_atom_t selection) { forget(selection); };
    while (runWork()) {
        if (!m_selections.isUsable()) {
            m_isServerThere = false;
        } else {
            m_selections.handlePending();
        }
        // Without a server only work can come, and each piece of it is told that there is none.
        pollfd waiting[] = {{m_wake, POLLIN, 0}, {m_selections.descriptor(), POLLIN, 0}};
        const int limit = m_isStandByOld ? static_cast<int>(Lull.count()) : -1;
        if (poll(waiting, m_isServerThere ? 2 : 1, limit) == 0) {
            renewStandBy();
        }
        eventfd_t count = 0;
        eventfd_read(m_wake, &count);
    }
}

/// Does what was handed over; false at the end.
bool X11Pasteboard::runWork()
{
    while (true) {
        std::function<void()> work;
        {
            const std::lock_guard lock(m_mutex);
            if (m_work.empty()) {
                return !m_isEnding;
            }
            work = std::move(m_work.front());
            m_work.pop_front();
        }
        work();
    }
}

void X11Pasteboard::wake() const { eventfd_write(m_wake, 1); }

} // namespace vesk
