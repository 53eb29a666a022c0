#pragma once
/// What the user is told when something does not go as expected: one record, and one way to tell.

#include <cstdint>
#include <string>

enum class Severity : uint8_t {
    note,    ///< worth keeping in the list of messages
    warning, ///< something came out otherwise than expected; nothing is lost
    failure  ///< what was asked for has not happened, or something is lost
};

enum class MessageIcon : uint8_t { none, information, warning, error };

struct Report {
    std::string text;        ///< what the status bar shows
    std::string file = {};   ///< path of the file that it is about
    std::string reason = {}; ///< why, as a sentence or part of one
    std::string remedy = {}; ///< what can be done, as a sentence
    std::string title = {};  ///< of the message box; empty: the product's name
    Severity severity = Severity::failure;
    MessageIcon icon = MessageIcon::warning;
};

/// The report in one line, for a log: text, file where the text does not name it, reason, remedy.
std::string report_line(const Report& told);
/// The parts that a reader of `text` does not know yet, one to a line; empty without any.
std::string report_details(const Report& told);

/// Tells the user, through machine_host.report.
void report(const Report& told);
/// A report that the file could not be written. The reason is taken from errno, so call it first
/// thing after the failure.
Report unwritable(const std::string& file);
