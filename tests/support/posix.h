#pragma once
/// What tests ask of a POSIX system. Windows has none of it: there the functions fail, and a test
/// that needs them is skipped.

#include <csignal>

#ifdef _WIN32
#include <cstdlib>

#include <sys/types.h>

struct rlimit {
    unsigned long long rlim_cur, rlim_max;
};
using rlim_t = unsigned long long;
constexpr int SIGKILL = 9, SIGXFSZ = SIGTERM, RLIMIT_FSIZE = 0;
inline constexpr bool has_posix = false;
inline int getrlimit(int, rlimit*) { return -1; }
inline int setrlimit(int, const rlimit*) { return -1; }
inline int mkfifo(const char*, int) { return -1; }
inline int fork() { return -1; }
inline int waitpid(int, int*, int) { return -1; }
inline int kill(int, int) { return -1; }
inline int usleep(unsigned) { return -1; }
inline int geteuid() { return -1; }
inline int setuid(int) { return -1; }
inline int setenv(const char* name, const char* value, int) { return _putenv_s(name, value); }
#else
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

inline constexpr bool has_posix = true;
#endif
