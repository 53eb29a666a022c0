#include "media/printer.h"

bool printer_enabled = false;

void printer_init() {}
void printer_close() {}
void printer_set_filename(const std::string& /*directory*/) {}
void print_byte(uint8_t /*value*/) {}
int printer_is_ready() { return 0; }
int printer_is_busy() { return 1; }
