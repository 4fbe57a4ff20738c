#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace vesk {

class AccountStore;
class SettingsStore;

/// The server's address, for people who run their own. What cannot be an address is not written. A token
/// belongs to the server that gave it, so another address ends the sign-in first.
class ServerAddressField final : public QWidget {
    Q_OBJECT

public:
    ServerAddressField(SettingsStore &settings, AccountStore &account, QWidget *parent = nullptr);

    /// The address as it is written to the settings; nothing for what cannot be one.
    static std::optional<QString> address(const QString &typed);

private:
    void follow();
    void use(const QString &address);
    void accept();

    SettingsStore &m_settings;
    AccountStore &m_account;
    QString m_shown; ///< the address of the settings that the field was last given
    QLineEdit *m_field;
    QLabel *m_message;
};

} // namespace vesk
