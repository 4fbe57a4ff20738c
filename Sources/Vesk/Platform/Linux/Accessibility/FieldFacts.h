#pragma once

#include "Platform/Linux/Accessibility/AtspiSession.h"

namespace vesk {

/// What has to be known of an element before anything of its text may be asked for.
struct FieldFacts {
    atspi::Reference object;
    uint role = atspi::Role::Invalid;
    atspi::States states;
    QString toolkit; ///< "gtk" is GTK 3, "GTK" is GTK 4; empty when the program does not say
    /// Where the text is: the element itself, or the block of a page that the cursor stands in.
    atspi::Reference textObject;
    bool hasText = false;
    bool isSecret = false; ///< a password field: its text must not be asked for in any way

    /// The text as it stands on the screen, of fields where no other way is safe. GTK 4 hands out the clear
    /// text of hidden fields, and nothing but what is displayed tells them from others.
    std::optional<QString> displayed;

    bool isFocused() const { return states.has(atspi::State::focused); }
};

/// Nothing when the element does not answer or is not ready yet.
Task<std::optional<FieldFacts>> readFacts(AtspiSessionPointer session, atspi::Reference object,
                                          Patience patience);

/// True for what a field displays instead of `count` characters that it hides: a run of one sign, of which
/// the last may still be readable, as touch screens show it for a moment; or nothing at all.
bool looksHidden(const QString &displayed, qint64 count);

} // namespace vesk
