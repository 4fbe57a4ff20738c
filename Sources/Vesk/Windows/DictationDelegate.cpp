#include "Windows/DictationDelegate.h"

#include "Windows/HistoryModel.h"

#include <QApplication>
#include <QDate>
#include <QPainter>

namespace vesk {

namespace {

/// Blank space around a row's two lines.
int margin(const QStyleOptionViewItem &option) { return option.fontMetrics.height() / 3; }

/// More than a line holds is not measured.
constexpr qsizetype LongestLine = 400;

} // namespace

DictationDelegate::DictationDelegate(const HistoryFilter &history, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_history(history)
{
}

void DictationDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString text = row.text.left(LongestLine);
    row.text.clear(); // the style draws the ground and the focus, we the text
    const QStyle *style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const bool isSelected = row.state.testFlag(QStyle::State_Selected);
    const QPalette::ColorGroup group =
        row.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    QColor ink = row.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    const int space = margin(row);
    const QRect inner = row.rect.adjusted(space * 2, space, -space * 2, -space);
    const int line = row.fontMetrics.height();
    painter->save();
    painter->setFont(row.font);
    painter->setPen(ink);
    const auto draw = [&](int top, const QString &content) {
        const QRect place(inner.left(), top, inner.width(), line);
        painter->drawText(place, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                          row.fontMetrics.elidedText(content, Qt::ElideRight, inner.width()));
    };
    draw(inner.top(), text);
    ink.setAlphaF(isSelected ? 0.9F : 0.7F);
    painter->setPen(ink);
    draw(inner.top() + line, HistoryModel::caption(m_history.entry(index), QDate::currentDate()));
    painter->restore();
}

QSize DictationDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    return {0, (option.fontMetrics.height() * 2) + (margin(option) * 2)};
}

} // namespace vesk
