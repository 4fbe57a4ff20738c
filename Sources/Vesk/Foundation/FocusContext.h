#pragma once

#include <QString>

#include <optional>

namespace vesk {

/// The field that dictated text is meant for: where it is, how it is labelled, what stands around the cursor.
/// A plain value; an absent member is one that could not be read. Lengths are counted in the units of the
/// accessibility interface that filled it.
struct FocusContext {
    QString appName;
    QString bundleID;
    std::optional<QString> windowTitle;
    std::optional<QString> role;
    std::optional<QString> label;
    std::optional<QString> textBefore;
    std::optional<QString> selectedText;
    std::optional<QString> textAfter;
    bool isSecure = false;       ///< a password field: nothing of its text is ever read
    bool isSelectionCut = false; ///< `selectedText` holds only the beginning of the selection

    friend bool operator==(const FocusContext &, const FocusContext &) = default;
};

} // namespace vesk
