#pragma once
/// The whole program, with its settings in a file.

#include "core/machine_state.h"
#include "host/dialogs/hold.h"
#include "host/menu.h"
#include "host/shell.h"
#include "host/turn.h"
#include "platform/settings_file.h"
#include "support/host_files.h"
#include "support/paced_frames.h"
#include "support/program_options.h"

#include <optional>

class WholeProgramTest : public HostFilesTest {
protected:
    static constexpr const char* SETTINGS = "settings.toml";

    void SetUp() override {
        HostFilesTest::SetUp();
        renew();
    }
    void TearDown() override {
        reset_program_options();
        HostFilesTest::TearDown();
    }

    /// Starts it as in a process of its own.
    void start(const Arguments& arguments = {}, ShellOptions options = {}) {
        renew();
        ASSERT_TRUE(host->window().create("start"));
        create_menu();
        const std::string link = options.line.link;
        options.line = read_command_line(arguments);
        options.line.link = link;
        emu_init(options);
    }
    /// Turns until nothing holds the shell any more; runs no frame.
    void turn_until_free() {
        while (shell_is_held()) host->events().wait(shell_turn().microseconds);
    }
    static void run_frames(int count) {
        while (count-- > 0) run_paced_frame();
    }
    static machine_state saved_machine() {
        machine_state state;
        machine_save(state);
        return state;
    }
    /// With the user's answers.
    void emu_close() {
        ::emu_close();
        turn_until_free();
    }
    void command(int id) {
        WindowProcedure({Event::Kind::command, id, 0, {}});
        turn_until_free();
    }
    /// What the settings file holds, read by a store of its own.
    static std::optional<std::string> stored_text(const std::string& name) {
        SettingsFile store(SETTINGS);
        store.open();
        return store.text(name);
    }

    /// The user's answers come after the calls that ask for them, as on a host that cannot block.
    bool later = false;
    std::string program_directory;

private:
    void renew() {
        HeadlessOptions options;
        options.look_ns = 0;
        options.refresh_rate = 60;
        options.settings_path = SETTINGS;
        options.data_directory = "data";
        options.program_directory = program_directory;
        install_host(options);
        host->answer_later(later);
        reset_program_options();
    }
};
