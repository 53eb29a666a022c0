#pragma once
/// One-pole IIR filter on integer samples, one at a time: low-pass, or high-pass: the sample minus
/// the low-pass's output.

#include <cstddef>
#include <cstdint>

enum : uint32_t { FILTER_HIGH_PASS = 0, FILTER_LOW_PASS = 1 };

/// Without a cutoff there is no filter: every sample passes as it is.
struct iir_filter {
    uint32_t rate = 0;   ///< the coefficients' sample rate; 0 until the first sample
    uint32_t cutoff = 0; ///< Hz
    double b = 0;        ///< 1 - a
    double a = 0;        ///< feedback
    double y = 0;        ///< low-pass output
    uint32_t type = FILTER_HIGH_PASS;
    uint32_t unused = 0;
};

/// Whether the record's values are those of a filter, of which every output fits a sample.
bool filter_is_possible(const iir_filter& filter);
/// A filter at rest of one of the two types; `cutoff` in Hz.
iir_filter filter_iir_create(uint32_t type, uint32_t cutoff);
/// Makes the record one without a filter. Does nothing for a null pointer.
void filter_destroy(iir_filter* filter);
/// Coefficients for the record's `rate`, above 0, and `cutoff`; the filters below do it themselves
/// when the rate changes.
void filter_calc_coeff(iir_filter* filter);
/// One sample; without a filter the sample itself.
int32_t filter_output(iir_filter* filter, int32_t sample, uint32_t rate);
/// `count` signed 16-bit samples in place, at `rate` samples per second; nothing without a filter.
void filter_buffer_output(iir_filter* filter, size_t count, int16_t* samples, uint32_t rate);
