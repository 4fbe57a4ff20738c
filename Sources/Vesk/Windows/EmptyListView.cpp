#include "Windows/EmptyListView.h"

#include <QPainter>

namespace vesk {

void EmptyListView::setEmptyText(const QString &text)
{
    if (m_emptyText != text) {
        m_emptyText = text;
        viewport()->update();
    }
}

void EmptyListView::paintEvent(QPaintEvent *event)
{
    QListView::paintEvent(event);
    if (model() != nullptr && model()->rowCount() > 0) {
        return;
    }
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const int margin = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

void EmptyListView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QListView::selectionChanged(selected, deselected);
    const QModelIndexList chosen = selectedIndexes();
    if (chosen.size() == 1 && chosen.first() != currentIndex()) {
        selectionModel()->setCurrentIndex(chosen.first(), QItemSelectionModel::NoUpdate);
    }
}

void EmptyListView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QListView::currentChanged(current, previous);
    Q_EMIT currentMoved();
}

} // namespace vesk
