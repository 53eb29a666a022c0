#include "cgenie/memory/memory.h"
#include "files/file_names.h"
#include "host/dialogs/ask.h"
#include "host/disk_questions.h"
#include "host/media_panels.h"
#include "host/messages.h"
#include "host/previews.h"
#include "media/files/drive_files.h"
#include "media/files/typed_text.h"
#include "media/wd1771.h"
#include "platform/platform.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <memory>

namespace {

enum DiskPanelControl : int {
    DISK_CLOSE = 2,
    DISK_DRIVE,
    DISK_FILES,
    DISK_STATE,
    DISK_RUN,
    DISK_LOAD,
    DISK_COPY
};

constexpr Size TABLE = {56, 12};
constexpr size_t LONGEST_NAME = 48; ///< of an image's file

struct DiskPanel {
    std::unique_ptr<Form> form; ///< made once, then hidden and shown
    unsigned drive = 0;
    std::vector<std::string> drives, rows; ///< as they are shown
    shared_bytes contents;                 ///< that the files are of
    std::vector<DiskFile> files;
    std::string free;        ///< room; empty where no directory is known
    bool is_current = false; ///< all of this is that of the drive
};
DiskPanel panel;

FormDescription disk_form() {
    using enum ControlKind;
    return {"Disk directory",
            {{.kind = row,
              .children = {{.kind = label, .text = "&Drive:"},
                           {.kind = list, .id = DISK_DRIVE, .items = panel.drives}}},
             {.kind = table,
              .id = DISK_FILES,
              .name = "Files",
              .headings = {"Name", "Bytes", "Kind"},
              .table_area = TABLE},
             {.kind = note, .id = DISK_STATE},
             {.kind = buttons,
              .children = {{.kind = button, .id = DISK_RUN, .text = "&Run"},
                           {.kind = button, .id = DISK_LOAD, .text = "&Load"},
                           {.kind = button, .id = DISK_COPY, .text = "Save a &copy..."},
                           {.kind = cancel_button, .id = DISK_CLOSE, .text = "Close"}}}}};
}

std::string drive_line(unsigned drive) {
    const std::string number = ":" + std::to_string(drive) + "  ";
    if (!diskimg_inserted(wd1771.disks[drive])) return number + "no disk";
    const std::string& path = drive_files[drive].path;
    if (path.empty()) return number + "a disk without a file";
    return number + ending_of(file_name_of(path), LONGEST_NAME);
}

/// Whether the machine's keyboard can type the name into a string.
bool can_be_typed(const DiskName& name) {
    return std::ranges::all_of(
        name, [](uint8_t byte) { return byte >= ' ' && byte <= 'Z' && byte != '"'; });
}

/// Null without one.
const DiskFile* chosen_file() {
    const int row = panel.form->value(DISK_FILES);
    return row >= 0 && size_t(row) < panel.files.size() ? &panel.files[size_t(row)] : nullptr;
}

void type_command(const std::string& word) {
    const DiskFile* const file = chosen_file();
    if (!file || !panel.form->is_enabled(DISK_RUN)) return;
    const std::string drive = panel.drive ? ":" + std::to_string(panel.drive) : "";
    const std::string command = word + "\"" + disk_name_text(file->name) + drive + "\"";
    // Typing skips the byte behind a carriage return, as that of a pair.
    obey_user([&command] { type_into_machine("\r\n" + command + "\r"); });
    StatusBarText("Typed: %s", command.c_str());
}

void read_directory() {
    panel.is_current = true;
    panel.contents = drive_contents[panel.drive];
    panel.files.clear();
    panel.free.clear();
    std::string problem;
    if (!diskimg_inserted(wd1771.disks[panel.drive])) return;
    const auto disk = disk_mount(wd1771_disk(panel.drive), problem);
    if (!disk) return;
    panel.files = disk_files(*disk);
    panel.free = free_text(*disk);
}

std::vector<std::string> file_rows() {
    std::vector<std::string> rows;
    for (const DiskFile& file : panel.files) {
        rows.push_back(disk_name_text(file.name) + "\t" +
                       (file.whole ? std::to_string(file.bytes) : "damaged") + "\t" +
                       kind_text(file));
    }
    return rows;
}

std::string state_text() {
    const disk_record& disk = wd1771.disks[panel.drive];
    if (!diskimg_inserted(disk)) return "There is no disk in this drive.";
    std::string text = shape_text(disk);
    if (disk.write_protected) text += ", write-protected";
    if (disk.modified) text += ", not saved yet";
    if (panel.free.empty()) return text + ". It has no directory that the disk ROM knows.";
    text += ". " + counted(panel.files.size(), "file") + ", " + panel.free + ".";
    return memory_has_eprom() ? text : text + " Run and Load need the disk ROM.";
}

void refresh() {
    Form& form = *panel.form;
    std::vector<std::string> drives;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) drives.push_back(drive_line(drive));
    if (drives != panel.drives) {
        panel.drives = drives;
        form.set_items(DISK_DRIVE, drives);
        form.set_value(DISK_DRIVE, int(panel.drive));
    }
    if (!panel.is_current || !(panel.contents == drive_contents[panel.drive])) read_directory();
    const std::vector<std::string> rows = file_rows();
    if (rows != panel.rows) form.set_items(DISK_FILES, rows);
    panel.rows = rows;
    if (const std::string text = state_text(); form.text(DISK_STATE) != text) {
        form.set_text(DISK_STATE, text);
    }
    const DiskFile* const file = chosen_file();
    const bool can_run = file && file->whole && memory_has_eprom() && can_be_typed(file->name);
    form.set_enabled(DISK_RUN, can_run);
    form.set_enabled(DISK_LOAD, can_run);
    form.set_enabled(DISK_COPY, diskimg_inserted(wd1771.disks[panel.drive]));
}

void save_copy() {
    if (!diskimg_inserted(wd1771.disks[panel.drive])) return;
    obey_user([] { save_disk_elsewhere(drive_contents[panel.drive], [](const auto&) {}); });
}

void user_acts(Form& form, const FormEvent& event) {
    switch (event.control) {
    case DISK_DRIVE:
        panel.drive = unsigned(std::clamp(form.value(DISK_DRIVE), 0, int(DISK_DRIVES) - 1));
        panel.is_current = false;
        break;
    case DISK_FILES:
        if (event.kind == FormEvent::Kind::activated) type_command("RUN");
        break;
    case DISK_RUN: type_command("RUN"); break;
    case DISK_LOAD: type_command("LOAD"); break;
    case DISK_COPY: save_copy(); break;
    default: return;
    }
    refresh();
}

} // namespace

void ui_disk_panel() {
    panel.is_current = false;
    if (!panel.form) {
        const auto has_disk = [](const disk_record& disk) { return diskimg_inserted(disk); };
        const auto found = std::ranges::find_if(wd1771.disks, has_disk) - std::begin(wd1771.disks);
        panel.drive = size_t(found) < DISK_DRIVES ? unsigned(found) : 0;
        panel.form = platform().forms().create(disk_form(), user_acts);
    }
    refresh();
    show_beside_window(*panel.form);
}

bool disk_panel_is_open() { return panel.form && panel.form->is_open(); }

void disk_panel_refresh() { refresh(); }

void disk_panel_end() { panel = {}; }
