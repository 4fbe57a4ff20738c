#pragma once

#include <QHash>
#include <QSet>
#include <QStringList>

#include <optional>

namespace vesk {

/// What the words after the program's name ask for.
struct Arguments {
    enum class Request {
        notesServer, ///< serve the notes to AI applications
        usage,       ///< the words make no sense together
        work,        ///< transcribe, clean up or rewrite
    };

    Request request = Request::usage;
    QSet<QString> flags;             ///< "--raw", "--cloud"
    QHash<QString, QString> options; ///< option word → value

    bool has(QLatin1StringView flag) const { return flags.contains(QString(flag)); }
    bool hasOption(QLatin1StringView option) const { return options.contains(QString(option)); }
    /// Nothing when the option was not given.
    std::optional<QString> option(QLatin1StringView word) const
    {
        const auto place = options.constFind(QString(word));
        return place == options.constEnd() ? std::nullopt : std::optional(*place);
    }

    /// An option takes the next word as its value whatever it looks like, so that a file may be called
    /// "--raw". Words that fit nowhere ask for the usage text; unknown options are ignored with their values.
    static Arguments parse(const QStringList &words);
};

/// What a person is shown who called the program the wrong way. Ends with a line feed.
extern const char *const UsageText;

} // namespace vesk
