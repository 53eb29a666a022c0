/* Solids: wire models of three regular bodies turn, drawn into one page
   while the other one is shown. */
#include <genie.h>

#include <string.h>

#define MIDDLE_X 80
#define MIDDLE_Y 48
#define RADIUS 44 /* of what they fill */
#define TURNS_OF_ONE 90 /* pictures until the next body */

#define MOST_CORNERS 12
#define MOST_EDGES 30

struct body {
    uint8_t corners, edges;
    const int8_t (*corner)[3];
    const uint8_t (*edge)[2];
};

static const int8_t cube_corners[][3] = {{-38, -38, -38}, {38, -38, -38}, {38, 38, -38},
                                         {-38, 38, -38},  {-38, -38, 38}, {38, -38, 38},
                                         {38, 38, 38},    {-38, 38, 38}};
static const uint8_t cube_edges[][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                        {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};

static const int8_t octahedron_corners[][3] = {{64, 0, 0},  {-64, 0, 0}, {0, 64, 0},
                                               {0, -64, 0}, {0, 0, 64},  {0, 0, -64}};
static const uint8_t octahedron_edges[][2] = {{0, 2}, {0, 3}, {0, 4}, {0, 5}, {1, 2}, {1, 3},
                                              {1, 4}, {1, 5}, {2, 4}, {4, 3}, {3, 5}, {5, 2}};

/* The corners are those of three rectangles whose sides are in the golden ratio. */
static const int8_t icosahedron_corners[][3] = {
    {0, 33, 54},  {0, -33, 54},  {0, 33, -54},  {0, -33, -54}, {33, 54, 0},  {-33, 54, 0},
    {33, -54, 0}, {-33, -54, 0}, {54, 0, 33},   {54, 0, -33},  {-54, 0, 33}, {-54, 0, -33}};
static const uint8_t icosahedron_edges[][2] = {
    {0, 1}, {2, 3}, {4, 5},  {6, 7},  {8, 9}, {10, 11}, {0, 4}, {0, 5}, {0, 8}, {0, 10},
    {1, 6}, {1, 7}, {1, 8},  {1, 10}, {2, 4}, {2, 5},   {2, 9}, {2, 11}, {3, 6}, {3, 7},
    {3, 9}, {3, 11}, {4, 8}, {4, 9},  {5, 10}, {5, 11}, {6, 8}, {6, 9}, {7, 10}, {7, 11}};

static const struct body bodies[] = {{8, 12, cube_corners, cube_edges},
                                     {6, 12, octahedron_corners, octahedron_edges},
                                     {12, 30, icosahedron_corners, icosahedron_edges}};
#define BODIES (sizeof bodies / sizeof bodies[0])

/* A quarter of a wave: 127 times the sine, 64 steps to the right angle. */
static const int8_t quarter[] = {
    0,   3,   6,   9,   12,  16,  19,  22,  25,  28,  31,  34,  37,  40,  43,  46,  49,
    51,  54,  57,  60,  63,  65,  68,  71,  73,  76,  78,  81,  83,  85,  88,  90,  92,
    94,  96,  98,  100, 102, 104, 106, 107, 109, 111, 112, 113, 115, 116, 117, 118, 120,
    121, 122, 122, 123, 124, 125, 125, 126, 126, 126, 127, 127, 127, 127};

static int8_t sine(uint8_t angle) {
    const uint8_t part = angle & 63;
    const int8_t value = quarter[angle & 64 ? 64 - part : part];
    return angle & 128 ? -value : value;
}

/* Where the corners are on the screen, and how near. */
static uint8_t seen_x[MOST_CORNERS], seen_y[MOST_CORNERS];
static int8_t depth[MOST_CORNERS];

/* a b = (a + b)² / 4 - (a - b)² / 4: with a table of quarter squares a product is found much faster
   than by the processor's shifts and sums. */
#define LARGEST 254
static int16_t quarter_squares[2 * LARGEST + 1];

static void make_squares(void) {
    int16_t i;
    for (i = -LARGEST; i <= LARGEST; ++i) quarter_squares[LARGEST + i] = (int32_t)i * i / 4;
}

/* A part of a length, 128 for all of it. */
static int8_t part(int8_t length, int8_t factor) {
    const int16_t *middle = &quarter_squares[LARGEST + length];
    return (middle[factor] - middle[-factor]) * 2 >> 8;
}

static void turn(const struct body *body, uint8_t around_y, uint8_t around_x) {
    const int8_t sin_y = sine(around_y), cos_y = sine(around_y + 64);
    const int8_t sin_x = sine(around_x), cos_x = sine(around_x + 64);
    uint8_t i;
    for (i = 0; i < body->corners; ++i) {
        const int8_t *corner = body->corner[i];
        const int8_t x = part(corner[0], cos_y) - part(corner[2], sin_y);
        const int8_t back = part(corner[0], sin_y) + part(corner[2], cos_y);
        const int8_t y = part(corner[1], cos_x) - part(back, sin_x);
        const int8_t z = part(corner[1], sin_x) + part(back, cos_x);
        const int8_t scale = 76 + (z >> 1); /* what is near is larger */
        seen_x[i] = MIDDLE_X + part(x, scale);
        seen_y[i] = MIDDLE_Y + part(y, scale);
        depth[i] = z;
    }
}

static void draw(const struct body *body) {
    uint8_t i;
    for (i = 0; i < body->edges; ++i) {
        const uint8_t a = body->edge[i][0], b = body->edge[i][1];
        const int16_t near = depth[a] + depth[b];
        graphics_line(seen_x[a], seen_y[a], seen_x[b], seen_y[b],
                      near < -20 ? 1 : near < 20 ? 2 : 3);
    }
}

static void draw_frame(void) {
    uint8_t i;
    for (i = 0; i < 3; ++i) {
        graphics_box(4 * i, 2 * i, 4, 96 - 4 * i, 3 - i);
        graphics_box(156 - 4 * i, 2 * i, 4, 96 - 4 * i, 3 - i);
        graphics_circle(22, 14, 10 - 3 * i, 3 - i);
        graphics_circle(137, 14, 10 - 3 * i, 3 - i);
        graphics_circle(22, 81, 10 - 3 * i, 3 - i);
        graphics_circle(137, 81, 10 - 3 * i, 3 - i);
    }
}

static uint8_t second_page[GRAPHICS_BYTES];

int main(void) {
    uint8_t *pages[] = {(uint8_t *)GRAPHICS_MEMORY, second_page};
    uint8_t body = 0, around_y = 0, around_x = 0, count, page;
    make_squares();
    graphics_clear(0);
    graphics_show();
    draw_frame();
    memcpy(second_page, pages[0], GRAPHICS_BYTES);
    for (;;) {
        sound_note(1, 3, 1 + 4 * body, SOUND_BY_ENVELOPE);
        sound_envelope(0, 6000);
        for (count = 0; count < TURNS_OF_ONE; ++count) {
            page = count & 1;
            graphics_draw_into(pages[page]);
            graphics_box(MIDDLE_X - RADIUS, MIDDLE_Y - RADIUS, 2 * RADIUS, 2 * RADIUS, 0);
            turn(&bodies[body], around_y, around_x);
            draw(&bodies[body]);
            graphics_show_page(pages[page]);
            around_y += 3;
            around_x += 2;
            if (key_get()) return 0;
        }
        body = (body + 1) % BODIES;
    }
}
