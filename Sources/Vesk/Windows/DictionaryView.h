#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;

namespace vesk {

class DictionaryModel;
class EmptyListView;
class SettingsStore;

/// The person's own words: names and terms that are then spelled right.
class DictionaryView final : public QWidget {
    Q_OBJECT

public:
    DictionaryView(SettingsStore &settings, DictionaryModel &words, QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void build();
    QLayout *entryRow();
    QLayout *buttonRow();
    void connectControls();
    void add();
    void remove();
    void chooseImport();
    void chooseExport();
    void importFile(const QString &path);
    void exportFile(const QString &path);
    void updateState();
    void say(const QString &sentence);

    SettingsStore &m_settings;
    DictionaryModel &m_words;
    QSortFilterProxyModel *m_sorted;
    QLineEdit *m_entry;
    QPushButton *m_add;
    QLineEdit *m_search;
    EmptyListView *m_list;
    QPushButton *m_rename;
    QPushButton *m_remove;
    QPushButton *m_undo;
    QPushButton *m_import;
    QPushButton *m_export;
    QLabel *m_message;
};

} // namespace vesk
