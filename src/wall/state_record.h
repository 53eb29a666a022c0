#pragma once
/// What each module of the machine says about its record: the one object that holds all its state,
/// trivially copyable, without padding, and with the same layout on every host.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <span>

enum class field_kind : uint8_t {
    state,
    /// In the record, but neither compared nor loaded: a cache, scratch, or the debugger's.
    other
};

/// A field of a record. All fields are listed in the record's order, and their sizes add up to its
/// size.
struct state_field {
    const char* name;
    uint32_t size; ///< bytes
    field_kind kind = field_kind::state;
};

struct state_record {
    const char* name;
    void* data;
    uint32_t size; ///< bytes
    std::span<const state_field> fields;
    /// The name of a field whose value the module never gives it; null without one. With any bytes
    /// for which the answer is null, the module does not reach outside of its arrays, end its
    /// program or run for ever. Without this function any bytes will do.
    const char* (*fault)(const void* record) = nullptr;
    /// Of the layout and meaning of the fields: each change of them counts one up, and needs a row
    /// among the state_converters, so that older state files can be loaded.
    uint32_t version = 1;
};

/// Whether a field has a value that is possible.
struct field_check {
    const char* name;
    bool possible;
};
inline const char* first_fault(std::initializer_list<field_check> checks) {
    for (const field_check& check : checks) {
        if (!check.possible) return check.name;
    }
    return nullptr;
}

/// A function that looks at its own type of record, as state_record has it.
template <typename Record, const char* (*fault)(const Record&)>
const char* fault_of(const void* record) {
    return fault(*static_cast<const Record*>(record));
}

/// Whether this is a bool that may be looked at: of any bytes, most are none.
inline bool is_bool(const bool& flag) {
    uint8_t byte;
    std::memcpy(&byte, &flag, sizeof byte);
    return byte <= 1;
}
