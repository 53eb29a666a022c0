/* Prints what the words of the library do, mostly as BASIC sees it. */
#include <genie.h>

#include <stdio.h>
#include <string.h>

static const char set[] = "START VALUE";
static char record[16] = "RECORD ?";
static char line[9];
static uint8_t all_errors;

int main(void) {
    uint8_t i;
    screen_clear();
    screen_colour(6);
    screen_goto(5, 1);
    printf("%s %s%d\n", set, line, all_errors);
    screen_number(-32768);
    screen_draw(39, 1, 'X', 3);
    basic_run("PRINT PEEK(&HF000+45)AND15;PEEK(&HF000+79)AND15");
    screen_shape(0xC1, (const uint8_t *)"ABCDEFGH");
    screen_shapes(true, false);
    screen_background(3);
    basic_run("PRINT PEEK(&HF400+8*65+7);PEEK(&H431C) AND 220");
    screen_background(0);

    graphics_clear(1);
    graphics_show();
    graphics_line(0, 95, 159, 0, 2);
    graphics_line(10, 0, 12, 90, 0);
    graphics_circle(80, 48, 40, 3);
    graphics_box(3, 3, 5, 5, 0);
    graphics_box(150, 90, 90, 90, 3);
    graphics_plot(160, 0, 3);
    graphics_copy(10, 20, 1, 2, (const uint8_t *)"\x1B\xE4");
    basic_run("PRINT CPOINT(0,95);CPOINT(159,0);CPOINT(79,48);CPOINT(11,45);CPOINT(12,90)");
    basic_run("PRINT CPOINT(120,48);CPOINT(80,8);CPOINT(109,76);CPOINT(94,11);CPOINT(50,21);CPOINT(121,48)");
    basic_run("PRINT CPOINT(3,3);CPOINT(7,7);CPOINT(8,8);CPOINT(2,3);CPOINT(150,90);CPOINT(149,95)");
    basic_run("PRINT CPOINT(40,20);CPOINT(41,20);CPOINT(42,20);CPOINT(43,20);CPOINT(40,21)");
    printf("%d %d %d\n", LATCH_COPY & LATCH_GRAPHICS, graphics_point(0, 95), graphics_point(120, 48));
    screen_show();

    sound_note(1, 4, 10, 15);
    sound_noise(2, 7, 9);
    sound_note(3, 8, 10, SOUND_BY_ENVELOPE);
    sound_envelope(9, 0x1234);
    printf("%d %d %d %d ", sound_read(4), sound_read(10), sound_read(12), sound_read(13));
    printf("%d %d %d %d %d\n", sound_read(0), sound_read(1), sound_read(6), sound_read(7),
           sound_read(9));
    basic_run("PRINT JOY1X;JOY2Y;KEYPAD1");
    printf("%d %d %d\n", stick_x(1), stick_y(2), stick_keys());

    i = key_wait();
    printf("%c %d %s\n", i, key_line(line, 8), line);

    printf("%d %d\n", basic_run("PRINT 1/0"), disk_open(2, "BAD:NAME", 16));
    printf("%d\n", disk_open(1, "DATA", 16));
    for (i = 1; i <= 20; ++i) {
        record[7] = '@' + i;
        all_errors |= disk_put(1, i, record);
    }
    printf("%d %d %d %s %d\n", all_errors, disk_records(1), disk_get(1, 7, record), record,
           disk_get(1, 21, record));
    printf("%d ", disk_close(1));
    printf("%d ", disk_rename("DATA", "NEW/DAT"));
    printf("%d\n", disk_delete("DATA"));
    basic_run("DIR");
    return 0;
}
