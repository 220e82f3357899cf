// SPDX-License-Identifier: MIT
//
// The rows of the inline data: nearly all that gnuplot is sent. They are written as "%f" would
// write them, only faster.
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "plot/plot.h"

// ---- Numbers -----------------------------------------------------------------------------------

// 64-bit compilers have the integers of 128 bits that this takes; elsewhere the library writes
// all.
#ifdef __SIZEOF_INT128__

// Exponents of two for which a number is scaled in integers: from about 1e-9 to 1e12.
static constexpr int MIN_EXPONENT = -30;
static constexpr int MAX_EXPONENT = 40;

static constexpr int FRACTION_BITS = 52;
static constexpr int EXPONENT_BIAS = 1023;
static constexpr std::uint64_t FRACTION_MASK = (std::uint64_t{1} << FRACTION_BITS) - 1;

// Numbers of everyday size are an integer over a power of two. Times a million that still fits
// into 128 bits, so the millionths come out exact, and what is shifted out tells how to round:
// to the nearest, and to even from half way, as "%f" does.
static char* write_millionths(char* to, std::uint64_t bits, int exponent) {
    __extension__ typedef unsigned __int128 wide_t;
    const int shift = FRACTION_BITS - exponent;
    const wide_t scaled = wide_t{(bits & FRACTION_MASK) | (FRACTION_MASK + 1)} * 1000000;
    const wide_t rest = scaled & ((wide_t{1} << shift) - 1);
    const wide_t half = wide_t{1} << (shift - 1);
    std::uint64_t millionths = static_cast<std::uint64_t>(scaled >> shift);
    if (rest > half || (rest == half && millionths % 2 == 1))
        millionths++;
    if (bits >> 63)
        *to++ = '-';
    to = std::to_chars(to, to + NUMBER_SIZE, millionths / 1000000).ptr;
    *to++ = '.';
    std::uint32_t fraction = static_cast<std::uint32_t>(millionths % 1000000);
    for (int digit = 5; digit >= 0; digit--, fraction /= 10)
        to[digit] = static_cast<char>('0' + fraction % 10);
    return to + 6;
}

// Writes a number of everyday size; null for any other.
static char* write_everyday(char* to, double value) {
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    const int exponent = static_cast<int>(bits >> FRACTION_BITS & 0x7ff) - EXPONENT_BIAS;
    if (exponent < MIN_EXPONENT || exponent >= MAX_EXPONENT)
        return nullptr;
    return write_millionths(to, bits, exponent);
}

#else
static char* write_everyday(char*, double) {
    return nullptr;
}
#endif

// For all other numbers the library knows how; it writes infinities and NaN as "%f" does, too.
char* write_number(char* to, double value) {
    if (char* end = write_everyday(to, value))
        return end;
    return std::to_chars(to, to + NUMBER_SIZE, value, std::chars_format::fixed, 6).ptr;
}

// ---- Abscissae ---------------------------------------------------------------------------------

// An abscissa as text, each number with the blank that follows it. Most series share theirs with
// others: the columns of a data set, and the sets of an instrument.
namespace {
struct abscissa_t {
    int n;
    double* x;
    std::uint16_t* lengths;
    char* text;
};
}  // namespace

// The abscissae written last, the older one first. Two, since most experiments have two
// nozzle-to-plate distances.
static abscissa_t Abscissae[2];

static bool is_same(const abscissa_t& known, const double* x, int n) {
    return known.n == n && std::memcmp(known.x, x, sizeof *x * static_cast<std::size_t>(n)) == 0;
}

static void write_abscissa(abscissa_t* abscissa, const double* x, int n) {
    flush_rows();  // without memory the run ends here, but not without the rows that are finished
    const std::size_t count = static_cast<std::size_t>(n);
    abscissa->n = 0;  // not to be found while it is unfinished
    abscissa->x = resized(abscissa->x, count);
    abscissa->lengths = resized(abscissa->lengths, count);
    std::memcpy(abscissa->x, x, sizeof *x * count);
    std::size_t size = 0, room = 0;
    for (int k = 0; k < n; k++) {
        if (room - size < NUMBER_SIZE) {
            room += room / 2 + 16 * NUMBER_SIZE;
            abscissa->text = resized(abscissa->text, room);
        }
        char* start = abscissa->text + size;
        char* end = write_number(start, x[k]);
        *end++ = ' ';
        abscissa->lengths[k] = static_cast<std::uint16_t>(end - start);
        size += static_cast<std::size_t>(end - start);
    }
    abscissa->n = n;
}

static const abscissa_t& abscissa_of(const double* x, int n) {
    for (const abscissa_t& known : Abscissae) {
        if (is_same(known, x, n))
            return known;
    }
    std::swap(Abscissae[0], Abscissae[1]);
    write_abscissa(&Abscissae[1], x, n);
    return Abscissae[1];
}

void release_rows() {
    for (abscissa_t& abscissa : Abscissae) {
        std::free(abscissa.x);
        std::free(abscissa.lengths);
        std::free(abscissa.text);
        abscissa = {};
    }
}

// ---- Rows --------------------------------------------------------------------------------------

// Rows wait here until there are enough of them to be worth a write.
static char Rows[1 << 16];
static std::size_t RowsSize = 0;
static constexpr std::size_t ROW_SIZE = 3 * NUMBER_SIZE;

// The abscissa of the next row.
static const char* RowText = nullptr;
static const std::uint16_t* RowLength = nullptr;

void flush_rows() {
    std::fwrite(Rows, 1, RowsSize, f);
    RowsSize = 0;
}

// Where a line of up to ROW_SIZE characters can be written.
static char* room_for_line() {
    if (sizeof Rows - RowsSize < ROW_SIZE)
        flush_rows();
    return Rows + RowsSize;
}

static void end_row(char* end) {
    *end++ = '\n';
    RowsSize = static_cast<std::size_t>(end - Rows);
}

void begin_rows(const block_name_t& name, const double* x, int n) {
    if (NamedBlocks)
        end_row(stpcpy(stpcpy(room_for_line(), name.text), " << EOD"));
    if (n == 0)
        return;
    const abscissa_t& abscissa = abscissa_of(x, n);
    RowText = abscissa.text;
    RowLength = abscissa.lengths;
}

// Where the next row begins, with its abscissa written.
static char* begin_row() {
    const std::size_t length = *RowLength++;
    char* to = room_for_line();
    std::memcpy(to, RowText, length);
    RowText += length;
    return to + length;
}

void write_row(double y) {
    end_row(write_number(begin_row(), y));
}

void write_row(double y1, double y2) {
    char* to = write_number(begin_row(), y1);
    *to++ = ' ';
    end_row(write_number(to, y2));
}

void end_rows() {
    end_row(stpcpy(room_for_line(), NamedBlocks ? "EOD" : "e"));
}
