#pragma once
/// What is wrong with the contents of a program's file: cut short, or never what its name says. A
/// file that may load in a way of its own counts as whole.

#include <cstdint>
#include <span>
#include <string>

// Each gives the reason in words, or an empty text for a file that is whole.

/// The first program of a cassette image: BASIC up to its end mark, machine code up to its entry
/// address.
std::string tape_damage(std::span<const uint8_t> tape);
/// A load module: blocks up to an entry address.
std::string load_module_damage(std::span<const uint8_t> module);
/// A snapshot: long enough.
std::string snapshot_damage(std::span<const uint8_t> snapshot);
