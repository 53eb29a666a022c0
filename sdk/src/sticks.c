/* The machine compares: port A of the sound generator gives a voltage in 64 levels, and a bit of port
   B is low where the level has reached that of the stick. The lowest three bits of port A, when low,
   select the columns of the keypads, and the lowest four of port B are their keys, low when down. */
#include <genie/sound.h>
#include <genie/sticks.h>

#define STICK_X_BIT 0x80
#define STICK_Y_BIT 0x40
#define BITS_OF_STICK 2
#define NO_COLUMN 0x3F
#define COLUMNS 3
#define KEYS_OF_COLUMN 4
#define PORT_B_OUT 0x80
#define PORT_A_OUT 0x40

static void set_up(void) {
    sound_write(SOUND_MIXER, (sound_read(SOUND_MIXER) | PORT_A_OUT) & ~PORT_B_OUT);
}

static uint8_t exchange(uint8_t level) {
    sound_write(SOUND_PORT_A, level);
    return sound_read(SOUND_PORT_B);
}

/* The position is at least `from`, and less than `from` + 2 * `half`. */
static uint8_t measure(uint8_t bit) {
    uint8_t from = 0, half;
    set_up();
    for (half = 32; half; half >>= 1)
        if (exchange(from + half - 1) & bit) from += half;
    return from;
}

uint8_t stick_x(uint8_t stick) { return measure(STICK_X_BIT >> BITS_OF_STICK * (stick - 1)); }
uint8_t stick_y(uint8_t stick) { return measure(STICK_Y_BIT >> BITS_OF_STICK * (stick - 1)); }

uint16_t stick_keys(void) {
    uint16_t keys = 0;
    uint8_t column;
    set_up();
    for (column = COLUMNS; column-- > 0;)
        keys = keys << KEYS_OF_COLUMN | (~exchange(NO_COLUMN & ~(1 << column)) & 0x0F);
    exchange(NO_COLUMN);
    return keys;
}
