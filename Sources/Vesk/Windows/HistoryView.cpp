#include "Windows/HistoryView.h"

#include "Dictation/HistoryStore.h"
#include "Foundation/Text.h"
#include "Platform/DesktopServices.h"
#include "Windows/Controls.h"
#include "Windows/CopyText.h"
#include "Windows/DictationDelegate.h"
#include "Windows/DictionaryModel.h"
#include "Windows/EmptyListView.h"
#include "Windows/HistoryModel.h"
#include "Windows/SettingsStore.h"

#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

namespace vesk {

HistoryView::HistoryView(WindowServices services, HistoryModel &history, DictionaryModel &dictionary,
                         QWidget *parent)
    : QWidget(parent)
    , m_services(std::move(services))
    , m_model(history)
    , m_dictionary(dictionary)
    , m_filter(new HistoryFilter(history, this))
    , m_search(new QLineEdit)
    , m_list(new EmptyListView)
    , m_text(new QPlainTextEdit)
    , m_heard(new HintLabel)
    , m_message(new HintLabel)
    , m_copy(new QPushButton(tr("&Copy")))
    , m_copyHeard(new QPushButton(tr("Copy as &Heard")))
    , m_addWord(new QPushButton(tr("Add to Dictionar&y")))
    , m_delete(new QPushButton(tr("De&lete")))
    , m_clear(new QPushButton(tr("Clear &All…")))
{
    build();
    connectControls();
    showCurrent();
}

void HistoryView::build()
{
    m_search->setPlaceholderText(tr("Search the history"));
    m_search->setAccessibleName(tr("Search the history"));
    m_search->setClearButtonEnabled(true);
    m_list->setModel(m_filter);
    m_list->setItemDelegate(new DictationDelegate(*m_filter, m_list));
    m_list->setUniformItemSizes(true);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setAccessibleName(tr("History"));
    m_list->setObjectName(QStringLiteral("history"));
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setTabChangesFocus(true);
    m_text->setAccessibleName(tr("Text"));

    auto *details = new QWidget;
    auto *below = new QVBoxLayout(details);
    below->setContentsMargins(0, 0, 0, 0);
    below->addWidget(m_text, 1);
    below->addWidget(m_heard);
    below->addLayout(buttonRow());
    below->addWidget(m_message);
    auto *splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(m_list);
    splitter->addWidget(details);
    splitter->setChildrenCollapsible(false);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    auto *column = new QVBoxLayout(this);
    const int margin = fontMetrics().height();
    column->setContentsMargins(margin, margin, margin, margin);
    column->addWidget(m_search);
    column->addWidget(splitter, 1);
    m_message->hide();
}

QLayout *HistoryView::buttonRow()
{
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {m_copy, m_copyHeard, m_addWord, m_delete}) {
        row->addWidget(button);
    }
    row->addStretch();
    row->addWidget(m_clear);
    m_addWord->setAccessibleDescription(tr("Adds the word that is selected in the text"));
    return row;
}

void HistoryView::connectControls()
{
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_filter->setSearch(text);
        if (!m_list->currentIndex().isValid()) {
            m_list->setCurrentIndex(m_filter->index(0, 0));
        }
        showCurrent();
    });
    connect(m_list, &EmptyListView::currentMoved, this, &HistoryView::showCurrent);
    connect(m_list, &QListView::activated, m_copy, &QPushButton::click);
    connect(m_filter, &QAbstractItemModel::modelReset, this, &HistoryView::showCurrent);
    connect(m_filter, &QAbstractItemModel::rowsInserted, this, &HistoryView::updateButtons);
    connect(m_text, &QPlainTextEdit::selectionChanged, this, &HistoryView::updateButtons);
    connect(&m_dictionary, &DictionaryModel::said, this, &HistoryView::say);
    connect(&m_services.history, &HistoryStore::couldNotForget, this,
            [this](const QString &reason) { say(tr("It is still in the history. %1").arg(reason)); });
    connect(&m_services.settings, &SettingsStore::changed, this, &HistoryView::showCurrent);
    connect(m_copy, &QPushButton::clicked, this, [this] {
        if (const Dictation *entry = current()) {
            copyText(m_services.desktop.pasteboard(), entry->text);
            say(tr("Copied."));
        }
    });
    connect(m_copyHeard, &QPushButton::clicked, this, [this] {
        if (const Dictation *entry = current()) {
            copyText(m_services.desktop.pasteboard(), entry->raw);
            say(tr("Copied as it was heard."));
        }
    });
    connect(m_addWord, &QPushButton::clicked, this, [this] { m_dictionary.addLines(selectedWord()); });
    connect(m_delete, &QPushButton::clicked, this, &HistoryView::deleteCurrent);
    connect(m_clear, &QPushButton::clicked, this, &HistoryView::askToClear);
    auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, m_search, qOverload<>(&QLineEdit::setFocus));
    auto *forget = new QShortcut(QKeySequence::Delete, m_list);
    forget->setContext(Qt::WidgetShortcut);
    connect(forget, &QShortcut::activated, this, &HistoryView::deleteCurrent);
}

const Dictation *HistoryView::current() const
{
    const QModelIndex index = m_list->currentIndex();
    return index.isValid() ? &m_filter->entry(index) : nullptr;
}

QString HistoryView::selectedWord() const
{
    return Text::collapsed(m_text->textCursor().selectedText().replace(QChar::ParagraphSeparator, u' '));
}

void HistoryView::showCurrent()
{
    const Dictation *entry = current();
    const QString text = entry != nullptr ? entry->text : QString();
    if (m_text->toPlainText() != text) { // the same text keeps its selection
        m_text->setPlainText(text);
    }
    const bool wasChanged = entry != nullptr && entry->raw != entry->text;
    m_heard->setText(wasChanged ? tr("Heard: %1").arg(Text::collapsed(entry->raw)) : QString());
    m_heard->setVisible(wasChanged);
    m_message->hide();
    m_list->setEmptyText(m_model.rowCount() > 0 ? tr("Nothing in the history matches.")
                             : m_services.settings.config().keepHistory
                             ? tr("Nothing has been dictated yet.")
                             : tr("Dictations are not kept. The settings can change that."));
    updateButtons();
}

void HistoryView::updateButtons()
{
    const Dictation *entry = current();
    m_copy->setEnabled(entry != nullptr);
    m_copyHeard->setEnabled(entry != nullptr && !entry->raw.isEmpty());
    m_addWord->setEnabled(!selectedWord().isEmpty());
    m_delete->setEnabled(entry != nullptr);
    m_clear->setEnabled(m_model.rowCount() > 0);
}

void HistoryView::deleteCurrent()
{
    if (const Dictation *entry = current()) {
        m_services.history.remove(QUuid(entry->id)); // a copy: the entry goes
        showCurrent();
    }
}

void HistoryView::askToClear()
{
    if (m_question) { // an assistive program can press the button behind the question
        m_question->raise();
        return;
    }
    auto *box = new QMessageBox(
        QMessageBox::Question, tr("Clear the History"),
        tr("Delete all %n dictations from the history? This cannot be undone.", nullptr, m_model.rowCount()),
        QMessageBox::Cancel, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    const QPushButton *clear = box->addButton(tr("Clear All"), QMessageBox::DestructiveRole);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(clear, &QPushButton::clicked, this, [this] {
        m_services.history.clear();
        showCurrent();
    });
    m_question = box;
    box->open();
}

void HistoryView::say(const QString &sentence)
{
    m_message->setText(sentence);
    m_message->setVisible(!sentence.isEmpty());
}

} // namespace vesk
