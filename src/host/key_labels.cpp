#include "host/key_labels.h"

#include "host/engraving.h"
#include "host/key_map.h"
#include "platform/events.h"
#include "platform/platform.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr unsigned POSITION_LEFT = 53; ///< two keys press it by position

struct NamedKey {
    uint8_t key;
    const char* name;
};

constexpr NamedKey NAMED_KEYS[] = {
    {KEY_BACKSPACE, "BKSP"}, {KEY_TAB, "TAB"},      {KEY_RETURN, "ENTER"}, {KEY_SHIFT, "SHIFT"},
    {KEY_CONTROL, "CTRL"},   {KEY_SPACE, "SPACE"},  {KEY_END, "END"},      {KEY_HOME, "HOME"},
    {KEY_LEFT, "\u2190"},    {KEY_UP, "\u2191"},    {KEY_RIGHT, "\u2192"}, {KEY_DOWN, "\u2193"},
    {KEY_INSERT, "INS"},     {KEY_F1, "F1"},        {KEY_F2, "F2"},        {KEY_F3, "F3"},
    {KEY_F4, "F4"},          {KEY_OEM_1, ";"},      {KEY_OEM_PLUS, "="},   {KEY_OEM_COMMA, ","},
    {KEY_OEM_MINUS, "-"},    {KEY_OEM_PERIOD, "."}, {KEY_OEM_2, "/"},      {KEY_OEM_3, "`"},
    {KEY_OEM_4, "["},        {KEY_OEM_5, "\\"},     {KEY_OEM_6, "]"},      {KEY_OEM_7, "'"},
    {KEY_OEM_102, "<"},
};

bool has_own_code(uint8_t key) { return (key >= '0' && key <= '9') || (key >= 'A' && key <= 'Z'); }

std::string name_of(uint8_t key) {
    if (has_own_code(key)) return {char(key)};
    const bool types = key >= KEY_OEM_1 && key <= KEY_OEM_102;
    std::string label = types ? platform().keyboard().label(key) : std::string();
    if (can_be_engraved(label)) return label;
    const auto* const found = std::ranges::find(NAMED_KEYS, key, &NamedKey::key);
    return found == std::end(NAMED_KEYS) ? std::string() : found->name;
}

std::string chord_name(const KeyForCharacter& chord) {
    const bool alt_gr = chord.modifiers & MODIFIER_ALT;
    const bool shift = chord.modifiers & MODIFIER_SHIFT;
    return (alt_gr ? "ALTGR+" : "") + std::string(shift ? "\u21E7" : "") + name_of(chord.key);
}

} // namespace

std::string host_key_label(unsigned position, bool symbolic) {
    const auto plain = host_key_for(position, symbolic);
    const auto shifted = host_key_for(position, symbolic, true);
    std::string label = plain ? chord_name(*plain) : "";
    if (!symbolic && position == POSITION_LEFT) label += " " + name_of(KEY_BACKSPACE);
    if (!shifted) return label;
    // A key that gives both as the machine's does need not be told twice.
    const bool same = plain && *shifted == KeyForCharacter{plain->key, MODIFIER_SHIFT};
    if (same && plain->modifiers == 0) return label;
    return label + (label.empty() ? "" : " ") + chord_name(*shifted);
}
