#include "cgenie/memory/memory.h"
#include "debugger_view/fact_list.h"
#include "media/wd1771.h"
#include "z80/z80.h"

#include <array>
#include <span>

namespace {

/// "busy, data request": the names of the bits that are set.
std::string bits_text(uint8_t value, std::span<const char* const, 8> names) {
    std::string text;
    for (int bit = 7; bit >= 0; --bit) {
        if (!(value >> bit & 1) || !*names[size_t(bit)]) continue;
        text += (text.empty() ? "" : ", ") + std::string(names[size_t(bit)]);
    }
    return text;
}

// ---- floppy disk controller --------------------------------------------------------------------

class DiskSection final : public FactSection {
public:
    const char* title() const override { return "Disk"; }

private:
    static std::string command_text(uint8_t command) {
        constexpr std::array names = {
            "restore",      "seek",         "step",         "step",
            "step in",      "step in",      "step out",     "step out",
            "read sector",  "read sectors", "write sector", "write sectors",
            "read address", "interrupt",    "read track",   "write track"};
        return names[size_t(command >> 4)];
    }

    /// Behind commands of the first type the bits tell of the head.
    static std::string status_text() {
        constexpr std::array head = {"busy",       "index",       "track 0",   "bad checksum",
                                     "seek error", "head loaded", "protected", "not ready"};
        constexpr std::array transfer = {"busy",      "data request", "lost data", "bad checksum",
                                         "not found", "deleted mark", "protected", "not ready"};
        return bits_text(wd1771.status, wd1771.command_type == 1 ? head : transfer);
    }

    static Fact drive(unsigned number) {
        const disk_record& disk = wd1771.disks[number];
        const std::string track = std::to_string(wd1771.head_track[number]);
        std::string text = "head on track " + track;
        if (disk.size) {
            text += ", disk of " + std::to_string(disk.tracks) + " tracks, " +
                    std::to_string(disk.sectors) + " sectors";
            if (disk.write_protected) text += ", protected";
            if (disk.modified) text += ", changed";
        } else {
            text += ", empty";
        }
        const bool selected = wd1771.drive_select >> number & 1;
        return {"drive " + std::to_string(number), selected ? "*" : "", text};
    }

    std::vector<Fact> facts() const override {
        const bool motor = uint64_t(z80_state.t_count) < wd1771.motor_timeout;
        std::vector<Fact> facts = {
            {"command", hex(wd1771.command, 2), command_text(wd1771.command)},
            {"status", hex(wd1771.status, 2), status_text()},
            {"track", hex(wd1771.track, 2), std::to_string(wd1771.track)},
            {"sector", hex(wd1771.sector, 2), std::to_string(wd1771.sector)},
            {"data", hex(wd1771.data, 2), ""},
            {"buffer", hex(wd1771.buffer_offset, 3), "bytes of the sector passed"},
            {"interrupt", std::to_string(wd1771.interrupt), ""},
            {"select", hex(wd1771.drive_select, 1), motor ? "motor runs" : "motor rests"}};
        for (unsigned number = 0; number < DISK_DRIVES; ++number) facts.push_back(drive(number));
        return facts;
    }
};

// ---- ports -------------------------------------------------------------------------------------

class PortSection final : public FactSection {
public:
    const char* title() const override { return "Ports"; }

private:
    static std::string latch_text(uint8_t latch) {
        constexpr std::array<const char*, 8> bits = {
            "cassette",       "",         "background 4",  "characters C0-FF from ROM",
            "80-BF from ROM", "graphics", "background 40", "background 80"};
        return bits_text(latch, bits);
    }

    std::vector<Fact> facts() const override {
        std::vector<Fact> facts = {{"F8", hex(ports[0xF8], 2), "sound register selected"},
                                   {"F9", hex(ports[0xF9], 2), "sound data"},
                                   {"FA", hex(ports[0xFA], 2), "CRTC register selected"},
                                   {"FB", hex(ports[0xFB], 2), "CRTC data"},
                                   {"FF", hex(ports[0xFF], 2), latch_text(ports[0xFF])},
                                   {"", "", "last byte written to each port:"}};
        for (uint32_t row = 0; row < 0x100; row += 0x10) {
            std::string bytes;
            for (uint32_t port = row; port < row + 0x10; ++port) {
                bytes += (port > row ? " " : "") + hex(ports[port], 2);
            }
            facts.push_back({hex(row, 2), "", bytes});
        }
        return facts;
    }
};

} // namespace

NewSection new_disk_section() { return std::make_unique<DiskSection>(); }
NewSection new_port_section() { return std::make_unique<PortSection>(); }
