#pragma once

#include <QByteArray>

#include <vector>
#include <xcb/xcb.h>

namespace vesk {

/// What a program answers when a selection is asked for in one form.
struct SelectionFormat {
    xcb_atom_t target = XCB_ATOM_NONE; ///< the form that is asked for
    xcb_atom_t type = XCB_ATOM_NONE;   ///< what the answer says it is: often, but not always, the same
    int unitBits = 8;                  ///< 8, 16 or 32: the server swaps larger units between unlike machines
    QByteArray bytes;

    friend bool operator==(const SelectionFormat &, const SelectionFormat &) = default;
};

using SelectionFormats = std::vector<SelectionFormat>;

/// What a selection held.
struct SelectionContent {
    SelectionFormats formats;
    bool isComplete = true; ///< false: its owner stopped answering
};

} // namespace vesk
