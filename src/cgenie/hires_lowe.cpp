#include "cgenie/hires_lowe.h"

#include <cstddef>

lowe_board lowe;

namespace {
constexpr state_field lowe_fields[] = {
    {"enabled", sizeof(lowe_board::enabled)},
    {"column", sizeof(lowe_board::column)},
    {"row", sizeof(lowe_board::row)},
    {"display", sizeof(lowe_board::display)},
};
} // namespace

const state_record lowe_record = {"lowe", &lowe, offsetof(lowe_board, pixels), lowe_fields};

void hires_lowe_init() {
    lowe = {};
    lowe.enabled = 1;
}

void hires_lowe_destroy() { lowe.enabled = 0; }
