#include "platform/pressed_keys.h"

#include <algorithm>

void PressedKeys::press(uint64_t source, uint8_t key, bool alt_gr) {
    std::erase_if(pressed_, [=](const Pressed& tapped) { return tapped.source == source; });
    if (key != KEY_NONE) pressed_.push_back({source, key, alt_gr});
}

bool PressedKeys::release(uint64_t source) {
    return end(std::ranges::find(pressed_, source, &Pressed::source));
}

void PressedKeys::release_key(uint8_t key) { end(std::ranges::find(pressed_, key, &Pressed::key)); }

bool PressedKeys::end(std::vector<Pressed>::iterator press) {
    if (press == pressed_.end()) return false;
    if (press->frames > 0) {
        press->tapped = true;
    } else {
        pressed_.erase(press);
    }
    return true;
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

bool PressedKeys::is_held(uint64_t source) const {
    const auto found = std::ranges::find(pressed_, source, &Pressed::source);
    return found != pressed_.end() && !found->tapped;
}
