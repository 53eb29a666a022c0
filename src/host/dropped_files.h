#pragma once
/// Several files that are dropped at a time.

#include <string>
#include <vector>

/// What becomes of those behind the first one, which has been started: disks go into empty drives
/// from 1 to 3, a cassette is attached where none is. The user is told which ones are left. To be
/// called after the first; all waits until its questions are answered.
void take_further_files(const std::string& first, const std::vector<std::string>& further);
