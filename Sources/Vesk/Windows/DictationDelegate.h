#pragma once

#include <QStyledItemDelegate>

namespace vesk {

class HistoryFilter;

/// One dictation in a list: its beginning in one line, and below when and where. All rows are equally high,
/// so that a list of a thousand asks for nothing it does not show.
class DictationDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit DictationDelegate(const HistoryFilter &history, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    const HistoryFilter &m_history;
};

} // namespace vesk
