#pragma once
/// The film bar: shows over the lowest lines of the picture where in the history of the machine the
/// picture is, and takes the mouse. Above: a mark that plays on, a track with a tick for each
/// minute, a mark that leads back to the present. Below: the time, and what the keys do.

#include <cstdint>
#include <string>
#include <vector>

struct FilmBarView {
    int64_t first = 0, position = 0, last = 0; ///< frames
    uint32_t frames_per_second = 50;
    bool single_frames = false; ///< the time is told to a hundredth of a second
    /// What the keys do, the longest text first: the first one that has room is shown.
    std::vector<std::string> hints = {};
};

/// Shows the bar with this view.
void film_bar_show(FilmBarView view);
void film_bar_hide();
bool film_bar_is_shown();
/// Draws the view once more, when it is shown.
void film_bar_draw();

enum class FilmBarPart : uint8_t { none, play, track, present };
/// What is at the place, in pixels of the pane.
FilmBarPart film_bar_part_at(int x, int y);
/// The frame whose place on the track is nearest to `x`, also beside the track.
int64_t film_bar_frame_at(int x);

/// How far the frame is before the last one, of how much in all: "-0:12.3 of 5:07", with hours
/// "-1:00:12.3 of 9:59:07", to a hundredth "-0:12.34 of 5:07".
std::string film_bar_time(const FilmBarView& view);
