#include "Windows/HistoryModel.h"

#include "Dictation/HistoryStore.h"
#include "Foundation/Text.h"

#include <QLocale>

#include <algorithm>

namespace vesk {

namespace {

bool areSame(QList<Dictation>::const_iterator from, QList<Dictation>::const_iterator to,
             QList<Dictation>::const_iterator other)
{
    return std::equal(from, to, other, [](const Dictation &a, const Dictation &b) { return a.id == b.id; });
}

} // namespace

HistoryModel::HistoryModel(HistoryStore &store, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_entries(store.entries())
{
    connect(&store, &HistoryStore::entriesChanged, this, &HistoryModel::follow);
}

int HistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant HistoryModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const Dictation &entry = m_entries.at(index.row());
    switch (role) {
    case Qt::DisplayRole: return Text::collapsed(entry.text);
    case Qt::AccessibleTextRole:
        return QString(Text::collapsed(entry.text) + QStringLiteral(", ")
                       + caption(entry, QDate::currentDate()));
    default: return {};
    }
}

HistoryModel::Count HistoryModel::countOf(const QDate &day) const
{
    Count count;
    for (const Dictation &entry : m_entries) {
        const QDate date = entry.date.toLocalTime().date();
        if (date < day) {
            break; // all that follow are older
        }
        if (date == day) {
            ++count.dictations;
            count.words += static_cast<int>(
                QStringView(Text::collapsed(entry.text)).split(u' ', Qt::SkipEmptyParts).size());
        }
    }
    return count;
}

QString HistoryModel::caption(const Dictation &entry, const QDate &today)
{
    const QLocale locale;
    const QDateTime when = entry.date.toLocalTime();
    const QString time = locale.toString(when.time(), QLocale::ShortFormat);
    QStringList parts;
    if (when.date() == today) {
        parts.append(time);
    } else if (when.date().addDays(1) == today) {
        parts.append(tr("Yesterday %1").arg(time));
    } else {
        parts.append(locale.toString(when.date(), QLocale::ShortFormat) + u' ' + time);
    }
    if (entry.kind == u"command") {
        parts.append(tr("Voice command"));
    }
    if (!entry.appName.isEmpty()) {
        parts.append(entry.appName);
    }
    parts.append(tr("%1 s").arg(locale.toString(entry.seconds, 'f', 1)));
    return parts.join(QStringLiteral(" · "));
}

void HistoryModel::follow()
{
    const QList<Dictation> now = m_store.entries();
    // In this order: of two entries, the newer one gone looks like the older one added at the cap.
    if (!followRemoval(now) && !followAddition(now)) {
        beginResetModel();
        m_entries = now;
        endResetModel();
    }
}

// One at the front; at the cap, one less at the end.
bool HistoryModel::followAddition(const QList<Dictation> &now)
{
    const qsizetype kept = now.size() - 1;
    if (now.isEmpty() || kept > m_entries.size()
        || !areSame(now.cbegin() + 1, now.cend(), m_entries.cbegin())) {
        return false;
    }
    if (kept < m_entries.size()) {
        if (!m_entries.isEmpty() && m_entries.first().id == now.first().id) {
            return false; // nothing was added
        }
        beginRemoveRows({}, static_cast<int>(kept), static_cast<int>(m_entries.size()) - 1);
        m_entries.resize(kept);
        endRemoveRows();
    }
    beginInsertRows({}, 0, 0);
    m_entries.prepend(now.first());
    endInsertRows();
    return true;
}

bool HistoryModel::followRemoval(const QList<Dictation> &now)
{
    if (now.size() + 1 != m_entries.size()) {
        return false;
    }
    const auto gone = std::mismatch(now.cbegin(), now.cend(), m_entries.cbegin(),
                                    [](const Dictation &a, const Dictation &b) { return a.id == b.id; });
    if (!areSame(gone.first, now.cend(), gone.second + 1)) {
        return false;
    }
    const int row = static_cast<int>(gone.second - m_entries.cbegin());
    beginRemoveRows({}, row, row);
    m_entries.removeAt(row);
    endRemoveRows();
    return true;
}

HistoryFilter::HistoryFilter(HistoryModel &model, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_model(model)
{
    setSourceModel(&model);
    const auto refilter = [this] {
        if (m_limit < std::numeric_limits<int>::max()) { // which rows are among the first has changed
            invalidateFilter();
        }
    };
    connect(&model, &QAbstractItemModel::rowsInserted, this, refilter);
    connect(&model, &QAbstractItemModel::rowsRemoved, this, refilter);
}

void HistoryFilter::setLimit(int limit)
{
    m_limit = limit;
    invalidateFilter();
}

void HistoryFilter::setSearch(const QString &search)
{
    m_words = Text::collapsed(search).split(u' ', Qt::SkipEmptyParts);
    invalidateFilter();
}

const Dictation &HistoryFilter::entry(const QModelIndex &index) const
{
    return m_model.entry(mapToSource(index).row());
}

bool HistoryFilter::filterAcceptsRow(int row, const QModelIndex &) const
{
    const Dictation &entry = m_model.entry(row);
    return row < m_limit
        && std::ranges::all_of(
               m_words,
               [&entry](const QString &word) {
                   return entry.text.contains(word, Qt::CaseInsensitive)
                       || entry.raw.contains(word, Qt::CaseInsensitive)
                       || entry.appName.contains(word, Qt::CaseInsensitive);
               });
}

} // namespace vesk
