#include "Platform/Linux/Accessibility/SelectionRepair.h"

namespace vesk::SelectionRepair {

std::optional<TextRange> repaired(TextRange reported, qint64 caret, const QString &between)
{
    const qint64 end = reported.location + reported.length;
    const qint64 pairs = between.size() - between.toUcs4().size();
    if (caret >= end) {
        // The end was moved by all pairs before it, the start by those that are not between the two.
        const qint64 start = reported.location + (caret - end) - pairs;
        return start < reported.location ? std::nullopt : std::optional(TextRange{start, caret - start});
    }
    if (caret < reported.location) {
        return std::nullopt;
    }
    return TextRange{caret, reported.length + pairs};
}

} // namespace vesk::SelectionRepair
