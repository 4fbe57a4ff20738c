#include "Windows/MainWindow.h"

#include "Windows/DictionaryModel.h"
#include "Windows/DictionaryView.h"
#include "Windows/HistoryModel.h"
#include "Windows/HistoryView.h"
#include "Windows/HomeView.h"
#include "Windows/ProblemBar.h"
#include "Windows/SettingsStore.h"
#include "Windows/SettingsView.h"
#include "Windows/SidebarDelegate.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QShortcut>
#include <QStackedWidget>

namespace vesk {

MainWindow::MainWindow(const WindowServices &services, SetupModel &setup)
    : m_services(services)
    , m_history(new HistoryModel(services.history, this))
    , m_dictionary(new DictionaryModel(services.settings, this))
    , m_sidebar(new QListWidget)
    , m_pages(new QStackedWidget)
    , m_settingsView(new SettingsView(services))
{
    setWindowTitle(tr("Vesk"));
    build();
    auto *home = new HomeView(services, *m_history, setup);
    connect(home, &HomeView::setupWanted, this, &MainWindow::setupWanted);
    connect(home, &HomeView::historyWanted, this, [this] { choose(Page::history); });
    addPage(Page::home, tr("Home"), home);
    addPage(Page::history, tr("History"), new HistoryView(services, *m_history, *m_dictionary));
    addPage(Page::dictionary, tr("Dictionary"), new DictionaryView(services.settings, *m_dictionary));
    addPage(Page::settings, tr("Settings"), m_settingsView);
    choose(Page::home);
    const int unit = fontMetrics().horizontalAdvance(u'm');
    resize(unit * 66, unit * 50);
}

MainWindow::~MainWindow() = default;

void MainWindow::build()
{
    m_sidebar->setAccessibleName(tr("Pages"));
    m_sidebar->setFrameShape(QFrame::NoFrame);
    m_sidebar->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_sidebar->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    m_sidebar->setSpacing(2);
    m_sidebar->setItemDelegate(new SidebarDelegate(m_sidebar));
    connect(m_sidebar, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) {
            m_pages->setCurrentWidget(
                m_views.value(static_cast<Page>(m_sidebar->item(row)->data(Qt::UserRole).toInt())));
        }
    });
    // Assistive programs select a row without making it the current one.
    connect(m_sidebar, &QListWidget::itemSelectionChanged, this, [this] {
        const QList<QListWidgetItem *> selected = m_sidebar->selectedItems();
        if (!selected.isEmpty() && selected.last() != m_sidebar->currentItem()) {
            m_sidebar->setCurrentItem(selected.last());
        }
    });
    auto *content = new QWidget;
    auto *right = new QVBoxLayout;
    right->setSpacing(0);
    right->addWidget(new ProblemBar(m_services.settings));
    right->addWidget(m_pages, 1);
    auto *row = new QHBoxLayout(content);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_sidebar);
    row->addLayout(right, 1);
    setCentralWidget(content);
}

void MainWindow::addPage(Page page, const QString &title, QWidget *view)
{
    m_views.insert(page, view);
    m_pages->addWidget(view);
    auto *item = new QListWidgetItem(title);
    item->setData(Qt::UserRole, static_cast<int>(page));
    m_sidebar->insertItem(static_cast<int>(std::distance(m_views.begin(), m_views.find(page))), item);
    const int height = fontMetrics().height();
    m_sidebar->setFixedWidth(std::max(m_sidebar->sizeHintForColumn(0) + height, height * 10));
}

void MainWindow::present(Page page)
{
    choose(page);
    show();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
}

void MainWindow::presentAccount()
{
    present(Page::settings);
    m_settingsView->showAccount();
}

Page MainWindow::page() const
{
    return static_cast<Page>(m_sidebar->currentItem()->data(Qt::UserRole).toInt());
}

void MainWindow::choose(Page page)
{
    for (int row = 0; row < m_sidebar->count(); ++row) {
        if (m_sidebar->item(row)->data(Qt::UserRole).toInt() == static_cast<int>(page)) {
            m_sidebar->setCurrentRow(row);
        }
    }
}

} // namespace vesk
