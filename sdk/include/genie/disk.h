#pragma once
/* Files on disks, by the words of the disk ROM. The firmware documents no entries for disks: each
   call runs a line of BASIC. So they work where basic_is_there() is true and the disk ROM is in its
   socket. Names are those of BASIC: "NAME/EXT:d". */

#include <genie/basic.h>

/* What they return beside what basic_run does. */
#define DISK_BREAK 254 /* the BREAK key ended it */
#define DISK_ABSENT 23 /* no disk ROM: L3 */
#define DISK_NO_DISK 24
#define DISK_NOT_FORMATTED 25
#define DISK_ERROR 26
#define DISK_WRITE_PROTECTED 27
#define DISK_FULL 28
#define DISK_DIRECTORY_FULL 29
#define DISK_NOT_FOUND 30
#define DISK_FILE_EXISTS 31
#define DISK_BAD_NAME 32
#define DISK_BAD_NUMBER 33
#define DISK_NOT_OPEN 34
#define DISK_OPEN 35
#define DISK_BAD_MODE 36
#define DISK_END_OF_FILE 37
#define DISK_WRONG_TYPE 38
#define DISK_DAMAGED 39
#define DISK_CHANGED 40
#define DISK_BAD_RECORD 43

/* Opens or makes a file of records of `length` bytes, 1 to 255, as number 1 to 3. */
uint8_t disk_open(uint8_t number, const char* name, uint8_t length);
/* Reads a record, 1 to 32767, writes it; behind the end of the file nothing can be read. */
uint8_t disk_get(uint8_t number, uint16_t record, void* bytes);
uint8_t disk_put(uint8_t number, uint16_t record, const void* bytes);
/* How many records an open file has; 0 also on an error. */
uint16_t disk_records(uint8_t number);
uint8_t disk_close(uint8_t number);
uint8_t disk_delete(const char* name);
uint8_t disk_rename(const char* from, const char* to);
