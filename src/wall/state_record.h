#pragma once
/// What each module of the machine says about its record: the one object that holds all its state,
/// trivially copyable, without padding, and with the same layout on every host.

#include <cstddef>
#include <cstdint>
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
};
