#include "Dictation/Rewrite.h"

#include "Foundation/VeskError.h"

namespace vesk::Rewrite {

QString selection(const std::optional<FocusContext> &context)
{
    if (!context) {
        throw VeskError::noSelection();
    }
    if (context->isSecure) {
        throw VeskError::secureField();
    }
    if (context->isSelectionCut) {
        throw VeskError::selectionTooLong(SelectionLimit);
    }
    const QString selected = context->selectedText.value_or(QString());
    if (selected.trimmed().isEmpty()) {
        throw VeskError::noSelection();
    }
    return selected;
}

} // namespace vesk::Rewrite
