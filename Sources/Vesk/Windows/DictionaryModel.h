#pragma once

#include <QAbstractListModel>
#include <QStringList>
#include <QUndoStack>

namespace vesk {

class SettingsStore;

/// The person's own words as a list that can be edited, each change written at once and undoable until the
/// settings are changed from elsewhere. A word is one line without blanks at its ends; none stands there
/// twice. Main thread; the settings must outlive it.
class DictionaryModel final : public QAbstractListModel {
    Q_OBJECT

public:
    explicit DictionaryModel(SettingsStore &settings, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Renames. Refuses, with a sentence, a blank name and one that another word has.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    /// Adds the lines of a text, leaving out blank ones and words that are there. Says how many came. One
    /// step of undo. False when they could not be written.
    bool addLines(const QString &text);
    void remove(const QModelIndexList &indexes);

    /// One word a line, with an end to each.
    QString text() const;

    QUndoStack &undoStack() { return m_undo; }

Q_SIGNALS:
    /// A sentence about the last edit: what came in, or why nothing did.
    void said(const QString &sentence);

private:
    class Edit;

    void follow();
    void push(const QString &what, const QStringList &words);
    bool write(const QStringList &words);
    void show(const QStringList &words);

    SettingsStore &m_settings;
    QStringList m_words;
    QUndoStack m_undo;
    bool m_isWriting = false;
};

} // namespace vesk
