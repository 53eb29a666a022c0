#pragma once
/// The machine as a value: a copy of every record and a share of every medium. One machine lives;
/// others are parked copies of it, and take turns.
///
/// Left out is what stays the same for the whole run (firmware images, tables), what can be
/// computed from the state (caches), and what belongs to the host (files, the sound device,
/// breakpoints).

#include "wall/shared_bytes.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Four disks, the cassette, the text that is being typed.
constexpr size_t CASSETTE = 4, TYPED_TEXT = 5;
constexpr size_t MACHINE_MEDIA = 6;

struct machine_state {
    std::vector<uint8_t> records; ///< one behind the other; empty before the first save
    std::array<shared_bytes, MACHINE_MEDIA> media;
};

/// Bytes of all that is state in the records.
size_t machine_state_size();
/// Parks a copy of the live machine.
void machine_save(machine_state& to);
/// What is wrong with a parked machine that comes from outside, "record.field" and why; empty for
/// one that can be loaded: it is complete, none of its values is impossible, and records and media
/// fit together. Whatever else is in it, the machine then runs without any harm to the program.
std::string machine_state_problem(const machine_state& state);

/// Where a record stands among the bytes of a parked machine.
struct record_place {
    const char* name;
    uint32_t version;
    size_t offset;
    size_t size; ///< bytes of its fields that are state
};
/// All records, in the order of their bytes.
std::vector<record_place> machine_record_places();
/// The place of one; all 0 when there is none of this name.
record_place machine_record_place(std::string_view name);
/// A medium's name, 0 to MACHINE_MEDIA - 1.
const char* machine_medium_name(size_t number);

/// The parked machine becomes the live one, and the host is told that all it shows is stale. Fields
/// that are not state keep their values. 0 when there is no saved state in `from`, and nothing
/// changes.
int machine_load(const machine_state& from);
/// The first field in which the two differ, as "record.field", with both values of a short one;
/// empty when they are equal.
std::string machine_difference(const machine_state& a, const machine_state& b);
/// 1 when the two are equal to the byte, media included.
int machine_equal(const machine_state& a, const machine_state& b);
/// Offset, size and name of every field, one to a line; a field that is not state has no offset.
/// The text is the same on every host.
std::string machine_layout();
/// 1 when the fields of each record are as long as the record, so that nothing is between them.
int machine_records_are_filled();
