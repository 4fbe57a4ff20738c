#pragma once

#include "App/HUDBars.h"

#include <QBasicTimer>
#include <QWidget>

namespace vesk {

/// The window of the listening indicator and its drawing: a pill in front of all windows and on all virtual
/// desktops that takes neither the focus nor a click and is in no list of windows. Main thread.
class HUDPanel final : public QWidget {
public:
    HUDPanel();

    void showBars(bool isLocked, bool isCommand);
    void showMessage(const QString &text, bool isSpinning);
    void setLevel(float level);

    const HUDLayout &arrangement() const { return m_layout; }

    /// Without a compositor what is translucent would be black: the pill is then cut out instead.
    void setComposited(bool isComposited);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void drawBars(QPainter &painter) const;
    void drawIcons(QPainter &painter) const;
    void drawMessage(QPainter &painter) const;
    void drawSpinner(QPainter &painter) const;
    void cutOut();

    HUDLayout m_layout;
    bool m_showsBars = false;
    QString m_text;
    HUDBars m_bars;
    QBasicTimer m_spinner;
    int m_spinnerStep = 0;
    bool m_isComposited = true;
};

} // namespace vesk
