#pragma once
/// Programs and replays in the address of a page, behind its "#":
///
///   basic=...    a BASIC program as text
///   replay=...   a replay file
///
/// Both are deflated (without a head, the web's "deflate-raw") and written in base64url without
/// padding, so that any tool of the web can make one. No server gets to see that part of an
/// address.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Most characters that a link is made with. Browsers take far more, mail and chat programs do not.
constexpr size_t LONGEST_LINK = 64 << 10;

/// With "#" in front.
std::string link_for_listing(std::string_view listing);
std::string link_for_replay(std::span<const uint8_t> replay);

struct Link {
    std::string name; ///< of a file with these bytes, for autostart_bytes; empty without a program
    std::vector<uint8_t> bytes;
    std::string problem; ///< what is wrong with it, in one line
};
/// Reads what stands behind the "#", or with it. What is of another kind gives neither name nor
/// problem. It may come from anybody: nothing of more than a megabyte is made, and a program must
/// be one.
Link read_link(std::string_view fragment);
/// Starts what the link has, or reports what is wrong with it. A program is then running already.
void start_link(std::string_view fragment);
/// The same for a link that the user follows while the machine runs: it is switched off and on
/// before, so that it does not matter what ran.
void follow_link(std::string_view fragment);

// The commands. Each puts the page's address (ShellOptions) with its link into the clipboard, and
// tells how long it is, or why there is none.

/// Of the BASIC program in the machine's memory.
void share_program();
/// Of what the machine has done in the last minute, or less where that is too long for a link.
void share_replay();
