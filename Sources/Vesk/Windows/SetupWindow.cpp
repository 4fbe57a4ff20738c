#include "Windows/SetupWindow.h"

#include "Platform/DesktopServices.h"
#include "Windows/Controls.h"
#include "Windows/KeyTrial.h"
#include "Windows/LoginItemBox.h"
#include "Windows/PageScroll.h"
#include "Windows/RequirementRow.h"
#include "Windows/SettingsStore.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace vesk {

SetupWindow::SetupWindow(const WindowServices &services, SetupModel &model)
    : m_model(model)
    , m_summary(new Paragraph)
    , m_done(new QPushButton(tr("Done")))
{
    setWindowTitle(tr("Set Up Vesk"));
    build(services);
    connect(&model, &SetupModel::changed, this, &SetupWindow::showState);
    connect(m_done, &QPushButton::clicked, this, &QWidget::close);
    showState();
    fit();
}

void SetupWindow::build(const WindowServices &services)
{
    const int margin = fontMetrics().height();
    m_page = new QWidget;
    auto *rows = new QVBoxLayout(m_page);
    rows->setContentsMargins(margin, margin, margin, margin);
    rows->setSpacing(margin * 3 / 4);
    rows->addWidget(headline(tr("Speak, and Vesk types"), 1.4));
    rows->addWidget(m_summary);
    for (const Requirement &requirement : m_model.requirements()) {
        auto *row = new RequirementRow(requirement.kind);
        connect(row, &RequirementRow::helpWanted, this, &SetupWindow::help);
        rows->addWidget(row);
        m_rows.append(row);
    }
    rows->addSpacing(margin / 2);
    rows->addWidget(headline(tr("Try it"), 1.1));
    rows->addWidget(new KeyTrial(services.settings, services.desktop.keyEvents(), services.clock));
    rows->addStretch();

    auto *scroll = new PageScroll;
    scroll->setWidget(m_page);
    auto *bottom = new QHBoxLayout;
    bottom->setContentsMargins(margin, margin / 2, margin, margin / 2);
    bottom->addWidget(new LoginItemBox(services.loginItem), 1);
    bottom->addWidget(m_done, 0, Qt::AlignBottom);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(scroll, 1);
    column->addLayout(bottom);
}

// Everything in sight, as far as the screen allows.
void SetupWindow::fit()
{
    const int unit = fontMetrics().horizontalAdvance(u'm');
    const int width = unit * 44;
    const int height = m_page->heightForWidth(width) + m_done->sizeHint().height() + (unit * 2);
    resize(QSize(width, height).boundedTo(screen()->availableSize() * 0.9));
}

void SetupWindow::present()
{
    if (!isVisible()) {
        m_model.isReady(); // what is said decides how much room it takes
        fit();
    }
    show();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
}

void SetupWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_model.setWatching(true);
}

void SetupWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_model.setWatching(false);
}

void SetupWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Cancel)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void SetupWindow::showState()
{
    const QList<Requirement> &requirements = m_model.requirements();
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        m_rows.at(i)->show(requirements.at(i));
    }
    const auto missing = std::ranges::count(requirements, Requirement::State::missing, &Requirement::state);
    m_summary->setText(missing == 0 ? tr("Everything is ready.")
                           : missing == 1
                           ? tr("One thing is missing. This window notices when it is there.")
                           : tr("%n things are missing. This window notices when they are there.", nullptr,
                                static_cast<int>(missing)));
}

void SetupWindow::help(Requirement::Help help)
{
    switch (help) {
    case Requirement::Help::none: break;
    case Requirement::Help::useRightCommand: m_model.useRightCommand(); break;
    case Requirement::Help::chooseKey: Q_EMIT settingsWanted(); break;
    case Requirement::Help::signIn: Q_EMIT signInWanted(); break;
    }
}

} // namespace vesk
