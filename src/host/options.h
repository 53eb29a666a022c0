#pragma once
/// Settings and check marks of all options in the command table.

#include "host/command_table.h"

/// Reads the settings of this step. Missing numbers are stored with their defaults.
void read_options(StartStep step);
/// Writes all settings that are kept from run to run, as one change of the store.
void write_options();
/// Sets the check marks of the menu to the state of the options.
void set_check_marks();
/// Stores a setting that was given as text, in the type that its row has. A setting without a row
/// is stored as a number when the whole text is one.
void store_setting(const std::string& name, const std::string& text);
