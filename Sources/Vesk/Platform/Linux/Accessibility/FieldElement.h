#pragma once

#include "Platform/Linux/Accessibility/AbsentElement.h"
#include "Platform/Linux/Accessibility/FieldFacts.h"

namespace vesk {

/// The focused element of a program. Of a password field it answers role and subrole; every other question
/// about it is absent without being asked.
class FieldElement final : public AbsentElement {
public:
    FieldElement(AtspiSessionPointer session, FieldFacts facts, Patience patience);

    TextUnit textUnit() const override;
    Task<std::optional<QString>> string(QString attribute) override;
    Task<std::optional<qint64>> integer(QString attribute) override;
    Task<std::optional<TextRange>> range(QString attribute) override;
    Task<std::optional<QString>> text(TextRange range) override;

private:
    struct Shared; ///< outlives the element while questions are open
    std::shared_ptr<Shared> m_shared;
};

} // namespace vesk
