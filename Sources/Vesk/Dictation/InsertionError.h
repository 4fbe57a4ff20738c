#pragma once

#include "Foundation/UserError.h"

#include <utility>

namespace vesk {

/// Why text was not pasted. Thrown before anything reached the other program.
class InsertionError final : public UserError {
public:
    enum class Case { modifiersHeld, unavailable };

    /// The person held Shift, Control or the like for so long that a paste key would have meant something
    /// else.
    static InsertionError modifiersHeld();

    /// `reason` is the sentence of the service that cannot work.
    static InsertionError unavailable(QString reason);

    Case errorCase() const { return m_case; }
    QString errorDescription() const override { return m_description; }

private:
    InsertionError(Case errorCase, QString description)
        : m_case(errorCase)
        , m_description(std::move(description))
    {
    }

    Case m_case;
    QString m_description;
};

} // namespace vesk
