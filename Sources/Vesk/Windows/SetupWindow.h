#pragma once

#include "Windows/SetupModel.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace vesk {

class RequirementRow;

/// What is there and what is missing, each turning by itself, and a place for the first dictation. One for
/// the life of the application; closing hides it.
class SetupWindow final : public QWidget {
    Q_OBJECT

public:
    /// The model must outlive the window.
    SetupWindow(const WindowServices &services, SetupModel &model);

    /// Shows it in front, also when it is open already.
    void present();

Q_SIGNALS:
    /// A button leads to the settings: to the account, or to the key.
    void signInWanted();
    void settingsWanted();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void build(const WindowServices &services);
    void fit();
    void showState();
    void help(Requirement::Help help);

    SetupModel &m_model;
    QWidget *m_page = nullptr;
    QLabel *m_summary;
    QList<RequirementRow *> m_rows;
    QPushButton *m_done;
};

} // namespace vesk
