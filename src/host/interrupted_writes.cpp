#include "host/interrupted_writes.h"

#include "files/unfinished_writes.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/hold.h"
#include "wall/report.h"

namespace {

enum Answer : int { WRITE, LEAVE };

void take_answer(const InterruptedWrite& write, const std::string& kept, int answer) {
    if (answer == WRITE && !finish_write(write)) {
        Report told = unwritable(write.target);
        told.remedy = kept;
        report(told);
    }
    if (answer == LEAVE) {
        leave_unfinished(write);
        report(
            {.text = write.target + ": left as it is", .remedy = kept, .severity = Severity::note});
    }
}

void offer(const InterruptedWrite& write) {
    const std::string kept = "What it was to hold is in " + write.copy + ".";
    ask("Interrupted save",
        write.target + " was being written when the program was ended, and may be damaged.\n" +
            kept,
        {"&Write it now", "&Leave it as it is"},
        [=](int answer) { take_answer(write, kept, answer); });
}

} // namespace

void offer_interrupted_writes() {
    for (const InterruptedWrite& write : interrupted_writes()) when_free([=] { offer(write); });
}
