#include "Windows/AccountView.h"

#include "Server/AccountStore.h"
#include "Windows/Controls.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

namespace vesk {

namespace {

/// What is said and offered in one state; an empty text is a button that is not there.
struct Face {
    QString status;
    QString forward;
    QString back;
    bool asksForAddress = false;
};

Face faceOf(const AccountStore &account, const QString &asked)
{
    const SignIn &signIn = account.signIn();
    const auto tr = [](const char *text) { return AccountView::tr(text); };
    switch (signIn.state) {
    case SignIn::State::sending:
        return {tr("Asking for a letter to %1…").arg(asked), {}, tr("Cancel"), false};
    case SignIn::State::waiting:
        return {
            tr("A letter is on its way to %1. Press the link in it, on any device; this window notices by "
               "itself.")
                .arg(asked),
            tr("Send Again"), tr("Use Another Address"), false};
    case SignIn::State::failed:
        if (account.account()) {
            return {signIn.message, tr("Sign Out"), {}, false};
        }
        return {signIn.message, tr("Try Again"), tr("Cancel"), true};
    case SignIn::State::idle: break;
    }
    if (account.account()) {
        return {tr("Signed in as %1").arg(account.account()->email), tr("Sign Out"), {}, false};
    }
    return {tr("Vesk sends you a letter with a link. There is no password."), tr("Send Link"), {}, true};
}

} // namespace

AccountView::AccountView(AccountStore &account, QWidget *parent)
    : QWidget(parent)
    , m_account(account)
    , m_status(new Paragraph)
    , m_email(new QLineEdit)
    , m_forward(new QPushButton)
    , m_back(new QPushButton)
{
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_email->setAccessibleName(tr("Email address"));
    m_email->setPlaceholderText(tr("you@example.com"));
    m_email->setInputMethodHints(Qt::ImhEmailCharactersOnly);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_status);
    auto *row = new QHBoxLayout;
    row->addWidget(m_email, 1);
    row->addWidget(m_forward);
    row->addWidget(m_back);
    row->addStretch();
    column->addLayout(row);

    // Not only what is typed: assistive programs set the text.
    connect(m_email, &QLineEdit::textChanged, &account, &AccountStore::setEmail);
    connect(m_email, &QLineEdit::returnPressed, this, &AccountView::goOn);
    connect(m_forward, &QPushButton::clicked, this, &AccountView::goOn);
    connect(m_back, &QPushButton::clicked, this, &AccountView::goBack);
    connect(&account, &AccountStore::signInChanged, this, &AccountView::showState);
    connect(&account, &AccountStore::accountChanged, this, &AccountView::showState);
    connect(&account, &AccountStore::emailChanged, this, &AccountView::showState);
    showState();
}

void AccountView::takeFocus()
{
    if (m_email->isHidden()) {
        m_forward->setFocus();
    } else {
        m_email->setFocus();
    }
}

void AccountView::showState()
{
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    const Face face = faceOf(m_account, m_asked);
    m_status->setText(face.status);
    m_email->setVisible(face.asksForAddress);
    if (m_email->text() != m_account.email()) {
        m_email->setText(m_account.email());
    }
    m_forward->setVisible(!face.forward.isEmpty());
    m_forward->setText(face.forward);
    m_back->setVisible(!face.back.isEmpty());
    m_back->setText(face.back);
    if (hadFocus && !isAncestorOf(QApplication::focusWidget())) {
        takeFocus(); // the control that was used has gone
    }
}

void AccountView::goOn()
{
    const bool signsOut = m_account.account() && m_email->isHidden();
    if (signsOut) {
        launch(QStringLiteral("sign-out"), m_account.signOut());
        return;
    }
    m_asked = m_account.email().trimmed();
    m_account.startSignIn(m_asked);
}

void AccountView::goBack()
{
    m_account.cancelSignIn();
    takeFocus();
}

} // namespace vesk
