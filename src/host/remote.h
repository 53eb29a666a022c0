#pragma once
/// The option --gdb: a server on this computer for one client of GDB's remote serial protocol
/// (debugger/remote.h), served from the shell's turns.
///
/// In a window the machine runs until a client comes, stands from then on as the client wants, and
/// runs on when it goes. Unattended it stands at its first instruction until one has come, and the
/// program ends when the client kills it.

#include <cstdint>
#include <optional>

/// Starts the server and says on which port; 0 takes one that is free. A port that is not to be had
/// is reported, and ends a program that is unattended. The debugger is on while the server is.
void remote_start(uint16_t port);
/// The client learns that the machine has ended.
void remote_end();
/// Once a turn, before a frame is run: takes what the client has sent and answers it. Returns the
/// most microseconds that the shell may then wait; nothing without a server. While the machine
/// stands in a program that is unattended, whose own time is virtual, it waits here.
std::optional<int64_t> remote_turn();
