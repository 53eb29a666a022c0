#pragma once
/// Tables of short cases for the machine's BASIC, besides the examples of docs/reference.html.
///
/// A file of cases has blocks divided by empty lines. Of a block,
///   : line     is typed in first, as the lines of a program; ": <name" is all lines of that file,
///   > line     is typed in on a cleared screen, the first one behind the prompt,
/// and the other lines are the rows that the screen has below the first command when the machine
/// is back at its prompt. Lines that begin with # are remarks. "~" in a row stands for a blank at
/// the end of it or for an empty row. A line
///   ! XX line  is a case of its own: the line gives the XX error.

#include <string>
#include <vector>

class BasicMachine;

struct BasicCase {
    unsigned line = 0; ///< of the file
    std::vector<std::string> program, commands, rows;
    std::string name() const; ///< what fails, in a message
};

std::vector<BasicCase> read_basic_cases(const std::string& path);

/// Types a case in. Gives the rows below its first command without the last READY, or a single row
/// in brackets when the prompt does not come back.
std::vector<std::string> run_basic_case(BasicMachine& machine, const BasicCase& basic_case);

/// The rows with a line feed behind each.
std::string join(const std::vector<std::string>& rows);
