#include "cgenie/hires_lowe.h"

lowe_board lowe;

void hires_lowe_init() {
    lowe = {};
    lowe.enabled = 1;
}

void hires_lowe_destroy() { lowe.enabled = 0; }
