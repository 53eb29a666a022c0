#pragma once
/// Settings and check marks of all options in the command table.

#include "host/command_table.h"

/// Reads the settings of this step. Missing numbers are stored with their defaults.
void read_options(StartStep step);
/// Writes all that are kept from run to run, as one change of the store.
void write_options();
/// The menu shows what is switched on.
void set_check_marks();
/// Stores the text for this run as the setting's type wants it; a setting without a row is a number
/// where the text is one in full.
void store_setting(const std::string& name, const std::string& text);
