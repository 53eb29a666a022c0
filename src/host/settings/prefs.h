#pragma once
/// The settings store, as the program uses it. A number that is missing when it is read is created
/// with the caller's value, so that the store fills itself with the defaults on the first run. A
/// store that cannot be opened or written is reported once.

#include <cstdint>
#include <string>

/// Opens the store. 1 on success; 0 when it cannot be opened, and then the defaults stay in place.
int prefs_init();
/// Closes the store; numbers are then neither read nor kept.
void prefs_done();
/// Values set between prefs_hold and prefs_flush are written together, by prefs_flush. It returns 0
/// when they cannot be kept.
void prefs_hold();
int prefs_flush();
/// 1 when the value existed; else `value` stays and is stored as the default.
int GetValueDword(const char* name, uint32_t* value);
/// 1 when stored, which is at once unless it is held; 0 while the store is closed and when it
/// cannot be kept.
int SetValueDword(const char* name, const uint32_t* value);
/// 1 when the value was read; a missing one changes nothing and creates nothing. Texts of more
/// than 276 bytes are not read, which is reported. Works while the store is closed, too.
int GetValueStr(const char* name, std::string* value);
/// The same for a text. A null pointer stores a text of one zero byte, which is read as an empty
/// one, and returns 0.
int SetValueStr(const char* name, const char* text);
