#pragma once

#include "Foundation/UserError.h"

#include <QString>

namespace vesk {

/// Standard output that takes no more: closed, its reader gone, its disk full.
class OutputError final : public UserError {
public:
    explicit OutputError(int errorNumber)
        : m_errorNumber(errorNumber)
    {
    }
    QString errorDescription() const override;

private:
    int m_errorNumber;
};

/// The two streams of a command. Main thread; UTF-8 whatever the locale.
class Terminal {
public:
    /// One line on standard output, written before it returns. Throws OutputError.
    void print(const QString &line);

    /// One line on standard error. Nobody is left to hear of a failure.
    void complain(const QString &line);

    /// A line on standard error that the next output replaces; nothing when standard error is no terminal.
    void showProgress(const QString &line);

private:
    void clearProgress();

    bool m_showsProgress = false;
};

/// Makes sure that descriptors 0, 1 and 2 are taken, so that no file of the person's is opened in the place
/// of a closed standard stream and then printed into. Before anything else is opened.
void occupyStandardDescriptors();

} // namespace vesk
