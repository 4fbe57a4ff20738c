#include "Windows/DictionaryView.h"

#include "Windows/Controls.h"
#include "Windows/DictionaryModel.h"
#include "Windows/EmptyListView.h"
#include "Windows/SettingsStore.h"

#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QSaveFile>
#include <QShortcut>
#include <QSortFilterProxyModel>
#include <QStringDecoder>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

namespace vesk {

namespace {

/// No list of words that anybody typed is longer; a film chosen by mistake is not read into memory.
constexpr int LargestImport = 4'000'000;

/// A field within the list has no label that could say what it is.
class WordDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override
    {
        QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
        editor->setAccessibleName(DictionaryView::tr("Word"));
        return editor;
    }
};

} // namespace

DictionaryView::DictionaryView(SettingsStore &settings, DictionaryModel &words, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_words(words)
    , m_sorted(new QSortFilterProxyModel(this))
    , m_entry(new QLineEdit)
    , m_add(new QPushButton(tr("&Add")))
    , m_search(new QLineEdit)
    , m_list(new EmptyListView)
    , m_rename(new QPushButton(tr("&Rename")))
    , m_remove(new QPushButton(tr("Re&move")))
    , m_undo(new QPushButton(tr("&Undo")))
    , m_import(new QPushButton(tr("&Import…")))
    , m_export(new QPushButton(tr("&Export…")))
    , m_message(new HintLabel)
{
    m_sorted->setSourceModel(&words);
    m_sorted->setSortCaseSensitivity(Qt::CaseInsensitive);
    m_sorted->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_sorted->setSortLocaleAware(true);
    m_sorted->sort(0);
    build();
    connectControls();
    updateState();
}

void DictionaryView::build()
{
    m_entry->setPlaceholderText(tr("A name or a term, as it is written"));
    m_entry->setAccessibleName(tr("New word"));
    m_entry->setMaxLength(LargestImport); // lines pasted through the menu stay lines, all of them
    m_search->setPlaceholderText(tr("Search the dictionary"));
    m_search->setAccessibleName(tr("Search the dictionary"));
    m_search->setClearButtonEnabled(true);
    m_list->setModel(m_sorted);
    m_list->setItemDelegate(new WordDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setSpacing(2);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    m_list->setAccessibleName(tr("Dictionary"));
    auto *column = new QVBoxLayout(this);
    const int margin = fontMetrics().height();
    column->setContentsMargins(margin, margin, margin, margin);
    column->addWidget(
        new HintLabel(tr("Names and terms that Vesk should spell as you do. Paste a list to add "
                         "many at once, one a line.")));
    column->addLayout(entryRow());
    column->addWidget(m_search);
    column->addWidget(m_list, 1);
    column->addLayout(buttonRow());
    column->addWidget(m_message);
    m_message->hide();
}

QLayout *DictionaryView::entryRow()
{
    auto *row = new QHBoxLayout;
    row->addWidget(m_entry, 1);
    row->addWidget(m_add);
    return row;
}

QLayout *DictionaryView::buttonRow()
{
    auto *row = new QHBoxLayout;
    for (QPushButton *button : {m_rename, m_remove, m_undo}) {
        row->addWidget(button);
    }
    row->addStretch();
    row->addWidget(m_import);
    row->addWidget(m_export);
    return row;
}

void DictionaryView::connectControls()
{
    m_entry->installEventFilter(this);
    m_list->installEventFilter(this);
    connect(m_entry, &QLineEdit::returnPressed, this, &DictionaryView::add);
    connect(m_entry, &QLineEdit::textChanged, this, &DictionaryView::updateState);
    connect(m_add, &QPushButton::clicked, this, &DictionaryView::add);
    connect(m_search, &QLineEdit::textChanged, m_sorted, &QSortFilterProxyModel::setFilterFixedString);
    connect(m_list, &EmptyListView::currentMoved, this, &DictionaryView::updateState);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DictionaryView::updateState);
    connect(m_rename, &QPushButton::clicked, this, [this] { m_list->edit(m_list->currentIndex()); });
    connect(m_remove, &QPushButton::clicked, this, &DictionaryView::remove);
    connect(m_undo, &QPushButton::clicked, &m_words.undoStack(), &QUndoStack::undo);
    connect(&m_words.undoStack(), &QUndoStack::indexChanged, this, &DictionaryView::updateState);
    connect(m_import, &QPushButton::clicked, this, &DictionaryView::chooseImport);
    connect(m_export, &QPushButton::clicked, this, &DictionaryView::chooseExport);
    connect(&m_words, &DictionaryModel::said, this, &DictionaryView::say);
    for (const auto change : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved}) {
        connect(m_sorted, change, this, &DictionaryView::updateState);
    }
    connect(m_sorted, &QAbstractItemModel::modelReset, this, &DictionaryView::updateState);
    connect(&m_settings, &SettingsStore::problemChanged, this, &DictionaryView::updateState);
    const auto shortcut = [this](QKeySequence::StandardKey key, const auto &receiver, auto slot) {
        auto *made = new QShortcut(key, this);
        made->setContext(Qt::WidgetWithChildrenShortcut);
        connect(made, &QShortcut::activated, receiver, slot);
    };
    shortcut(QKeySequence::Find, m_search, qOverload<>(&QLineEdit::setFocus));
    shortcut(QKeySequence::Undo, &m_words.undoStack(), &QUndoStack::undo);
    shortcut(QKeySequence::Redo, &m_words.undoStack(), &QUndoStack::redo);
}

// Several lines pasted are several words, which need no further key.
bool DictionaryView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const QString pasted =
            key->matches(QKeySequence::Paste) ? QGuiApplication::clipboard()->text() : QString();
        if (!pasted.isEmpty() && (watched == m_list || pasted.trimmed().contains(u'\n'))) {
            m_words.addLines(pasted);
            return true;
        }
        if (watched == m_list && key->matches(QKeySequence::Delete)) {
            remove();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void DictionaryView::add()
{
    const QString word = m_entry->text();
    m_search->clear();
    if (m_words.addLines(word)) {
        m_entry->clear();
    }
    m_entry->setFocus();
    for (int row = 0; row < m_sorted->rowCount(); ++row) {
        const QModelIndex index = m_sorted->index(row, 0);
        if (m_sorted->mapToSource(index).row() == m_words.rowCount() - 1) {
            m_list->scrollTo(index);
        }
    }
}

void DictionaryView::remove()
{
    QModelIndexList chosen;
    for (const QModelIndex &index : m_list->selectionModel()->selectedIndexes()) {
        chosen.append(m_sorted->mapToSource(index));
    }
    m_words.remove(chosen);
}

void DictionaryView::chooseImport()
{
    auto *dialog = new QFileDialog(this, tr("Import Words"), {}, tr("Text (*.txt);;All files (*)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &DictionaryView::importFile);
    dialog->open();
}

void DictionaryView::chooseExport()
{
    auto *dialog = new QFileDialog(this, tr("Export Words"), {}, tr("Text (*.txt);;All files (*)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    connect(dialog, &QFileDialog::fileSelected, this, &DictionaryView::exportFile);
    dialog->open();
}

void DictionaryView::importFile(const QString &path)
{
    QFile file(path);
    const QString name = QFileInfo(path).fileName();
    if (!file.open(QIODevice::ReadOnly)) {
        say(tr("%1 cannot be read: %2").arg(name, file.errorString()));
        return;
    }
    if (file.size() > LargestImport) {
        say(tr("%1 is too large to be a list of words.").arg(name));
        return;
    }
    // Otherwise a character that the end of the file cuts off is no error, but waits for the rest.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(file.readAll());
    if (decoder.hasError() || text.contains(QChar::Null)) {
        say(tr("%1 is not a text in UTF-8, so nothing was added.").arg(name));
        return;
    }
    m_words.addLines(text);
}

void DictionaryView::exportFile(const QString &path)
{
    QSaveFile file(path);
    const QByteArray text = m_words.text().toUtf8();
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
    const QString name = QFileInfo(path).fileName();
    say(isWritten ? tr("Exported to %1.").arg(name)
                  : tr("%1 cannot be written: %2").arg(name, file.errorString()));
}

void DictionaryView::updateState()
{
    const bool canEdit = m_settings.isReadable();
    const bool isChosen = m_list->selectionModel()->hasSelection();
    m_entry->setEnabled(canEdit);
    m_add->setEnabled(canEdit && !m_entry->text().trimmed().isEmpty());
    m_rename->setEnabled(canEdit && isChosen && m_list->currentIndex().isValid());
    m_remove->setEnabled(canEdit && isChosen);
    m_undo->setEnabled(canEdit && m_words.undoStack().canUndo());
    m_import->setEnabled(canEdit);
    m_export->setEnabled(m_words.rowCount() > 0);
    m_list->setEmptyText(m_words.rowCount() > 0 ? tr("No word matches.") : tr("No words yet."));
}

void DictionaryView::say(const QString &sentence)
{
    m_message->setText(sentence);
    m_message->setVisible(!sentence.isEmpty());
}

} // namespace vesk
