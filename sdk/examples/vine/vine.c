/* Vine: a plant that gets longer with each fruit and must not run into the hedge or itself. The arrow
   keys or stick 1 steer it; until a key or a fire button begins a game it grows by itself. */
#include <genie.h>

#include <stdlib.h>

/* The field within its hedge; all machines have 24 rows. */
#define FIRST_COLUMN 1
#define LAST_COLUMN 38
#define FIRST_ROW 2
#define LAST_ROW 22

/* Shapes. A piece of the vine is numbered by the sides on which it is open, a bit for each direction. */
#define PIECE 0x80
#define BUD 0x90
#define FRUIT 0x91
#define FRUITS 3
#define HEDGE 0x94
#define BLANK ' '

#define WHITE 0
#define ORANGE 6
#define LIME 5
#define YELLOW 12
#define GREEN 13
#define BROWN 14

#define UP 0
#define RIGHT 1
#define DOWN 2
#define LEFT 3
#define BACK(direction) (((direction) + 2) & 3)

static const uint8_t shapes[][8] = {
    {0x3C, 0x7E, 0xDB, 0xFF, 0xFF, 0xBD, 0x42, 0x3C}, /* bud */
    {0x0C, 0x10, 0x7C, 0xFA, 0xFE, 0xFE, 0x7C, 0x38}, /* apple */
    {0x06, 0x0A, 0x12, 0x64, 0xF4, 0xF6, 0x6F, 0x06}, /* cherries */
    {0x08, 0x1C, 0x7F, 0xFF, 0xB7, 0x7E, 0x2C, 0x18}, /* strawberry */
    {0x5B, 0xEE, 0xB7, 0x7D, 0xDB, 0xEF, 0x76, 0xBD}, /* hedge */
};
static const uint8_t fruit_colours[FRUITS] = {ORANGE, 2, BROWN};
static const int8_t step_of[] = {-SCREEN_COLUMNS, 1, SCREEN_COLUMNS, -1};

#define CELLS 1024
static uint16_t cells[CELLS]; /* places of the vine, a ring from its end to its bud */
static uint16_t tail, head;
static uint8_t column, row, direction; /* of the bud */
static uint8_t growth;                 /* cells that are still to come */
static uint8_t fruit_column, fruit_row;
static int16_t score, best;
static bool playing;

static void define_shapes(void) {
    uint8_t rows[8], sides, i;
    for (sides = 0; sides < 16; ++sides) {
        for (i = 0; i < 8; ++i) {
            if (i < 2) rows[i] = sides & 1 << UP ? 0x3C : 0;
            else if (i > 5) rows[i] = sides & 1 << DOWN ? 0x3C : 0;
            else
                rows[i] = 0x3C | (sides & 1 << RIGHT ? 0x03 : 0) | (sides & 1 << LEFT ? 0xC0 : 0);
        }
        rows[3] &= ~0x10; /* a light on the stem */
        screen_shape(PIECE + sides, rows);
    }
    for (i = 0; i < sizeof shapes / sizeof shapes[0]; ++i) screen_shape(BUD + i, shapes[i]);
    screen_shapes(false, true);
}

static void show_score(void) {
    screen_colour(YELLOW);
    screen_goto(16, 0);
    screen_print("SCORE ");
    screen_number(score);
    screen_goto(30, 0);
    screen_print("BEST ");
    screen_number(best);
}

static void draw_field(void) {
    uint8_t i;
    screen_clear();
    screen_cursor(false);
    screen_colour(LIME);
    screen_print(" V I N E");
    for (i = 0; i < SCREEN_COLUMNS; ++i) {
        screen_draw(i, FIRST_ROW - 1, HEDGE, GREEN);
        screen_draw(i, LAST_ROW + 1, HEDGE, GREEN);
    }
    for (i = FIRST_ROW; i <= LAST_ROW; ++i) {
        screen_draw(FIRST_COLUMN - 1, i, HEDGE, GREEN);
        screen_draw(LAST_COLUMN + 1, i, HEDGE, GREEN);
    }
    if (!playing) {
        screen_colour(WHITE);
        screen_goto(9, LAST_ROW + 1);
        screen_print(" A KEY OR FIRE BEGINS ");
    }
    show_score();
}

static void put(uint16_t place, uint8_t shape, uint8_t colour) {
    SCREEN_TEXT[place] = shape;
    SCREEN_COLOURS[place] = colour;
}

static void grow_fruit(void) {
    const uint8_t kind = rand() % FRUITS;
    do {
        fruit_column = FIRST_COLUMN + rand() % (LAST_COLUMN - FIRST_COLUMN + 1);
        fruit_row = FIRST_ROW + rand() % (LAST_ROW - FIRST_ROW + 1);
    } while (SCREEN_TEXT[screen_place(fruit_column, fruit_row)] != BLANK);
    screen_draw(fruit_column, fruit_row, FRUIT + kind, fruit_colours[kind]);
}

static bool is_fruit(uint8_t shape) { return shape >= FRUIT && shape < FRUIT + FRUITS; }

static bool is_free(uint8_t to) {
    const uint8_t shape = SCREEN_TEXT[cells[head] + step_of[to]];
    return shape == BLANK || is_fruit(shape);
}

/* The bud goes on in a direction; false when it cannot. */
static bool grow(uint8_t to) {
    const uint16_t place = cells[head] + step_of[to];
    const uint8_t found = SCREEN_TEXT[place];
    if (!is_free(to)) return false;
    put(cells[head], PIECE + (1 << BACK(direction)) + (1 << to), GREEN);
    direction = to;
    column += to == RIGHT ? 1 : to == LEFT ? -1 : 0;
    row += to == DOWN ? 1 : to == UP ? -1 : 0;
    head = (head + 1) % CELLS;
    cells[head] = place;
    put(place, BUD, LIME);
    if (is_fruit(found)) {
        static const uint8_t scale[] = {1, 3, 5, 8, 10};
        sound_note(1, 4 + score / 5 % 2, scale[score % 5], SOUND_BY_ENVELOPE);
        sound_envelope(0, 1200);
        ++score;
        growth += 5;
        show_score();
        grow_fruit();
    }
    if (growth) --growth;
    else {
        put(cells[tail], BLANK, GREEN);
        tail = (tail + 1) % CELLS;
    }
    return true;
}

static void wither(void) {
    uint16_t i;
    sound_noise(2, 24, SOUND_BY_ENVELOPE);
    sound_envelope(0, 4000);
    for (i = tail; i != head; i = (i + 1) % CELLS) {
        SCREEN_COLOURS[cells[i]] = BROWN;
        wait(8);
    }
    wait(900);
    sound_off();
}

/* Where keys or stick want to go; the same direction when nowhere, or back. */
static uint8_t steered(void) {
    uint8_t to = direction;
    if (key_down(KEY_UP)) to = UP;
    else if (key_down(KEY_RIGHT)) to = RIGHT;
    else if (key_down(KEY_DOWN)) to = DOWN;
    else if (key_down(KEY_LEFT)) to = LEFT;
    else if (stick_y(1) > 47) to = UP;
    else if (stick_x(1) > 47) to = RIGHT;
    else if (stick_y(1) < 16) to = DOWN;
    else if (stick_x(1) < 16) to = LEFT;
    return to == BACK(direction) ? direction : to;
}

/* Towards the fruit, or anywhere. */
static uint8_t guessed(void) {
    const uint8_t level = fruit_column > column ? RIGHT : LEFT;
    const uint8_t upright = fruit_row > row ? DOWN : UP;
    uint8_t to;
    if (fruit_column != column && is_free(level)) return level;
    if (fruit_row != row && is_free(upright)) return upright;
    for (to = 0; to < 4; ++to)
        if (is_free(to)) return to;
    return direction;
}

static bool begins(void) { return key_any() || stick_keys() & (STICK_FIRE | STICK_FIRE_2); }

static void start(void) {
    score = 0;
    draw_field();
    column = 20;
    row = 12;
    direction = UP;
    growth = 6;
    tail = head = 0;
    cells[0] = screen_place(column, row);
    put(cells[0], BUD, LIME);
    grow_fruit();
}

/* Until the vine withers, or until somebody wants to play. */
static void run(void) {
    start();
    for (;;) {
        uint8_t to = direction, i;
        for (i = 0; i < 8; ++i) {
            wait(10);
            if (playing) {
                const uint8_t now = steered();
                if (now != direction) to = now;
            } else if (begins()) {
                return;
            }
        }
        if (!grow(playing ? to : guessed())) break;
    }
    wither();
    if (playing && score > best) best = score;
}

int main(void) {
    define_shapes();
    for (;;) {
        run();
        playing = !playing && begins();
        while (key_any()) rand();
    }
}
