#include "Platform/Linux/Keys/KeyTranslation.h"

#include <algorithm>
#include <array>

namespace vesk {

namespace {

struct Row {
    int xKeyCode;
    ModifierKey key;
};

constexpr std::array<Row, 9> Rows = {{
    {37, {59, 0x1}},      // left Control
    {50, {56, 0x2}},      // left Shift
    {62, {60, 0x4}},      // right Shift
    {64, {58, 0x20}},     // left Alt
    {66, {57, 0x1'0000}}, // Caps Lock
    {105, {54, 0x10}},    // right Control
    {108, {61, 0x40}},    // right Alt
    {133, {55, 0x8}},     // left Super
    {134, {54, 0x10}},    // right Super
}};

} // namespace

std::optional<ModifierKey> modifierKey(int xKeyCode)
{
    const auto *row = std::ranges::find(Rows, xKeyCode, &Row::xKeyCode);
    return row == Rows.end() ? std::nullopt : std::optional(row->key);
}

std::vector<int> xKeyCodes(int keyCode)
{
    std::vector<int> codes;
    for (const Row &row : Rows) {
        if (row.key.keyCode == keyCode) {
            codes.push_back(row.xKeyCode);
        }
    }
    return codes;
}

} // namespace vesk
