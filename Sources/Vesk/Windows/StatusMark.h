#pragma once

#include <QWidget>

namespace vesk {

/// Done, to be looked at, or missing: told by colour, by sign and by name.
class StatusMark final : public QWidget {
    Q_OBJECT

public:
    enum class Status { good, advice, missing };

    explicit StatusMark(QWidget *parent = nullptr);

    void setStatus(Status status);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Status m_status = Status::good;
};

} // namespace vesk
