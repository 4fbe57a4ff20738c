#pragma once

#include "Windows/WindowServices.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace vesk {

class EmptyListView;
class HistoryFilter;
class HistoryModel;
class SetupModel;

/// What to do, whether it works, and what was dictated last.
class HomeView final : public QWidget {
    Q_OBJECT

public:
    HomeView(const WindowServices &services, HistoryModel &history, SetupModel &setup,
             QWidget *parent = nullptr);

Q_SIGNALS:
    void setupWanted();
    void historyWanted();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void build();
    QWidget *missingBox();
    void showKeys();
    void showMissing();
    void showToday();
    void copyCurrent();

    WindowServices m_services;
    HistoryModel &m_history;
    SetupModel &m_setup;
    HistoryFilter *m_recent;
    QLabel *m_invitation;
    QLabel *m_keys;
    QLabel *m_missingText;
    QWidget *m_missing;
    QLabel *m_today;
    EmptyListView *m_list;
    QPushButton *m_copy;
    QLabel *m_message;
};

} // namespace vesk
