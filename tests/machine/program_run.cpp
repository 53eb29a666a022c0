#include "program_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned LONGEST_RUN = 60; ///< seconds; an alarm survives exec and ends the program
constexpr int NOT_STARTED = 127;

void become(std::vector<char*> words, const Folder& streams,
            const std::filesystem::path& directory) {
    const auto redirect = [&](const char* name, int stream) {
        const int file = open((streams / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (file < 0 || dup2(file, stream) < 0) _exit(NOT_STARTED);
        close(file);
    };
    redirect("output", STDOUT_FILENO);
    redirect("errors", STDERR_FILENO);
    if (chdir(directory.c_str()) != 0) _exit(NOT_STARTED);
    setenv("HOME", directory.c_str(), 1);
    setenv("XDG_DATA_HOME", (directory / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (directory / "config").c_str(), 1);
    alarm(LONGEST_RUN);
    execv(words[0], words.data());
    _exit(NOT_STARTED);
}

} // namespace

Program::Program(const std::vector<std::string>& words, const std::filesystem::path& directory) {
    std::vector<std::string> own = words;
    std::vector<char*> pointers;
    pointers.reserve(own.size() + 1);
    for (std::string& word : own) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) become(pointers, streams_, directory);
}

Program::~Program() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
}

void Program::send(int signal) const {
    if (process_ > 0) kill(process_, signal);
}

ProgramResult Program::wait() {
    int status = 0;
    const bool ended = process_ > 0 && waitpid(process_, &status, 0) == process_;
    process_ = -1;
    const bool exited = ended && WIFEXITED(status);
    return {exited ? WEXITSTATUS(status) : -1, read_text(streams_ / "output"),
            read_text(streams_ / "errors")};
}

ProgramResult run_program(const std::vector<std::string>& words,
                          const std::filesystem::path& directory) {
    return Program(words, directory).wait();
}

ProgramResult run_tarvelin(const std::vector<std::string>& arguments,
                           const std::filesystem::path& directory) {
    std::vector<std::string> words = {TARVELIN_PROGRAM, "--headless"};
    const char* const starter = std::getenv("TARVELIN_STARTER"); // of another build's program
    if (starter) words = {starter, std::getenv("TARVELIN_STARTED"), "--headless"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run_program(words, directory);
}

void expect_refusal(const ProgramResult& result, const std::string& named) {
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
    EXPECT_NE(result.errors.find(named), std::string::npos) << result.errors;
}
