#include "Windows/RequirementRow.h"

#include "Windows/Controls.h"
#include "Windows/StatusMark.h"

#include <QGridLayout>
#include <QPushButton>

namespace vesk {

namespace {

StatusMark::Status status(Requirement::State state)
{
    switch (state) {
    case Requirement::State::met: return StatusMark::Status::good;
    case Requirement::State::advised: return StatusMark::Status::advice;
    case Requirement::State::missing: return StatusMark::Status::missing;
    }
    Q_UNREACHABLE();
}

QString buttonText(Requirement::Help help)
{
    switch (help) {
    case Requirement::Help::none: return {};
    case Requirement::Help::useRightCommand: return RequirementRow::tr("Use Right Ctrl");
    case Requirement::Help::chooseKey: return RequirementRow::tr("Choose Another Key…");
    case Requirement::Help::signIn: return RequirementRow::tr("Sign In…");
    }
    Q_UNREACHABLE();
}

} // namespace

RequirementRow::RequirementRow(Requirement::Kind kind, QWidget *parent)
    : QWidget(parent)
    , m_mark(new StatusMark)
    , m_sentence(new HintLabel)
    , m_button(new QPushButton)
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(0);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_mark, 0, 0);
    grid->addWidget(headline(SetupModel::title(kind), 1), 0, 1);
    grid->addWidget(m_sentence, 1, 1);
    grid->addWidget(m_button, 0, 2, 2, 1, Qt::AlignVCenter);
    setAccessibleName(SetupModel::title(kind));
    connect(m_button, &QPushButton::clicked, this, [this] { Q_EMIT helpWanted(m_help); });
}

void RequirementRow::show(const Requirement &requirement)
{
    m_help = requirement.help;
    m_mark->setStatus(status(requirement.state));
    m_sentence->setText(requirement.sentence);
    m_button->setText(buttonText(requirement.help));
    m_button->setVisible(requirement.help != Requirement::Help::none);
}

} // namespace vesk
