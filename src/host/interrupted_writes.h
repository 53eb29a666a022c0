#pragma once

/// Asks about each file that was being written in place when an earlier run was killed. Without an
/// answer all stays as it is, and the next start asks again.
void offer_interrupted_writes();
