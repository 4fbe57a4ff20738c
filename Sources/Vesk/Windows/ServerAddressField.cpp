#include "Windows/ServerAddressField.h"

#include "Server/AccountStore.h"
#include "Windows/Controls.h"
#include "Windows/SettingsStore.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QUrl>

namespace vesk {

ServerAddressField::ServerAddressField(SettingsStore &settings, AccountStore &account, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_account(account)
    , m_field(new QLineEdit)
    , m_message(new HintLabel)
{
    m_field->setAccessibleName(tr("Server address"));
    m_field->setInputMethodHints(Qt::ImhUrlCharactersOnly);
    m_field->setLayoutDirection(Qt::LeftToRight);
    setFocusProxy(m_field);
    auto *usual = new QPushButton(tr("Use Default"));
    auto *row = new QHBoxLayout;
    row->addWidget(m_field, 1);
    row->addWidget(usual);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_message);
    m_message->hide();

    connect(&settings, &SettingsStore::changed, this, &ServerAddressField::follow);
    connect(m_field, &QLineEdit::editingFinished, this, &ServerAddressField::accept);
    connect(usual, &QPushButton::clicked, this, [this] { use(Config::defaultServerURL()); });
    follow();
}

// Other settings change as well: what is being typed then stays.
void ServerAddressField::follow()
{
    if (m_shown != m_settings.config().serverURL) {
        m_shown = m_settings.config().serverURL;
        m_field->setText(m_shown);
        m_field->setCursorPosition(0);
        m_message->hide();
    }
}

std::optional<QString> ServerAddressField::address(const QString &typed)
{
    QString trimmed = typed.trimmed();
    while (trimmed.endsWith(u'/')) {
        trimmed.chop(1);
    }
    const QUrl url(trimmed, QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    const bool isAddress =
        url.isValid() && isWeb && !url.host().isEmpty() && !url.hasQuery() && !url.hasFragment();
    return isAddress ? std::optional(trimmed) : std::nullopt;
}

void ServerAddressField::accept()
{
    if (m_field->text() == m_settings.config().serverURL) {
        m_message->hide();
        return;
    }
    if (const auto typed = address(m_field->text())) {
        use(*typed);
        return;
    }
    m_message->setText(tr("That is no web address; %1 is still in use.").arg(m_settings.config().serverURL));
    m_message->show();
}

void ServerAddressField::use(const QString &address)
{
    m_message->hide();
    if (address == m_settings.config().serverURL) {
        m_field->setText(address);
        return;
    }
    if (m_account.account()) {
        if (!m_settings.canWrite()) { // the server would stay, and its sign-in would be lost
            m_field->setText(m_settings.config().serverURL);
            return;
        }
        launch(QStringLiteral("sign-out"), m_account.signOut()); // goes to the server that is left
    } else {
        m_account.cancelSignIn();
    }
    m_shown.clear(); // what was typed may differ from the address in blanks, or cannot be written
    m_settings.change([&address](Config &config) { config.serverURL = address; });
}

} // namespace vesk
