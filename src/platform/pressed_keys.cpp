#include "platform/pressed_keys.h"

#include <algorithm>

void PressedKeys::press(int source, uint8_t key, bool alt_gr) {
    std::erase_if(pressed_, [=](const Pressed& tapped) { return tapped.source == source; });
    if (key != KEY_NONE) pressed_.push_back({source, key, alt_gr});
}

void PressedKeys::release(int source) {
    const auto found = std::ranges::find(pressed_, source, &Pressed::source);
    if (found == pressed_.end()) return;
    if (found->frames > 0) {
        found->tapped = true;
    } else {
        pressed_.erase(found);
    }
}

void PressedKeys::release_tapped() {
    for (Pressed& pressed : pressed_) pressed.frames -= pressed.frames > 0;
    std::erase_if(pressed_, [](const Pressed& key) { return key.tapped && key.frames == 0; });
}

bool PressedKeys::is_down(uint8_t key) const {
    const bool alt_gr_too = key == KEY_CONTROL;
    return std::ranges::any_of(pressed_, [=](const Pressed& pressed) {
        return pressed.key == key || (alt_gr_too && pressed.alt_gr);
    });
}
