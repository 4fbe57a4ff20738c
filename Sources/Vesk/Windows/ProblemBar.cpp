#include "Windows/ProblemBar.h"

#include "Windows/Controls.h"
#include "Windows/SettingsStore.h"
#include "Windows/StatusMark.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPushButton>

namespace vesk {

ProblemBar::ProblemBar(SettingsStore &settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_sentence(new Paragraph)
    , m_replace(new QPushButton(tr("Replace It…")))
{
    auto *mark = new StatusMark;
    mark->setStatus(StatusMark::Status::missing);
    m_sentence->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *frame = new QFrame;
    frame->setFrameShape(QFrame::StyledPanel);
    auto *row = new QHBoxLayout(frame);
    row->addWidget(mark, 0, Qt::AlignTop);
    row->addWidget(m_sentence, 1);
    row->addWidget(m_replace, 0, Qt::AlignVCenter);
    auto *column = new QVBoxLayout(this);
    const int margin = fontMetrics().height();
    column->setContentsMargins(margin, margin, margin, 0);
    column->addWidget(frame);
    connect(m_replace, &QPushButton::clicked, this, &ProblemBar::askToReplace);
    connect(&settings, &SettingsStore::problemChanged, this, &ProblemBar::showState);
    showState();
}

void ProblemBar::showState()
{
    m_sentence->setText(m_settings.problem());
    m_replace->setVisible(!m_settings.isReadable());
    setVisible(!m_settings.problem().isEmpty());
}

void ProblemBar::askToReplace()
{
    auto *box = new QMessageBox(QMessageBox::Question, tr("Replace the Settings File"),
                                tr("Write a new settings file? The one that cannot be read is kept beside it "
                                   "as “%1”, so that nothing "
                                   "in it is lost.")
                                    .arg(QStringLiteral("config.json.unreadable")),
                                QMessageBox::Cancel, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    const QPushButton *replace = box->addButton(tr("Replace"), QMessageBox::AcceptRole);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(replace, &QPushButton::clicked, this, [this] { m_settings.replaceUnreadable(); });
    box->open();
}

} // namespace vesk
