#pragma once
/// Paced frames without a shell around them.

#include "core/pacing/pacing.h"
#include "platform/platform.h"

/// One frame, with the time that it has to wait.
inline void run_paced_frame() {
    while (const int64_t wait = paced_frame_step()) platform().events().wait(wait);
}
