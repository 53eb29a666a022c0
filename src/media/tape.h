#pragma once
/// Cassette images (CAS, CGT). No image can be attached yet: every attempt fails.

#include <string>

/// What is on a tape, by its first block.
enum TapeKind : int { TAPE_UNKNOWN = 0, TAPE_BASIC = 1, TAPE_MACHINE_CODE = 2 };

/// 1 on success; 0 for an empty path or a file that cannot be opened.
int tape_attach_cas(const std::string& path);
void tape_detach_cas();
/// The kind of tape, and the first character of its name.
int tape_cas_type(char* name);
/// Writes memory from start to end as a machine-code tape; addresses are hexadecimal texts.
int tape_dump_cas(const std::string& path, const std::string& start, const std::string& end,
                  const std::string& entry);
/// The path of the attached image, or the one remembered from the last run.
std::string& tape_get_cas_name();
/// 1 when the file's first byte is FF, the mark of tokenized BASIC.
int is_tokenized_bas(const std::string& path);
/// Attaches a tokenized BASIC file as a cassette. 1 on success.
int bas_to_cas_open(const std::string& path);
