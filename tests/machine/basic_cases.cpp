#include "basic_cases.h"

#include "support/basic_machine.h"

#include <filesystem>
#include <fstream>

namespace {

constexpr size_t COLUMNS = 40;
constexpr int CASE_FRAMES = 50 * 300;

bool is_remark(const std::string& line) { return line.starts_with("#"); }

void add_program(BasicCase& basic_case, const std::filesystem::path& path) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) basic_case.program.push_back(line);
}

void add_line(BasicCase& basic_case, const std::filesystem::path& folder, const std::string& line) {
    if (line.starts_with(": <"))
        add_program(basic_case, folder / line.substr(3));
    else if (line.starts_with(": "))
        basic_case.program.push_back(line.substr(2));
    else if (line.starts_with("> "))
        basic_case.commands.push_back(line.substr(2));
    else if (line == ">")
        basic_case.commands.emplace_back();
    else
        basic_case.rows.push_back(line == "~" ? ""
                                              : line.substr(0, line.find_last_not_of('~') + 1));
}

} // namespace

std::string BasicCase::name() const {
    std::string text = "line " + std::to_string(line) + ":";
    for (const auto& typed : program) text += "\n: " + typed;
    for (const auto& typed : commands) text += "\n> " + typed;
    return text;
}

std::vector<BasicCase> read_basic_cases(const std::string& path) {
    std::vector<BasicCase> cases;
    std::ifstream file(path);
    BasicCase next;
    unsigned number = 0;
    const auto finish = [&] {
        if (next.line) cases.push_back(std::move(next));
        next = {};
    };
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (is_remark(line)) continue;
        if (line.empty() || line.starts_with("! ")) {
            finish();
            if (!line.empty())
                cases.push_back(
                    {number, {}, {line.substr(5)}, {"?" + line.substr(2, 2) + " ERROR"}});
            continue;
        }
        if (!next.line) next.line = number;
        add_line(next, std::filesystem::path(path).parent_path(), line);
    }
    finish();
    return cases;
}

std::vector<std::string> run_basic_case(BasicMachine& machine, const BasicCase& basic_case) {
    std::string text;
    if (!basic_case.program.empty()) text += "NEW\n";
    for (const auto& line : basic_case.program) text += line + "\n";
    text += "CLEAR50:CLS\n";
    for (const auto& line : basic_case.commands) text += line + "\n";
    if (!machine.type(text, CASE_FRAMES)) return {"[still busy]"};

    std::vector<std::string> rows = machine.screen();
    if (rows.empty() || rows.back() != ">") return {"[no prompt]"};
    rows.pop_back();
    if (!rows.empty() && rows.back() == "READY") rows.pop_back();
    // Above the output stand READY and the first command behind its prompt, on as many rows as
    // it takes.
    const size_t typed = basic_case.commands.empty() ? 0 : basic_case.commands[0].size() + 1;
    const size_t above = 1 + (typed + COLUMNS) / COLUMNS;
    rows.erase(rows.begin(), rows.begin() + long(std::min(above, rows.size())));
    return rows;
}

std::string join(const std::vector<std::string>& rows) {
    std::string text;
    for (const auto& row : rows) text += row + "\n";
    return text;
}
