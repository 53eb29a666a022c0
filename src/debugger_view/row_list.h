#pragma once
/// Which of many rows has the cursor, and which are shown.

#include "platform/events.h"

class RowList {
public:
    int cursor() const { return at; }
    int first() const { return top; }
    /// Of `count` rows as many are shown as there are, with the cursor among them.
    void fit(int count, int shown);
    /// Up, down, Page Up, Page Down, Home, End. Whether the key was one of them.
    bool key(const Event& event);
    void choose(int row);
    /// That many rows have come before all others.
    void move_by(int count);
    void scroll(int rows);

private:
    int at = 0, top = 0, rows = 0, room = 1;
    bool scrolled = false; ///< by the wheel: the cursor may be out of view
};
