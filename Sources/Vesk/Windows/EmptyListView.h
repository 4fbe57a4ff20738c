#pragma once

#include <QListView>

namespace vesk {

/// A list that says something where it has nothing to show.
class EmptyListView final : public QListView {
    Q_OBJECT

public:
    using QListView::QListView;

    void setEmptyText(const QString &text);

Q_SIGNALS:
    /// Another row is the current one, or none.
    void currentMoved();

protected:
    void paintEvent(QPaintEvent *event) override;
    /// Assistive programs select a row without making it the current one, which is what pages go by.
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private:
    QString m_emptyText;
};

} // namespace vesk
