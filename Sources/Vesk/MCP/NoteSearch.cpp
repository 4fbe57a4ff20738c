#include "MCP/NoteSearch.h"

#include "Foundation/ParallelFor.h"
#include "Notes/NoteFolder.h"

#include <array>
#include <optional>

namespace vesk {

namespace {

using Place = NewestNotes<FoundNote>::Place;

/// The fields that are searched, in the order in which their snippets are shown.
constexpr std::array<QStringView, 4> FieldNames = {u"title", u"summary", u"owner's notes", u"transcript"};

std::optional<std::size_t> placeOf(NoteVisitor::Field field)
{
    switch (field) {
    case NoteVisitor::Field::title: return 0;
    case NoteVisitor::Field::summary: return 1;
    case NoteVisitor::Field::thoughts: return 2;
    case NoteVisitor::Field::segment: return 3;
    default: return std::nullopt;
    }
}

/// Searches one note after the other while they are read. Each worker has one.
class SearchVisitor final : public HeadingVisitor {
public:
    SearchVisitor(const SearchPhrase &phrase, std::size_t most)
        : m_search(phrase)
        , m_found(most)
    {
    }

    void aim(std::size_t index) { m_index = index; }

    void begin() override
    {
        HeadingVisitor::begin();
        m_search.begin();
        m_isDated = false;
        m_matches = 0;
        for (QStringList &snippets : m_snippets) {
            snippets.clear();
        }
    }

    void created(ReferenceDate created) override
    {
        HeadingVisitor::created(created);
        m_isDated = true;
    }

    void text(Field field, QByteArrayView utf8, bool isLast) override
    {
        HeadingVisitor::text(field, utf8, isLast);
        const std::optional<std::size_t> place = placeOf(field);
        if (!place || (m_matches > 0 && !isShown())) {
            return;
        }
        using Thoroughness = TextSearch::Thoroughness;
        m_search.add(utf8, isLast, isShown() ? Thoroughness::all : Thoroughness::first);
        // A segment's snippets wait for its time and speaker.
        if (isLast && field != Field::segment) {
            collect(*place, {});
        }
    }

    void segment(double start, Note::Source source) override
    {
        if (m_search.matches() > 0) {
            collect(*placeOf(Field::segment),
                    u'[' + Note::clock(start) + u"] " + Note::speaker(source) + u": ");
        } else {
            m_search.begin();
        }
    }

    /// After the reader has said that it was a note.
    void keep()
    {
        if (m_matches == 0) {
            return;
        }
        ++m_total;
        if (isShown()) {
            m_found.add(place(), {heading(), m_matches, shownSnippets()});
        }
    }

    qsizetype total() const { return m_total; }
    NewestNotes<FoundNote> &found() { return m_found; }

private:
    Place place() const { return {heading().created, m_index}; }

    /// Whether the note may be among those that are shown. Its date stands before its texts in the files that
    /// the program writes.
    bool isShown() const { return !m_isDated || m_found.isWanted(place()); }

    void collect(std::size_t place, const QString &prefix)
    {
        m_matches += m_search.matches();
        for (const QString &snippet : m_search.snippets()) {
            if (m_snippets[place].size() < TextSearch::MostSnippets) {
                m_snippets[place].append(prefix + snippet);
            }
        }
        m_search.begin();
    }

    std::vector<FoundNote::Snippet> shownSnippets() const
    {
        std::vector<FoundNote::Snippet> shown;
        for (std::size_t place = 0; place < FieldNames.size(); ++place) {
            for (const QString &snippet : m_snippets[place]) {
                if (shown.size() < TextSearch::MostSnippets) {
                    shown.push_back({FieldNames[place].toString(), snippet});
                }
            }
        }
        return shown;
    }

    TextSearch m_search;
    NewestNotes<FoundNote> m_found;
    qsizetype m_total = 0;
    // Of the note that is being read:
    std::size_t m_index = 0;
    bool m_isDated = false;
    qsizetype m_matches = 0;
    std::array<QStringList, FieldNames.size()> m_snippets;
};

} // namespace

FoundNotes searchNotes(const QString &folder, const SearchPhrase &phrase, std::size_t most)
{
    const NoteFolder notes(folder);
    std::vector<SearchVisitor> visitors;
    const unsigned workers = workersForAllCores();
    visitors.reserve(workers); // they stay where they are
    for (unsigned worker = 0; worker < workers; ++worker) {
        visitors.emplace_back(phrase, most);
    }
    const auto filter = [&phrase](QByteArrayView json) { return phrase.mayBeInJson(json); };
    notes.forEach(workers, [&](NoteReader &reader, std::size_t index, unsigned worker) {
        SearchVisitor &visitor = visitors[worker];
        visitor.aim(index);
        if (notes.read(reader, index, visitor, filter)) {
            visitor.keep();
        }
    });
    FoundNotes found;
    NewestNotes<FoundNote> newest(most);
    for (SearchVisitor &visitor : visitors) {
        found.total += visitor.total();
        newest.take(visitor.found());
    }
    found.newest = newest.take();
    return found;
}

} // namespace vesk
