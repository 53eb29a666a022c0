#pragma once

#include "core/machine.h"
#include "media/disk_system.h"
#include "media/files/drive_files.h"
#include "support/basic_machine.h"
#include "support/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

/// The machine with the disk ROM and a disk in drive 0 that was never formatted.
class DiskMachine {
public:
    static constexpr size_t SECTOR = 256, ENTRY = 16;
    DiskMachine(int model, size_t disk_tracks, size_t disk_sectors)
        : DiskMachine(model, disk_tracks, disk_sectors,
                      std::vector<uint8_t>(disk_tracks * disk_sectors * SECTOR, 0xE5)) {}
    DiskMachine(int model, size_t disk_tracks, size_t disk_sectors,
                const std::vector<uint8_t>& bytes)
        : tracks(disk_tracks), sectors(disk_sectors) {
        machine_cfg[model].expansion_rom = 0;
        insert(bytes);
        machine.boot(model, trial_rom());
    }
    ~DiskMachine() { diskimg_detach(0, false); }
    /// Puts a disk of these bytes into drive 0.
    void insert(const std::vector<uint8_t>& bytes) {
        write_file(path, bytes);
        ASSERT_EQ(diskimg_attach(0, path), 1);
    }
    /// Writes the disk to its file and puts that into the drive.
    void take_out_and_back() {
        ASSERT_EQ(diskimg_detach(0, true), 1);
        ASSERT_EQ(diskimg_attach(0, path), 1);
    }
    /// The rows that the text leaves on an empty screen.
    std::vector<std::string> rows(const std::string& text) {
        EXPECT_TRUE(machine.type("CLS\n" + text)) << text;
        return machine.screen();
    }
    /// The row before the last prompt.
    std::string answer(const std::string& text) {
        const auto all = rows(text);
        for (size_t i = all.size(); i-- > 1;) {
            if (all[i] == "READY") return all[i - 1];
        }
        return {};
    }
    const uint8_t* sector(size_t track, size_t number) const {
        return drive_contents[0].view().data() + (track * sectors + number) * SECTOR;
    }
    /// The entry of the file, nullptr when there is none.
    const uint8_t* entry(const std::string& name) const {
        for (size_t i = 0; i < (sectors - 1) * SECTOR; i += ENTRY) {
            const uint8_t* const found = sector(tracks / 2, 1) + i;
            if (*found == 0) break;
            if (std::equal(name.begin(), name.end(), found)) return found;
        }
        return nullptr;
    }
    /// What the file holds, read along its chain of blocks.
    std::string contents(const std::string& name) const {
        std::string all;
        const uint8_t* const file = entry(name);
        if (!file) return "no file";
        for (unsigned block = file[12]; block < CHAIN_END && all.size() < LARGEST;) {
            const unsigned next = sector(tracks / 2, 0)[block];
            const size_t used = next < CHAIN_END ? sectors / 2 : next - CHAIN_END;
            const uint8_t* const first = sector(block / 2, block % 2 * (sectors / 2));
            all.append(reinterpret_cast<const char*>(first), used * SECTOR);
            if (next >= CHAIN_END && file[13]) all.resize(all.size() - SECTOR + file[13]);
            block = next;
        }
        std::string problem;
        const auto disk = disk_mount(wd1771_disk(0), problem);
        const auto found = disk ? disk_find(*disk, name.substr(0, name.find(' '))) : std::nullopt;
        const auto bytes = found ? disk_contents(*disk, *found) : std::nullopt;
        EXPECT_TRUE(!found || (bytes && std::ranges::equal(*bytes, std::span(all), {}, {},
                                                           [](char c) { return uint8_t(c); })))
            << name;
        return all;
    }
    /// What the library for the host finds: name, type and length of each file, and every fault.
    std::string found() const {
        std::string text;
        const auto disk = disk_mount(wd1771_disk(0), text);
        if (!disk) return text;
        for (const DiskFile& file : disk_files(*disk)) {
            text += text.empty() ? "" : ", ";
            text += disk_name_text(file.name) + " " + std::to_string(file.type) + " " +
                    std::to_string(file.bytes);
        }
        for (const DiskFault& fault : disk_check(*disk)) text += "; " + fault.text;
        EXPECT_EQ(disk_free_blocks(*disk), free_blocks());
        return text;
    }
    size_t free_blocks() const {
        return size_t(std::count(sector(tracks / 2, 0), sector(tracks / 2, 0) + 2 * tracks, 0xFF));
    }

    BasicMachine machine;
    const size_t tracks, sectors;

private:
    static constexpr uint8_t CHAIN_END = 0xC0;
    static constexpr size_t LARGEST = 1 << 20;
    const Folder folder;
    const std::string path = folder / "disk.dsk";
};
