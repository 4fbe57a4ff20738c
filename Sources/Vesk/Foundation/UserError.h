#pragma once

#include <QString>

#include <exception>
#include <utility>

namespace vesk {

/// The root of every failure that a person may read. The type that is thrown owns the sentence; an edge
/// (indicator, standard error, menu) shows it as it stands.
class UserError : public std::exception {
public:
    /// One sentence for the person, without a prefix.
    virtual QString errorDescription() const = 0;

    /// The same sentence in UTF-8, for a debugger or an uncaught exception. Not for display.
    const char *what() const noexcept override;

private:
    mutable QByteArray m_what;
};

/// A failure that is nothing but its sentence. Thrown as a type derived from it, so that a handler can tell
/// one from another.
class SentenceError : public UserError {
public:
    explicit SentenceError(QString sentence)
        : m_sentence(std::move(sentence))
    {
    }
    QString errorDescription() const final { return m_sentence; }

private:
    QString m_sentence;
};

/// The sentence for any exception: a UserError's own, another exception's what().
QString describe(const std::exception &error);

/// The same for what a catch-all caught. Must be called while `error` is not null.
QString describe(std::exception_ptr error);

} // namespace vesk
