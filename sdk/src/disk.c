#include <genie/disk.h>

#include <string.h>

#define FILES 3

/* The line that is run next, and where it goes on. */
static char line[BASIC_LINE + 1];
static char *end;

static uint8_t *record_of[FILES]; /* in the disk ROM's memory */
static uint8_t length_of[FILES];
static volatile bool done;
static volatile uint16_t count;

static void add(const char *text) {
    while (*text && end < line + BASIC_LINE) *end++ = *text++;
    *end = 0;
}

static void begin(const char *text) {
    end = line;
    add(text);
}

static void add_number(uint16_t number) {
    char digits[6];
    uint8_t at = sizeof digits - 1;
    digits[at] = 0;
    do digits[--at] = '0' + number % 10;
    while (number /= 10);
    add(digits + at);
}

/* Runs the line, which tells at its end that it came there: BREAK is no error. */
static uint8_t run(void) {
    uint8_t error;
    add(":POKE");
    add_number((uint16_t)&done);
    add(",1");
    done = false;
    error = basic_run_unseen(line);
    return error == BASIC_DONE && !done ? DISK_BREAK : error;
}

uint8_t disk_open(uint8_t number, const char *name, uint8_t length) {
    begin("OPEN\"R\",");
    add_number(number);
    add(",\"");
    add(name);
    add("\",");
    add_number(length);
    add(":FIELD ");
    add_number(number);
    add(",");
    add_number(length);
    add(" AS R$:P=VARPTR(R$):POKE");
    add_number((uint16_t)&record_of[number - 1]);
    add(",PEEK(P+1):POKE");
    add_number((uint16_t)&record_of[number - 1] + 1);
    add(",PEEK(P+2)");
    length_of[number - 1] = length;
    return run();
}

static uint8_t run_for_record(const char *word, uint8_t number, uint16_t record) {
    begin(word);
    add_number(number);
    add(",");
    add_number(record);
    return run();
}

uint8_t disk_get(uint8_t number, uint16_t record, void *bytes) {
    const uint8_t error = run_for_record("GET ", number, record);
    if (error == BASIC_DONE) memcpy(bytes, record_of[number - 1], length_of[number - 1]);
    return error;
}

uint8_t disk_put(uint8_t number, uint16_t record, const void *bytes) {
    if (!record_of[number - 1]) return DISK_NOT_OPEN;
    memcpy(record_of[number - 1], bytes, length_of[number - 1]);
    return run_for_record("PUT ", number, record);
}

uint16_t disk_records(uint8_t number) {
    begin("N=LOF(");
    add_number(number);
    add("):POKE");
    add_number((uint16_t)&count + 1);
    add(",N/256:POKE");
    add_number((uint16_t)&count);
    add(",N AND 255");
    return run() == BASIC_DONE ? count : 0;
}

uint8_t disk_close(uint8_t number) {
    begin("CLOSE ");
    add_number(number);
    record_of[number - 1] = 0;
    return run();
}

uint8_t disk_delete(const char *name) {
    begin("KILL\"");
    add(name);
    add("\"");
    return run();
}

uint8_t disk_rename(const char *from, const char *to) {
    begin("NAME\"");
    add(from);
    add("\"TO\"");
    add(to);
    add("\"");
    return run();
}
