#include "host/messages.h"

#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/dialogs/hold.h"
#include "host/status.h"
#include "wall/report.h"

#include <cstdio>
#include <ctime>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr size_t MOST_MESSAGES = 200;

std::deque<KeptMessage> kept;
std::vector<Report> held; ///< boxes that wait for the window
bool starting = false;
int commands = 0; ///< number of UserCommand objects: commands may start others
bool failed = false;

std::string time_of_day() {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    char text[16];
    localtime_r(&now, &parts);
    std::strftime(text, sizeof text, "%H:%M:%S", &parts);
    return text;
}

void keep(const std::string& line) {
    kept.push_back({time_of_day(), line});
    if (kept.size() > MOST_MESSAGES) kept.pop_front();
}

void show_box(const Report& told) {
    const std::string details = report_details(told);
    std::string text = told.text;
    if (!details.empty()) text += (text.ends_with('\n') ? "\n" : "\n\n") + details;
    show_message(told.title.empty() ? PRODUCT_NAME : told.title, text, told.icon);
}

} // namespace

void tell(const Report& told) {
    const std::string line = report_line(told);
    show_status(told.text, report_details(told));
    keep(line);
    if (told.severity == Severity::note) return;
    std::fprintf(stderr, "tarvelin: %s\n", line.c_str());
    const bool failure = told.severity == Severity::failure;
    failed |= failure;
    if (starting) {
        held.push_back(told);
    } else if (failure && commands > 0) {
        show_box(told);
    }
}

const std::deque<KeptMessage>& kept_messages() { return kept; }

bool failure_was_reported() { return failed; }

UserCommand::UserCommand() { ++commands; }
UserCommand::~UserCommand() { --commands; }

void obey_user(const std::function<void()>& act, std::function<void()> behind) {
    const auto failures_open_a_box = std::make_shared<UserCommand>();
    act();
    when_free([failures_open_a_box, behind = std::move(behind)] {
        if (behind) behind();
    });
}

void hold_message_boxes() {
    kept.clear();
    held.clear();
    failed = false;
    starting = true;
}

bool message_boxes_are_held() { return starting; }

void show_held_message_boxes() {
    starting = false;
    for (const Report& told : std::exchange(held, {})) {
        when_free([told] {
            // Start-up has overwritten the status text.
            show_status(told.text, report_details(told));
            show_box(told);
        });
    }
}

void ui_messages() {
    std::string lines;
    for (const auto& [time, line] : kept) lines.append(time).append("  ").append(line) += '\n';
    if (lines.empty()) lines = "There are no messages.";
    ui_show_text("Messages", lines);
}
