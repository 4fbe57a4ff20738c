#pragma once

#include <QWidget>

class QCheckBox;

namespace vesk {

class HintLabel;
class LoginItem;

/// Whether Vesk starts with the session. Looks again whenever it is shown: the desktop changes it as well.
class LoginItemBox final : public QWidget {
    Q_OBJECT

public:
    explicit LoginItemBox(LoginItem &item, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void showState();
    void choose(bool isOn);

    LoginItem &m_item;
    QCheckBox *m_box;
    HintLabel *m_problem;
};

} // namespace vesk
