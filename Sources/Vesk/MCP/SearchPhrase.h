#pragma once

#include "MCP/BytePattern.h"

#include <QString>

#include <optional>

namespace vesk {

/// What is searched for, and a quick way to say that a text cannot contain it. The quick way looks for a few
/// bytes that every spelling must have: a run of the phrase's letters in any case, or one of the rare
/// characters that fold to something of that run. A plain value; asked from any thread.
class SearchPhrase {
public:
    explicit SearchPhrase(const QString &phrase);

    /// The phrase as CaseFolding folds it; a text matches where some whole characters of it fold to this.
    const QString &folded() const { return m_folded; }

    /// False only when no match can be in it.
    bool mayBeInText(QByteArrayView utf8) const;

    /// The same for a JSON document whose strings are not decoded yet.
    bool mayBeInJson(QByteArrayView json) const;

private:
    QString m_folded;
    std::vector<BytePattern> m_patterns; // one of them stands in every match; empty when nothing can be said
};

} // namespace vesk
