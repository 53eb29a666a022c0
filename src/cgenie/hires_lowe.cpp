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

const char* fault(const lowe_board& board) {
    return first_fault({{"enabled", board.enabled <= 1},
                        {"column", board.column <= 63},
                        {"row", board.row <= 255},
                        {"display", board.display <= 1}});
}
} // namespace

const state_record lowe_record = {"lowe", &lowe, offsetof(lowe_board, pixels), lowe_fields,
                                  fault_of<lowe_board, fault>};

void hires_lowe_init() {
    lowe = {};
    lowe.enabled = 1;
}

void hires_lowe_destroy() { lowe.enabled = 0; }
