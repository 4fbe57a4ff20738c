#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;

namespace vesk {

class AccountStore;

/// Who is signed in, or the way there and back. Follows the store, which must outlive it.
class AccountView final : public QWidget {
    Q_OBJECT

public:
    explicit AccountView(AccountStore &account, QWidget *parent = nullptr);

    /// The control with which one goes on.
    void takeFocus();

private:
    void showState();
    void goOn();
    void goBack();

    AccountStore &m_account;
    QLabel *m_status;
    QLineEdit *m_email;
    QPushButton *m_forward;
    QPushButton *m_back;
    QString m_asked; ///< the address that the letter went to
};

} // namespace vesk
