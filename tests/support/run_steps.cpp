// Runs per-instruction cases for the Z80, a folder of JSON files of the form that
// SingleStepTests/z80 has, on the bare processor. Compares registers, memory, ports and T-states,
// and tells the files that are identical, those that differ as z80.h says, and those that differ
// otherwise.

#include "support/flat_bus.h"
#include "z80/z80.h"

#include <fnmatch.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

namespace {

using nlohmann::json;
using Aspects = std::set<std::string>; ///< names of what differs; a flag by its letter

/// What may differ, by the names of the files; a file belongs to the first that fits. Behind a
/// prefix that stands alone, what may differ of the opcode after it may differ too.
const struct {
    const char* name;
    std::vector<const char*> files;
    Aspects aspects;
} known[] = {
    {"HALT: PC stays on it", {"76"}, {"pc"}},
    {"IN A,(n): 10 T-states", {"db"}, {"T-states"}},
    {"SCF, CCF: no Q latch", {"3[7f]"}, {"5", "3"}},
    {"BIT n,(HL): no WZ", {"cb [4-7][6e]"}, {"5", "3"}},
    {"BIT n,(IX+d): no WZ", {"[df]d cb __ [4-7]?"}, {"5", "3"}},
    {"IN r,(C): 11 T-states, bits 5 and 3", {"ed [4-7][08]"}, {"5", "3", "T-states"}},
    {"RETI, mirrors of RETN: IFF1 stays", {"ed 4d", "ed [5-7][5d]"}, {"iff1"}},
    {"holes of the ED group", {"ed [46]e", "ed 7[7f]"}, {"im", "T-states"}},
    {"INI to OTDR: flags", {"ed [ab][23ab]"}, {"S", "Z", "5", "H", "3", "P/V", "N", "C"}},
    {"LDIR, LDDR: flags of a repeated pass", {"ed b[08]"}, {"5", "H", "3", "P/V", "N"}},
    {"CPIR, CPDR: all passes in one step",
     {"ed b[19]"},
     {"S", "Z", "5", "H", "3", "P/V", "b", "c", "h", "l", "pc", "T-states"}},
};
const char* const prefix_alone = "DD, FD alone: three refreshes";

unsigned number(const json& state, const char* name) { return state.at(name).get<unsigned>(); }
uint16_t pair(const json& state, const char* high, const char* low) {
    return uint16_t(number(state, high) << 8 | number(state, low));
}

void set_up(const json& state) {
    z80_state = {};
    static_cast<z80_registers&>(z80_state) = {
        pair(state, "a", "f"),          pair(state, "b", "c"),
        pair(state, "d", "e"),          pair(state, "h", "l"),
        uint16_t(number(state, "ix")),  uint16_t(number(state, "iy")),
        uint16_t(number(state, "sp")),  uint16_t(number(state, "pc")),
        uint16_t(number(state, "af_")), uint16_t(number(state, "bc_")),
        uint16_t(number(state, "de_")), uint16_t(number(state, "hl_")),
        uint8_t(number(state, "i")),    uint8_t(number(state, "r")),
        uint8_t(number(state, "iff1")), uint8_t(number(state, "iff2")),
        uint8_t(number(state, "im"))};
    flat_bus.clear();
    for (const json& cell : state.at("ram")) flat_bus.memory[cell[0]] = cell[1];
}

void compare(const json& want, Aspects& differences) {
    const z80_record& s = z80_state;
    const std::map<std::string, unsigned> registers = {
        {"a", s.af >> 8},   {"b", s.bc >> 8},  {"c", s.bc & 0xFF}, {"d", s.de >> 8},
        {"e", s.de & 0xFF}, {"h", s.hl >> 8},  {"l", s.hl & 0xFF}, {"ix", s.ix},
        {"iy", s.iy},       {"sp", s.sp},      {"pc", s.pc},       {"af_", s.af_alt},
        {"bc_", s.bc_alt},  {"de_", s.de_alt}, {"hl_", s.hl_alt},  {"i", s.i},
        {"r", s.r},         {"iff1", s.iff1},  {"iff2", s.iff2},   {"im", s.interrupt_mode}};
    for (const auto& [name, value] : registers) {
        if (number(want, name.c_str()) != value) differences.insert(name);
    }
    const char* const flags[8] = {"C", "N", "P/V", "3", "H", "5", "Z", "S"};
    for (unsigned bit = 0; bit < 8; ++bit) {
        if ((number(want, "f") ^ s.af) >> bit & 1) differences.insert(flags[bit]);
    }
    for (const json& cell : want.at("ram")) {
        if (flat_bus.memory[cell[0]] != cell[1]) differences.insert("memory");
    }
}

/// The ports' low eight address bits: the others do not exist here.
void compare_ports(const json& want, Aspects& differences) {
    std::erase_if(flat_bus.events, [](const FlatBus::Event& event) {
        return event.access == FlatBus::Access::read || event.access == FlatBus::Access::write;
    });
    std::vector<FlatBus::Event> expected;
    for (const json& port : want) {
        const auto access = port[2] == "r" ? FlatBus::Access::in : FlatBus::Access::out;
        expected.push_back({access, uint16_t(port[0].get<unsigned>() & 0xFF), port[1]});
    }
    if (flat_bus.events != expected) differences.insert("ports");
}

/// Runs one case; returns whether its prefix stood alone.
bool run_case(const json& test, Aspects& differences) {
    set_up(test.at("initial"));
    const json ports = test.value("ports", json::array());
    for (const json& port : ports) {
        if (port[2] == "r") flat_bus.input[port[0].get<unsigned>() & 0xFF] = port[1];
    }
    const uint16_t start = z80_state.pc;
    const uint8_t opcode = flat_bus.memory[start];
    flat_bus.record = true;
    z80_run(0);
    const bool alone = (opcode == 0xDD || opcode == 0xFD) && z80_state.pc == uint16_t(start + 1);
    if (alone) z80_run(0);
    compare(test.at("final"), differences);
    compare_ports(ports, differences);
    if (z80_state.t_count != int64_t(test.at("cycles").size())) differences.insert("T-states");
    return alone;
}

/// The name under which the file counts, and takes away from `differences` what may differ.
std::string explain(std::string instruction, bool alone, Aspects& differences) {
    std::string explanation;
    if (alone) {
        instruction.erase(0, 3);
        if (differences.erase("r")) explanation = prefix_alone;
    }
    for (const auto& [name, files, aspects] : known) {
        const auto fits = [&](const char* file) {
            return fnmatch(file, instruction.c_str(), 0) == 0;
        };
        if (!std::ranges::any_of(files, fits)) continue;
        const size_t before = differences.size();
        for (const std::string& aspect : aspects) differences.erase(aspect);
        if (explanation.empty() && differences.size() < before) explanation = name;
    }
    return explanation;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2 || !std::filesystem::is_directory(arguments[1])) {
        std::fprintf(stderr, "usage: run_steps FOLDER\n");
        return 2;
    }
    std::map<std::string, Aspects> aspects; // of each explanation
    std::map<std::string, int> files;       // by explanation; identical ones by an empty one
    int cases = 0, unexplained = 0;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        if (entry.path().extension() != ".json") continue;
        std::ifstream file(entry.path());
        Aspects differences;
        bool alone = false;
        for (const json& test : json::parse(file)) {
            alone = run_case(test, differences);
            ++cases;
        }
        const Aspects all = differences;
        const std::string explanation = explain(entry.path().stem(), alone, differences);
        if (!differences.empty()) {
            ++unexplained;
            std::printf("unexplained: %s:", entry.path().stem().c_str());
            for (const std::string& aspect : differences) std::printf(" %s", aspect.c_str());
            std::printf("\n");
            continue;
        }
        ++files[explanation];
        aspects[explanation].insert(all.begin(), all.end());
    }
    int total = unexplained;
    for (const auto& [explanation, number] : files) total += number;
    std::printf("%d files, %d cases\n%5d identical\n", total, cases, files[""]);
    for (const auto& [explanation, number] : files) {
        if (explanation.empty()) continue;
        std::printf("%5d %s:", number, explanation.c_str());
        for (const std::string& aspect : aspects[explanation]) std::printf(" %s", aspect.c_str());
        std::printf("\n");
    }
    std::printf("%5d unexplained\n", unexplained);
    return unexplained > 0 || cases == 0 ? 1 : 0;
}
