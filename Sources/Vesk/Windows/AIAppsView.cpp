#include "Windows/AIAppsView.h"

#include "Foundation/UserError.h"
#include "MCP/MCPSetup.h"
#include "Windows/Controls.h"
#include "Windows/CopyText.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace vesk {

AIAppsView::AIAppsView(const MCPSetup &setup, Pasteboard &pasteboard, QWidget *parent)
    : QWidget(parent)
    , m_setup(setup)
    , m_status(new Paragraph)
    , m_add(new QPushButton)
{
    auto *copyCommand = new QPushButton(tr("Copy command"));
    copyCommand->setAccessibleDescription(tr("The command that adds Vesk to Claude Code"));
    auto *copyJson = new QPushButton(tr("Copy JSON"));
    copyJson->setAccessibleDescription(tr("What other AI apps need in their settings"));

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_status);
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {m_add, copyCommand, copyJson}) {
        row->addWidget(button);
    }
    row->addStretch();
    column->addLayout(row);
    column->addWidget(new HintLabel(tr(
        "AI apps can list, search and read your notes on this computer, and change nothing. The command is "
        "for the claude program in a terminal, the JSON for the settings of other apps.")));

    connect(m_add, &QPushButton::clicked, this, &AIAppsView::add);
    connect(copyCommand, &QPushButton::clicked, this,
            [this, &pasteboard] { copyText(pasteboard, m_setup.claudeCommandLine()); });
    connect(copyJson, &QPushButton::clicked, this,
            [this, &pasteboard] { copyText(pasteboard, QString::fromUtf8(m_setup.otherAppsJSON())); });
    showState();
}

void AIAppsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    showState();
}

void AIAppsView::showState()
{
    const MCPSetup::State state = m_setup.claudeDesktopState();
    m_add->setText(tr("Add to Claude Desktop"));
    m_add->setEnabled(true);
    switch (state.stateCase) {
    case MCPSetup::State::Case::absent:
        m_status->setText(tr("Claude Desktop does not know of your notes yet."));
        break;
    case MCPSetup::State::Case::added:
        m_status->setText(tr("Claude Desktop can read your notes. It takes notice when it starts."));
        m_add->setEnabled(false);
        break;
    case MCPSetup::State::Case::otherCopy:
        m_status->setText(state.text.isEmpty()
                              ? tr("Claude Desktop has an entry for Vesk that names no program.")
                              : tr("Claude Desktop uses another copy of Vesk: %1").arg(state.text));
        m_add->setText(tr("Use This Copy"));
        break;
    case MCPSetup::State::Case::unreadable:
        m_status->setText(state.text);
        m_add->setEnabled(false);
        break;
    }
}

void AIAppsView::add()
{
    try {
        m_setup.addToClaudeDesktop();
        showState();
    } catch (const UserError &error) {
        m_status->setText(error.errorDescription());
    }
}

} // namespace vesk
