#pragma once

#include "Windows/PageScroll.h"
#include "Windows/WindowServices.h"

namespace vesk {

class AccountView;
class Section;

/// Every setting, in sections. What is changed here stands in the file at once.
class SettingsView final : public PageScroll {
    Q_OBJECT

public:
    explicit SettingsView(const WindowServices &services, QWidget *parent = nullptr);

    /// Shows the account's section with its control focused.
    void showAccount();

Q_SIGNALS:
    void shown();

protected:
    void showEvent(QShowEvent *event) override;

private:
    Section *dictation();
    Section *voiceCommands();
    Section *microphone();
    Section *notes();
    Section *aiApps();
    Section *account();
    Section *general();

    WindowServices m_services;
    AccountView *m_account = nullptr;
};

} // namespace vesk
