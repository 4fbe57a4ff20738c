#pragma once

#include <QStyledItemDelegate>

namespace vesk {

/// Pages in a sidebar, with a sign for each that is drawn in the text's own colour, so that it suits every
/// palette and scale.
class SidebarDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace vesk
