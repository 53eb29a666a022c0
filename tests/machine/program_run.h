#pragma once
/// Runs programs of the project as a user does, and looks at what they print and write.

#include "support/test_files.h"

#include <sys/types.h>

struct ProgramResult {
    int exit_code; ///< -1 when a signal ended the program
    std::string output, errors;
};

/// A program in a process of its own. Its home is its current directory, so that nothing of the
/// user's gets in.
class Program {
public:
    Program(const std::vector<std::string>& words, const std::filesystem::path& directory);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void send(int signal) const;
    ProgramResult wait();

private:
    Folder streams_;
    pid_t process_ = -1;
};

/// Runs to the end. The first word is the program's path.
ProgramResult run_program(const std::vector<std::string>& words,
                          const std::filesystem::path& directory);
/// Expects a refusal: exit code 1, nothing printed but one line of errors with `named` in it.
void expect_refusal(const ProgramResult& result, const std::string& named);
/// The emulator without a display.
ProgramResult run_tarvelin(const std::vector<std::string>& arguments,
                           const std::filesystem::path& directory);
