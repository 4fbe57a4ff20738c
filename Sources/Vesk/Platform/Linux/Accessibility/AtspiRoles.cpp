#include "Platform/Linux/Accessibility/AtspiTypes.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vesk::atspi {

namespace {

struct RoleName {
    uint role;
    std::u16string_view name;
};

// Sorted by the bus's number.
constexpr std::array RoleNames = std::to_array<RoleName>({
    {7, u"AXCheckBox"},     // check box
    {8, u"AXMenuItem"},     // check menu item
    {11, u"AXComboBox"},    // combo box
    {16, u"AXWindow"},      // dialog
    {23, u"AXWindow"},      // frame
    {26, u"AXImage"},       // icon
    {27, u"AXImage"},       // image
    {29, u"AXStaticText"},  // label
    {31, u"AXList"},        // list
    {32, u"AXCell"},        // list item
    {33, u"AXMenu"},        // menu
    {34, u"AXMenuBar"},     // menu bar
    {35, u"AXMenuItem"},    // menu item
    {37, u"AXRadioButton"}, // page tab
    {38, u"AXTabGroup"},    // page tab list
    {40, u"AXTextField"},   // password text
    {41, u"AXMenu"},        // popup menu
    {43, u"AXButton"},      // push button
    {44, u"AXRadioButton"}, // radio button
    {51, u"AXSlider"},      // slider
    {52, u"AXTextField"},   // spin button
    {55, u"AXTable"},       // table
    {56, u"AXCell"},        // table cell
    {60, u"AXTextArea"},    // terminal
    {62, u"AXCheckBox"},    // toggle button
    {65, u"AXOutline"},     // tree
    {66, u"AXOutline"},     // tree table
    {69, u"AXWindow"},      // window
    {76, u"AXComboBox"},    // autocomplete
    {77, u"AXTextField"},   // edit bar
    {82, u"AXWebArea"},     // document frame
    {88, u"AXLink"},        // link
    {91, u"AXRow"},         // tree item
    {94, u"AXTextArea"},    // document text
    {95, u"AXWebArea"},     // document web
    {96, u"AXWebArea"},     // document email
    {98, u"AXList"},        // list box
    {116, u"AXStaticText"}, // static text
});

} // namespace

QString accessibilityRole(uint role, States states)
{
    if (role == Role::Text || role == Role::Entry) {
        return states.has(State::multiLine) ? QStringLiteral("AXTextArea") : QStringLiteral("AXTextField");
    }
    const auto *const found = std::ranges::lower_bound(RoleNames, role, {}, &RoleName::role);
    if (found != RoleNames.end() && found->role == role) {
        return QString::fromUtf16(found->name.data(), static_cast<qsizetype>(found->name.size()));
    }
    // Pages give an editable block the role of what it looks like: paragraph, section, heading.
    return states.has(State::editable) ? QStringLiteral("AXTextArea") : QStringLiteral("AXUnknown");
}

} // namespace vesk::atspi
