#pragma once

#include "Dictation/Dictation.h"

#include <QAbstractListModel>
#include <QSortFilterProxyModel>

#include <limits>

namespace vesk {

class HistoryStore;

/// The history as a list, newest first. Follows the store row by row where it can, so that a view keeps its
/// place and selection. Main thread; the store must outlive it.
class HistoryModel final : public QAbstractListModel {
    Q_OBJECT

public:
    explicit HistoryModel(HistoryStore &store, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    /// Display role: the text in one line. Tool tip and accessible text: with when and where.
    QVariant data(const QModelIndex &index, int role) const override;

    const Dictation &entry(int row) const { return m_entries.at(row); }

    /// How many entries, and words in them, have the date of today in local time.
    struct Count {
        int dictations = 0;
        int words = 0;
        friend bool operator==(const Count &, const Count &) = default;
    };
    Count countOf(const QDate &day) const;

    /// When, where and for how long, as a line below the text.
    static QString caption(const Dictation &entry, const QDate &today);

private:
    void follow();
    bool followAddition(const QList<Dictation> &now);
    bool followRemoval(const QList<Dictation> &now);

    HistoryStore &m_store;
    QList<Dictation> m_entries;
};

/// The entries in which every word of a search occurs, in what was typed, heard or the program's name.
class HistoryFilter final : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit HistoryFilter(HistoryModel &model, QObject *parent = nullptr);

    void setSearch(const QString &search);
    /// Shows only so many of the newest; all of them without.
    void setLimit(int limit);
    const Dictation &entry(const QModelIndex &index) const;

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    HistoryModel &m_model;
    QStringList m_words;
    int m_limit = std::numeric_limits<int>::max();
};

} // namespace vesk
