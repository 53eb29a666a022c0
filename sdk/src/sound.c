#include <genie/sound.h>

#define LONGEST_PERIOD 4095
#define ALL_QUIET 0x3F
#define PORT_DIRECTIONS 0xC0
#define PORT_A_OUT 0x40

/* Periods of octave 1, which is an octave too low for C and C sharp. */
static const uint16_t octave_1[] = {4236, 3999, 3774, 3562, 3363, 3174,
                                    2996, 2828, 2669, 2519, 2378, 2244};

void sound_write(uint8_t number, uint8_t value) {
    SOUND_SELECT = number;
    SOUND_DATA = value;
}

uint8_t sound_read(uint8_t number) {
    SOUND_SELECT = number;
    return SOUND_DATA;
}

/* The ports of the generator serve the sticks: A goes out, B comes in. */
static void mix(uint8_t off, uint8_t on) {
    const uint8_t mixer = sound_read(SOUND_MIXER) & ~PORT_DIRECTIONS;
    sound_write(SOUND_MIXER, ((mixer | off) & ~on) | PORT_A_OUT);
}

void sound_tone(uint8_t channel, uint16_t period, uint8_t volume) {
    const uint8_t number = channel - 1;
    if (period > LONGEST_PERIOD) period = LONGEST_PERIOD;
    sound_write(SOUND_PERIOD + 2 * number, period);
    sound_write(SOUND_PERIOD + 2 * number + 1, period >> 8);
    mix(8 << number, 1 << number);
    sound_write(SOUND_VOLUME + number, volume);
}

void sound_note(uint8_t channel, uint8_t octave, uint8_t note, uint8_t volume) {
    const uint8_t above = octave - 1;
    sound_tone(channel, (octave_1[note - 1] + (1 << above >> 1)) >> above, volume);
}

void sound_noise(uint8_t channel, uint8_t period, uint8_t volume) {
    const uint8_t number = channel - 1;
    sound_write(SOUND_NOISE, period);
    mix(1 << number, 8 << number);
    sound_write(SOUND_VOLUME + number, volume);
}

void sound_envelope(uint8_t shape, uint16_t period) {
    sound_write(SOUND_ENVELOPE, period);
    sound_write(SOUND_ENVELOPE + 1, period >> 8);
    sound_write(SOUND_SHAPE, shape);
}

void sound_off(void) {
    uint8_t number;
    mix(ALL_QUIET, 0);
    for (number = 0; number < 3; ++number) sound_write(SOUND_VOLUME + number, 0);
}
