#pragma once
/* The sound generator: three channels 1 to 3, noise, one envelope. */

#include <genie/machine.h>

/* Registers. */
#define SOUND_PERIOD 0 /* of channel 1, low byte; high byte; the same of 2 and 3 */
#define SOUND_NOISE 6
#define SOUND_MIXER 7     /* a set bit turns off: tones in bits 0-2, noise in bits 3-5 */
#define SOUND_VOLUME 8    /* of channel 1, 2, 3 */
#define SOUND_ENVELOPE 11 /* its period, low byte, high byte */
#define SOUND_SHAPE 13
#define SOUND_PORT_A 14
#define SOUND_PORT_B 15

#define SOUND_BY_ENVELOPE 16 /* as a volume */

void sound_write(uint8_t number, uint8_t value);
uint8_t sound_read(uint8_t number);
/* A tone of 138547 / `period` Hz, 1 to 4095, at a volume from 0 to 15. */
void sound_tone(uint8_t channel, uint16_t period, uint8_t volume);
/* A note: octave 1 to 8, note 1 (C) to 12 (B), as BASIC's PLAY. The A of octave 4 has 440 Hz. */
void sound_note(uint8_t channel, uint8_t octave, uint8_t note, uint8_t volume);
/* Noise instead of a tone; `period` is 0 (bright) to 31, for all channels. */
void sound_noise(uint8_t channel, uint8_t period, uint8_t volume);
/* The envelope of channels whose volume is SOUND_BY_ENVELOPE: shape 0 to 15, steps of `period`. It
   starts again with each call. */
void sound_envelope(uint8_t shape, uint16_t period);
/* All channels are quiet. */
void sound_off(void);
