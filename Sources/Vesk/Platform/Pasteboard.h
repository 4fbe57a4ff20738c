#pragma once

#include "Foundation/Task.h"
#include "Platform/Availability.h"

#include <QByteArray>
#include <QList>

#include <chrono>

namespace vesk {

/// Types that mean the same on every system; an answer translates them into what its programs understand. All
/// other types are the system's own names.
namespace PasteboardType {

/// Plain text, its bytes in UTF-8.
inline constexpr auto String = "public.utf8-plain-text";

/// A mark with empty data: clipboard histories leave an entry with it out.
inline constexpr auto Transient = "org.nspasteboard.TransientType";

} // namespace PasteboardType

/// The boards that programs share.
enum class PasteboardName {
    general,   ///< what a person copies to
    selection, ///< X11's second one, which holds what was selected last; a terminal's paste key reads it
};

/// One representation of an item.
struct PasteboardData {
    QString type;
    QByteArray bytes;
    QString
        encoding; ///< how the system marked the bytes; carried back unchanged, empty for what the type says

    friend bool operator==(const PasteboardData &, const PasteboardData &) = default;
};

/// One thing on a board, in all its representations.
struct PasteboardItem {
    QList<PasteboardData> representations;

    friend bool operator==(const PasteboardItem &, const PasteboardItem &) = default;
};

/// What a board held.
struct PasteboardSnapshot {
    QList<PasteboardItem> items;
    bool isComplete = true; ///< false: the program that owns the board stopped answering, there may be more
};

/// What programs copy to and paste from. Main thread; no call but persist() waits for another program. Throws
/// PasteboardError where the system's boards cannot be reached.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    virtual Availability availability() const = 0;

    /// Every item with every type, byte for byte; a type that its owner refuses is left out. Has a time limit
    /// of its own.
    virtual Task<PasteboardSnapshot> read(PasteboardName board) = 0;

    /// Replaces what the board holds in one step: a board that is seen empty in between is filled again by
    /// some clipboard managers. Returns the change count as it is after the write.
    virtual Task<qint64> write(PasteboardName board, QList<PasteboardItem> items) = 0;

    /// Leaves the board empty. Returns the change count after it.
    virtual Task<qint64> clear(PasteboardName board) = 0;

    /// Grows with every write to the board, by whichever program.
    virtual qint64 changeCount(PasteboardName board) const = 0;

    /// For the end of the program: blocks until the writes begun are done and what this program wrote will
    /// outlive it, at most for `limit`. False when time ran out or nobody took it over.
    virtual bool persist(std::chrono::milliseconds limit) = 0;
};

} // namespace vesk
