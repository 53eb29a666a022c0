#pragma once

/// Asks about each file that was being written in place when an earlier run was killed. When there
/// is no answer, nothing changes, and the next start asks again.
void offer_interrupted_writes();
