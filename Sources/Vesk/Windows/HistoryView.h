#pragma once

#include "Windows/WindowServices.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QLineEdit;
class QMessageBox;
class QPlainTextEdit;
class QPushButton;

namespace vesk {

class DictionaryModel;
class EmptyListView;
class HistoryFilter;
class HistoryModel;
struct Dictation;

/// The dictations that are kept: searched, read, copied, forgotten.
class HistoryView final : public QWidget {
    Q_OBJECT

public:
    HistoryView(WindowServices services, HistoryModel &history, DictionaryModel &dictionary,
                QWidget *parent = nullptr);

private:
    void build();
    QLayout *buttonRow();
    void connectControls();
    const Dictation *current() const;
    QString selectedWord() const;
    void showCurrent();
    void updateButtons();
    void deleteCurrent();
    void askToClear();
    void say(const QString &sentence);

    WindowServices m_services;
    HistoryModel &m_model;
    DictionaryModel &m_dictionary;
    HistoryFilter *m_filter;
    QLineEdit *m_search;
    EmptyListView *m_list;
    QPlainTextEdit *m_text;
    QLabel *m_heard;
    QLabel *m_message;
    QPushButton *m_copy;
    QPushButton *m_copyHeard;
    QPushButton *m_addWord;
    QPushButton *m_delete;
    QPushButton *m_clear;
    QPointer<QMessageBox> m_question; ///< whether all may go, while it is open
};

} // namespace vesk
