// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <cstring>

#include "input/input.h"

int Ncols;
int ColType[MAX_COLS];
int TypePos[MAX_COLS];
int NcolsToPlot;
int PlotColType[MAX_COLS];
int PlotTypePos[MAX_COLS];

int Ncurves = 0;
double*** Curve = nullptr;
int* Npts = nullptr;
int* CurveNd = nullptr;
int* CurveNc = nullptr;
double* CurveScaleFactor = nullptr;
double** CurveShift = nullptr;
int* CurvePlotGroup = nullptr;

void clear_columns() {
    Ncols = NcolsToPlot = 0;
    std::memset(ColType, 0, sizeof ColType);
    std::memset(TypePos, 0, sizeof TypePos);
    std::memset(PlotColType, 0, sizeof PlotColType);
    std::memset(PlotTypePos, 0, sizeof PlotTypePos);
}

// An array of n elements that doubles whenever n reaches a power of two: true if it is full.
static bool is_full(int n) {
    return (n & (n - 1)) == 0;
}

static std::size_t doubled(int n) {
    return n == 0 ? 1 : 2 * static_cast<std::size_t>(n);
}

// MAX_COLS elements, all zero or null.
template <class element_t>
static element_t* column_array() {
    element_t* array = resized<element_t>(nullptr, MAX_COLS);
    for (int j = 0; j < MAX_COLS; j++)
        array[j] = {};
    return array;
}

void append_curve(int Nd, int Nc, double factor) {
    if (is_full(Ncurves)) {
        const std::size_t size = doubled(Ncurves);
        Curve = resized(Curve, size);
        Npts = resized(Npts, size);
        CurveNd = resized(CurveNd, size);
        CurveNc = resized(CurveNc, size);
        CurveScaleFactor = resized(CurveScaleFactor, size);
        CurveShift = resized(CurveShift, size);
        CurvePlotGroup = resized(CurvePlotGroup, size);
    }
    const int c = Ncurves++;
    Curve[c] = nullptr;
    Npts[c] = 0;
    CurveNd[c] = Nd;
    CurveNc[c] = Nc;
    CurveScaleFactor[c] = factor;
    CurveShift[c] = column_array<double>();
    CurvePlotGroup[c] = 0;
}

void create_curve_columns() {
    Curve[Ncurves - 1] = column_array<double*>();
}

void append_point() {
    const int c = Ncurves - 1;
    if (is_full(Npts[c])) {
        for (int j = 0; j < NcolsToPlot; j++)
            Curve[c][j] = resized(Curve[c][j], doubled(Npts[c]));
    }
    Npts[c]++;
}

static void release_curve(int c) {
    for (int j = 0; Curve[c] != nullptr && j < MAX_COLS; j++)
        std::free(Curve[c][j]);
    std::free(Curve[c]);
    std::free(CurveShift[c]);
}

void release_curves() {
    for (int c = 0; c < Ncurves; c++)
        release_curve(c);
    std::free(Curve);
    std::free(Npts);
    std::free(CurveNd);
    std::free(CurveNc);
    std::free(CurvePlotGroup);
    std::free(CurveScaleFactor);
    std::free(CurveShift);
    Ncurves = 0;
    Curve = nullptr;
    Npts = CurveNd = CurveNc = CurvePlotGroup = nullptr;
    CurveScaleFactor = nullptr;
    CurveShift = nullptr;
}
