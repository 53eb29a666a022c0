#pragma once
/// What the status bar's lamps and counter say and offer: the disk in each drive, and the cassette.

#include <string>

/// For a tool tip: which disk is in the drive (0 to 3), whether it is write-protected, and whether
/// it has been written to.
std::string drive_tip(unsigned drive);
/// Which cassette or recording is in the recorder, and where it stands.
std::string cassette_tip();

/// Shows the menu of a button of the status bar, above it: the drives, then the cassette. ALL_MEDIA
/// has all of them as submenus, and comes also without a bar.
void popup_media_menu(int button);
constexpr int ALL_MEDIA = -1;
/// Greys the items of the window's menu for which there has to be a disk in the drive.
void grey_media_items();
