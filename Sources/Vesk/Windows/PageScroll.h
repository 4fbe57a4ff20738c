#pragma once

#include <QScrollArea>

namespace vesk {

/// A page that may be taller than its window. Qt's own scroll areas end the program when an assistive program
/// asks for a scroll bar that has just gone; this one answers that it is not there.
class PageScroll : public QScrollArea {
    Q_OBJECT

public:
    explicit PageScroll(QWidget *parent = nullptr);

    /// As wide as the page at its narrowest: it scrolls down and up, never sideways.
    QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace vesk
