#include "Windows/DictionaryModel.h"

#include "Foundation/Text.h"
#include "Windows/SettingsStore.h"

#include <QSet>
#include <QUndoCommand>

namespace vesk {

/// The whole list before and after: lists share their words, so five thousand of them cost pointers.
class DictionaryModel::Edit final : public QUndoCommand {
public:
    Edit(DictionaryModel &model, const QString &text, QStringList after)
        : QUndoCommand(text)
        , m_model(model)
        , m_before(model.m_words)
        , m_after(std::move(after))
    {
    }

    void undo() override { setObsolete(!m_model.write(m_before)); }
    void redo() override { setObsolete(!m_model.write(m_after)); }

private:
    DictionaryModel &m_model;
    QStringList m_before;
    QStringList m_after;
};

DictionaryModel::DictionaryModel(SettingsStore &settings, QObject *parent)
    : QAbstractListModel(parent)
    , m_settings(settings)
    , m_words(settings.config().vocabulary)
{
    connect(&settings, &SettingsStore::changed, this, &DictionaryModel::follow);
}

int DictionaryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_words.size());
}

QVariant DictionaryModel::data(const QModelIndex &index, int role) const
{
    const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
    return isText && checkIndex(index, CheckIndexOption::IndexIsValid) ? m_words.at(index.row()) : QVariant();
}

Qt::ItemFlags DictionaryModel::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index) | (index.isValid() ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

bool DictionaryModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return false;
    }
    const QString name = Text::collapsed(value.toString());
    if (name == m_words.at(index.row())) {
        return true;
    }
    if (name.isEmpty()) {
        Q_EMIT said(tr("A word cannot be blank. Use Remove to take it out."));
        return false;
    }
    if (m_words.contains(name)) {
        Q_EMIT said(tr("“%1” is already in the dictionary.").arg(name));
        return false;
    }
    QStringList words = m_words;
    words[index.row()] = name;
    push(tr("Rename"), words);
    return true;
}

bool DictionaryModel::addLines(const QString &text)
{
    QStringList words = m_words;
    QSet<QString> known(words.cbegin(), words.cend());
    int repeated = 0;
    for (const QStringView line : Text::nonEmptyLines(text)) {
        const QString word = Text::collapsed(line);
        if (word.isEmpty()) {
            continue;
        }
        if (known.contains(word)) {
            ++repeated;
            continue;
        }
        known.insert(word);
        words.append(word);
    }
    const auto added = static_cast<int>(words.size() - m_words.size());
    if (added > 0) {
        push(tr("Add"), words);
    }
    if (added > 0 && m_words == words) {
        const QString sum = added == 1 ? tr("One word added.") : tr("%n words added.", nullptr, added);
        Q_EMIT said(repeated == 0 ? sum : QString(sum + u' ' + tr("%n already there.", nullptr, repeated)));
    } else if (added == 0 && repeated > 0) {
        Q_EMIT said(repeated == 1 ? tr("That word is already in the dictionary.")
                                  : tr("All of these words are already in the dictionary."));
    } else if (added == 0) {
        Q_EMIT said(tr("There is no word in that text."));
    }
    return m_words == words;
}

void DictionaryModel::remove(const QModelIndexList &indexes)
{
    QSet<int> rows;
    for (const QModelIndex &index : indexes) {
        rows.insert(index.row());
    }
    QStringList words;
    for (int row = 0; row < m_words.size(); ++row) {
        if (!rows.contains(row)) {
            words.append(m_words.at(row));
        }
    }
    if (words.size() < m_words.size()) {
        push(tr("Remove"), words);
    }
}

QString DictionaryModel::text() const { return m_words.isEmpty() ? QString() : m_words.join(u'\n') + u'\n'; }

void DictionaryModel::follow()
{
    if (!m_isWriting && m_settings.config().vocabulary != m_words) {
        m_undo.clear(); // its steps would take back what somebody else did
        show(m_settings.config().vocabulary);
    }
}

void DictionaryModel::push(const QString &what, const QStringList &words)
{
    const QStringList before = m_words;
    m_settings.reload(); // an edit by hand of this moment counts; what was asked for is then refused
    if (m_words == before) {
        m_undo.push(new Edit(*this, what, words)); // the stack owns it
    } else {
        Q_EMIT said(tr("The dictionary was changed elsewhere in this moment. Please try again."));
    }
}

bool DictionaryModel::write(const QStringList &words)
{
    m_isWriting = true;
    const bool isWritten = m_settings.change([&words](Config &config) { config.vocabulary = words; });
    m_isWriting = false;
    show(m_settings.config().vocabulary);
    if (!isWritten) {
        Q_EMIT said(m_settings.problem());
    }
    return isWritten;
}

void DictionaryModel::show(const QStringList &words)
{
    if (words == m_words) {
        return;
    }
    const qsizetype before = m_words.size();
    const qsizetype after = words.size();
    if (after > before && words.first(before) == m_words) { // added at the end: the view keeps its place
        beginInsertRows({}, static_cast<int>(before), static_cast<int>(after) - 1);
        m_words = words;
        endInsertRows();
        return;
    }
    if (after == before) {
        m_words = words;
        Q_EMIT dataChanged(index(0), index(static_cast<int>(after) - 1));
        return;
    }
    beginResetModel();
    m_words = words;
    endResetModel();
}

} // namespace vesk
