#pragma once

#include "Platform/Pasteboard.h"
#include "Platform/PasteboardError.h"

#include <QMap>

namespace vesk {

/// Boards in memory, and the other program that copies to them or stops answering. Main thread.
class FakePasteboard final : public Pasteboard {
public:
    struct Board {
        QList<PasteboardItem> items;
        qint64 changeCount = 0;
        int reads = 0;
        bool isOwnerHanging = false; ///< a read finds only what `items` says and is incomplete
    };

    QMap<PasteboardName, Board> boards;
    std::function<void()> onWrite; ///< what happens just before one; may throw
    bool isPersisted = false;      ///< persist() was called

    static QList<PasteboardItem> item(const QString &type, const QByteArray &bytes)
    {
        return {PasteboardItem{{PasteboardData{type, bytes, {}}}}};
    }

    void copyByAnother(PasteboardName board, const QList<PasteboardItem> &items)
    {
        replace(board, items);
        boards[board].isOwnerHanging = false;
    }

    /// What a program that pastes plain text gets.
    QString text(PasteboardName board = PasteboardName::general) const
    {
        for (const PasteboardItem &item : boards[board].items) {
            for (const PasteboardData &data : item.representations) {
                if (data.type == QLatin1String(PasteboardType::String)) {
                    return QString::fromUtf8(data.bytes);
                }
            }
        }
        return {};
    }

    Availability availability() const override { return Availability::available(); }

    Task<PasteboardSnapshot> read(PasteboardName board) override
    {
        ++boards[board].reads;
        co_return PasteboardSnapshot{boards[board].items, !boards[board].isOwnerHanging};
    }

    Task<qint64> write(PasteboardName board, QList<PasteboardItem> items) override
    {
        if (onWrite) {
            onWrite();
        }
        co_return replace(board, items);
    }

    Task<qint64> clear(PasteboardName board) override { co_return replace(board, {}); }

    qint64 changeCount(PasteboardName board) const override { return boards[board].changeCount; }

    bool persist(std::chrono::milliseconds) override { return isPersisted = true; }

private:
    qint64 replace(PasteboardName board, const QList<PasteboardItem> &items)
    {
        boards[board].items = items;
        boards[board].isOwnerHanging = false;
        return ++boards[board].changeCount;
    }
};

} // namespace vesk
