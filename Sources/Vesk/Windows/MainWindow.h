#pragma once

#include "Windows/WindowServices.h"

#include <QMainWindow>
#include <QMap>

class QListWidget;
class QStackedWidget;

namespace vesk {

class DictionaryModel;
class HistoryModel;
class SettingsView;
class SetupModel;

/// What the main window can show, in the order of its sidebar.
enum class Page { home, notes, history, dictionary, settings };

/// The window with a sidebar and one page at a time. One for the life of the application; closing hides it.
class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    /// The model must outlive the window.
    MainWindow(const WindowServices &services, SetupModel &setup);
    ~MainWindow() override;

    /// Puts a page into the sidebar, at its place; the window owns it.
    void addPage(Page page, const QString &title, QWidget *view);

    /// Shows the window in front with this page.
    void present(Page page);
    void presentAccount();

    Page page() const;

Q_SIGNALS:
    /// The person asks what is missing.
    void setupWanted();

private:
    void build();
    void choose(Page page);

    WindowServices m_services;
    HistoryModel *m_history;
    DictionaryModel *m_dictionary;
    QListWidget *m_sidebar;
    QStackedWidget *m_pages;
    SettingsView *m_settingsView;
    QMap<Page, QWidget *> m_views;
};

} // namespace vesk
