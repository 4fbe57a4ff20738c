#pragma once

#include <QWidget>

namespace vesk {

/// Shows a loudness of 0..1. A picture only: a screen reader that spoke every change would drown the voice.
class LevelBar final : public QWidget {
    Q_OBJECT

public:
    explicit LevelBar(QWidget *parent = nullptr);

    void setLevel(float level);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    float m_level = 0;
};

} // namespace vesk
