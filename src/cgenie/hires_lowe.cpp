#include "cgenie/hires_lowe.h"

lowe_board lowe;

namespace {
constexpr state_field lowe_fields[] = {
    {"enabled", sizeof(lowe_board::enabled)},
    {"column", sizeof(lowe_board::column)},
    {"row", sizeof(lowe_board::row)},
    {"display", sizeof(lowe_board::display)},
    {"pixels", sizeof(lowe_board::pixels), field_kind::other},
};
} // namespace

const state_record lowe_record = {"lowe", &lowe, sizeof lowe, lowe_fields};

void hires_lowe_init() {
    lowe = {};
    lowe.enabled = 1;
}

void hires_lowe_destroy() { lowe.enabled = 0; }
