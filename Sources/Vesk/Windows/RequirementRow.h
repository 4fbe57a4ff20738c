#pragma once

#include "Windows/SetupModel.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace vesk {

class StatusMark;

/// One line of what dictation needs: how it stands, in words, and a button where one can help.
class RequirementRow final : public QWidget {
    Q_OBJECT

public:
    explicit RequirementRow(Requirement::Kind kind, QWidget *parent = nullptr);

    void show(const Requirement &requirement);

Q_SIGNALS:
    void helpWanted(vesk::Requirement::Help help);

private:
    Requirement::Help m_help = Requirement::Help::none;
    StatusMark *m_mark;
    QLabel *m_sentence;
    QPushButton *m_button;
};

} // namespace vesk
