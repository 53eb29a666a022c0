#include "media/damage.h"

#include "media/program_outline.h"
#include "media/snapshot.h"

std::string tape_damage(std::span<const uint8_t> bytes) {
    const auto programs = tape_programs(bytes);
    return programs.empty() ? "there is no program on it" : programs.front().damage;
}

std::string load_module_damage(std::span<const uint8_t> module) {
    return load_module_outline(module).damage;
}

std::string snapshot_damage(std::span<const uint8_t> snapshot) {
    if (snapshot.size() >= SNAPSHOT_SIZE) return {};
    return std::to_string(snapshot.size()) + " bytes found, " + std::to_string(SNAPSHOT_SIZE) +
           " bytes needed";
}
