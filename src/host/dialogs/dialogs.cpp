#include "host/dialogs/dialogs.h"

#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/hold.h"
#include "platform/platform.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <system_error>
#include <utility>

namespace {

constexpr int DIALOG_TYPES = DIALOG_NEW_TAPE + 1;

const FileFilter ALL = {"All (*.*)", "*.*"};

FileFilter all_files(const char* extension) { return {"All Files (*.*)", "*.*", extension}; }

/// Filters with an extension are those of a save dialog.
struct FileDialogText {
    const char* title;
    std::vector<FileFilter> filters;
};

const std::map<int, FileDialogText>& dialog_types() {
    static const std::map<int, FileDialogText> types = {
        {DIALOG_LOAD_CMD, {"Load CMD image", {{"CMD files (*.cmd)", "*.cmd"}, ALL}}},
        {DIALOG_LOAD_BAS, {"Load BAS file", {{"BAS files (*.bas;*.txt)", "*.bas;*.txt"}, ALL}}},
        {DIALOG_ATTACH_WAV,
         {"Attach tape sample file", {{"44.1 kHz, 8 bit mono WAV (*.wav)", "*.wav"}, ALL}}},
        {DIALOG_ATTACH_CAS,
         {"Attach CAS file", {{"CAS files (*.cas; *.cgt)", "*.cas;*.cgt"}, ALL}}},
        {DIALOG_AUTOSTART,
         {"Autostart emulator image...",
          {{"EACA Genie files (*.bas,*.cas,*.cmd,*.dsk,*.jzs,*.txt)",
            "*.bas;*.cas;*.cmd;*.dsk;*.jzs;*.txt"},
           ALL}}},
        {DIALOG_ATTACH_DISK,
         {"Attach disk image...", {{"Disk images (*.cgd,*.dsk;*.img)", "*.cgd;*.dsk;*.img"}, ALL}}},
        {DIALOG_SELECT_ROM, {"Select ROM image", {{"ROM images (*.rom)", "*.rom"}, ALL}}},
        {DIALOG_LOAD_SNAPSHOT,
         {"Load emulator snaphsot file", {{"JZS files (*.jzs)", "*.jzs"}, ALL}}},
        {DIALOG_LOAD_STATE, {"Open state", {{"States (*.tvs)", "*.tvs"}, ALL}}},
        {DIALOG_CREATE_WAV,
         {"Save WAV file",
          {{"WAV files (*.wav)", "*.wav", "wav"}, {ALL.text, ALL.pattern, "wav"}}}},
        {DIALOG_MEMORY_AS_CAS,
         {"Save memory as CAS file", {{"CAS files (*.cas)", "*.cas", "cas"}, all_files("cas")}}},
        {DIALOG_SCREENSHOT_AS,
         {"Save screen as...",
          {{"GIF files (*.gif)", "*.gif", "gif"},
           {"BMP files (*.bmp)", "*.bmp", "bmp"},
           {ALL.text, ALL.pattern, "bmp"}}}},
        {DIALOG_SAVE_CAS,
         {"Save CAS tape file under name...",
          {{"CAS files (*.cas)", "*.cas", "cas"}, all_files("cas")}}},
        {DIALOG_SAVE_SNAPSHOT,
         {"Save emulator snapshot as...",
          {{"JZS files (*.jzs)", "*.jzs", "jzs"}, all_files("jzs")}}},
        {DIALOG_SAVE_VIDEO,
         {"Save video...", {{"AVI files (*.avi)", "*.avi", "avi"}, all_files("avi")}}},
        {DIALOG_SAVE_WAV,
         {"Save to WAV...", {{"16 bit; mono; 44,100 kHz PCM (*.wav)", "*.wav", "wav"}}}},
        {DIALOG_SAVE_DISK,
         {"Save disk image as...",
          {{"Disk images (*.cgd,*.dsk;*.img)", "*.cgd;*.dsk;*.img", "dsk"}, all_files("dsk")}}},
        {DIALOG_SAVE_STATE,
         {"Save state as...", {{"States (*.tvs)", "*.tvs", "tvs"}, all_files("tvs")}}},
        {DIALOG_PLAY_REPLAY, {"Play replay", {{"Replays (*.tvr)", "*.tvr"}, ALL}}},
        {DIALOG_RECORD_REPLAY,
         {"Record replay", {{"Replays (*.tvr)", "*.tvr", "tvr"}, all_files("tvr")}}},
        {DIALOG_NEW_DISK,
         {"New disk", {{"Disk images (*.dsk)", "*.dsk", "dsk"}, all_files("dsk")}}},
        {DIALOG_NEW_TAPE, {"New tape", {{"CAS files (*.cas)", "*.cas", "cas"}, all_files("cas")}}},
    };
    return types;
}

std::array<int, DIALOG_TYPES> filter_index = {};
std::map<int, FileFilter> offered_filters; ///< by type
decltype(FileDialog::preview) offered_preview;

/// What the address panel offers: the range of the BASIC program, and as the start address that of
/// the NMI, which the reset key raises.
constexpr uint32_t BASIC_START_POINTER = 0x40A4;
constexpr uint32_t BASIC_END_POINTER = 0x40F9;
constexpr uint16_t START_ADDRESS = 0x0066;
constexpr int ADDRESS_LENGTH = 5;
std::array<std::string, 3> sMyData;

std::string four_digits(uint16_t value) {
    char text[8];
    std::snprintf(text, sizeof text, "%04X", unsigned(value));
    return text;
}

std::vector<FileDialogField> address_panel() {
    return {
        {"From address:", ADDRESS_LENGTH, four_digits(mem_read_word(BASIC_START_POINTER))},
        {"End address:", ADDRESS_LENGTH, four_digits(mem_read_word(BASIC_END_POINTER))},
        {"Start address:", ADDRESS_LENGTH, four_digits(START_ADDRESS)},
    };
}

using FileAnswer = std::function<void(std::optional<FileChoice>)>;

/// Asks until the user has chosen a file that may be written, or cancels. The platform's dialog
/// asks before a file is replaced, but it knows the name only as it was typed; when the extension
/// is added to it, the question is asked here.
void choose_to_save(FileDialog dialog, FileAnswer done) {
    ask_for_file(dialog, [dialog, done = std::move(done)](std::optional<FileChoice> choice) {
        if (!choice) return done(choice);
        const std::string typed = choice->path;
        choice->path =
            with_extension(typed, dialog.filters[size_t(choice->filter_index)].extension);
        if (choice->path == typed || !path_exists(choice->path)) return done(choice);
        const auto answered = [dialog, choice, done](int answer) mutable {
            constexpr int REPLACE = 1; // Enter keeps the file
            if (answer == REPLACE) return done(choice);
            dialog.filter_index = choice->filter_index;
            for (size_t n = 0; n < dialog.fields.size(); ++n) {
                dialog.fields[n].text = choice->field_texts[n];
            }
            choose_to_save(dialog, done);
        };
        ask(dialog.title, choice->path + " already exists. Do you want to replace it?",
            {"&No", "&Yes"}, answered);
    });
}

std::string file_url(const std::string& path) {
    std::string url = path.starts_with('/') ? "file://" : "file:///"; // a drive's letter is no host
    for (const char c : path) {
        switch (c) { // characters that would end or change the path
        case '%': url += "%25"; break;
        case '#': url += "%23"; break;
        case '?': url += "%3F"; break;
        default:
            url += std::string_view(path_separators).find(c) != std::string_view::npos ? '/' : c;
        }
    }
    return url;
}

/// Where the page is, in the place of installation.
std::string manual_page(const std::string& page) {
    return canonical_path(platform().paths().program_directory() + "/" TARVELIN_MANUALS "/" + page);
}

/// The installed manual, or the program's folder when there is none.
std::string manual_url() {
    const std::string manual = manual_page("manual.html");
    return file_url(path_exists(manual) ? manual : platform().paths().program_directory());
}

} // namespace

void ui_select_file(int type, PathChoice done) {
    const auto found = dialog_types().find(type);
    if (found == dialog_types().end()) return done({});
    const auto& [title, filters] = found->second;
    const bool save = !filters.front().extension.empty();
    const bool with_panel = type == DIALOG_MEMORY_AS_CAS;
    FileDialog dialog = {title, filters, filter_index[size_t(type)], save,
                         with_panel ? address_panel() : std::vector<FileDialogField>()};
    if (const auto offered = offered_filters.find(type); offered != offered_filters.end()) {
        dialog.filters.insert(dialog.filters.end() - 1, offered->second);
    }
    if (!save) dialog.preview = offered_preview;
    const auto chosen = [=, done = std::move(done)](const std::optional<FileChoice>& choice) {
        if (!choice) return done({});
        if (with_panel) std::copy_n(choice->field_texts.begin(), sMyData.size(), sMyData.begin());
        filter_index[size_t(type)] = choice->filter_index;
        if (!save) StatusBarText("Image attached: %s.", choice->path.c_str());
        done(choice->path);
    };
    save ? choose_to_save(dialog, chosen) : ask_for_file(dialog, chosen);
}

void ui_offer_filter(int type, const FileFilter& filter) { offered_filters[type] = filter; }

void ui_offer_preview(std::function<std::vector<std::string>(const std::string&)> preview) {
    offered_preview = std::move(preview);
}

void ui_show_text(const std::string& title, const std::string& text, std::function<void()> done) {
    using enum ControlKind;
    enum Control : int { CLOSE = 1, TEXT = 2 };
    const FormDescription form = {
        title,
        {{.kind = text_view, .id = TEXT, .text = text, .name = title},
         {.kind = buttons, .children = {{.kind = default_button, .id = CLOSE, .text = "Close"}}}}};
    run_form(platform().forms().create(form, [](Form&, const FormEvent&) {}),
             [done = std::move(done)](int) {
                 if (done) done();
             });
}

void ui_get_casdata(std::array<std::string, 3>* addresses) { *addresses = sMyData; }

void ui_about_dialog() {
    hold_shell();
    platform().dialogs().about("About Tarvelin",
                               {"Tarvelin", "EACA EG2000 Colour Genie emulator",
                                std::string("Version ") + TARVELIN_VERSION},
                               "User manual", manual_url(), release_shell);
}

void ui_open_manual(const char* page) {
    const std::string path = manual_page(page);
    if (!path_exists(path)) {
        return report({.text = "The manual is not installed", .file = path});
    }
    if (!platform().dialogs().open_page(file_url(path))) {
        report({.text = "No browser for the manual", .file = path});
    }
}
