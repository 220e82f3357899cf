// SPDX-License-Identifier: MIT
#include "common/start.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>
#include <vector>

#include "input/input.h"
#include "plain/plain.h"
#include "plot/plot.h"
#include "run/run.h"

// All settings but the pair lists, which the reference keeps in another way.
static auto plain_settings() {
    plain::options_t& o = plain::Options;
    return std::tie(o.ImgFname, o.MakeImage, o.wx, o.wy, o.PlotGrid, o.PlotLegend, o.PlotXtics,
                    o.PlotYtics, o.PlotX2tics, o.PlotY2tics, o.PlotRatio, o.UserTerminal,
                    o.UserTerminalName, o.PlotBglPlus1, o.MultiPlot, o.AutoShifts, o.ShiftMult,
                    o.LineWidthFactor, o.ErrLineWidthFactor, o.PointSizeFactor, o.smsStdevFactor,
                    o.ErrFillAlpha, o.Gxmin, o.Gxmax, o.TableN, o.DataToRead, o.DataToCombine,
                    o.smsErrBars, o.dsmsErrBars, o.smsErrFill, o.dsmsErrFill, o.dsmslErrFill);
}

static auto settings() {
    return std::tie(ImgFname, MakeImage, wx, wy, PlotGrid, PlotLegend, PlotXtics, PlotYtics,
                    PlotX2tics, PlotY2tics, PlotRatio, UserTerminal, UserTerminalName,
                    PlotBglPlus1, MultiPlot, AutoShifts, ShiftMult, LineWidthFactor,
                    ErrLineWidthFactor, PointSizeFactor, smsStdevFactor, ErrFillAlpha, Gxmin,
                    Gxmax, TableN, DataToRead, DataToCombine, smsErrBars, dsmsErrBars, smsErrFill,
                    dsmsErrFill, dsmslErrFill);
}

static auto pair_lists() {
    return std::tie(NparToRead, ParToReadNum1, ParToReadNum2, NparToCombine, ParToCombineNum1,
                    ParToCombineNum2);
}

// All but the store and the curve buffer, which have functions that empty them.
static auto later_state() {
    return std::tie(ColGroupsToPlot, CurveGroupsToPlot, CurCurvesGroupToPlot, CurDataGroupToPlot,
                    AutoShiftsReady, YrangeMin, YrangeMax, f);
}

template <class... variable_t>
static std::tuple<variable_t...> values_of(const std::tuple<variable_t&...>& variables) {
    return variables;
}

// Taken before main() and so before anything could change them.
static const auto SettingsAtStart = values_of(settings());
static const auto ListsAtStart = values_of(pair_lists());
static const auto LaterAtStart = values_of(later_state());
static const auto TypeAtStart = std::to_array(Type);
static const auto ColErrIdxAtStart = std::to_array(ColErrIdx);
static const auto ColPlotGroupAtStart = std::to_array(ColPlotGroup);

void reset_state() {
    for (int* list : {ParToReadNum1, ParToReadNum2, ParToCombineNum1, ParToCombineNum2})
        std::free(list);
    release_curves();
    clear_columns();
    buf_initialize();
    release_rows();
    settings() = SettingsAtStart;
    pair_lists() = ListsAtStart;
    later_state() = LaterAtStart;
    std::copy(TypeAtStart.begin(), TypeAtStart.end(), Type);
    std::copy(ColErrIdxAtStart.begin(), ColErrIdxAtStart.end(), ColErrIdx);
    std::copy(ColPlotGroupAtStart.begin(), ColPlotGroupAtStart.end(), ColPlotGroup);
    plain::start_again();
}

void share_curves() {
    plain::table_t& table = plain::Table;
    table = plain::table_t();
    table.NcolsToPlot = NcolsToPlot;
    std::copy(PlotColType, PlotColType + MAX_COLS, table.PlotColType);
    std::copy(ColPlotGroup, ColPlotGroup + MAX_COLS, table.ColPlotGroup);
    for (int c = 0; c < Ncurves; c++) {
        plain::curve_t curve = {CurveNd[c], CurveNc[c], CurveScaleFactor[c], CurvePlotGroup[c]};
        std::copy(CurveShift[c], CurveShift[c] + MAX_COLS, curve.Shift);
        for (int j = 0; j < NcolsToPlot; j++) {
            const int n = Curve[c][j] == nullptr ? 0 : Npts[c];
            curve.columns.emplace_back(Curve[c][j], Curve[c][j] + n);
        }
        table.curves.push_back(curve);
    }
}

static void share_list(const std::vector<plain::pair_t>& pairs, int* count, int** N, int** M) {
    *count = static_cast<int>(pairs.size());
    *N = *M = nullptr;
    if (pairs.empty())
        return;
    *N = resized<int>(nullptr, pairs.size());
    *M = resized<int>(nullptr, pairs.size());
    for (std::size_t i = 0; i < pairs.size(); i++) {
        (*N)[i] = pairs[i].N;
        (*M)[i] = pairs[i].M;
    }
}

void share_settings() {
    settings() = plain_settings();
    share_list(plain::Options.ParToRead, &NparToRead, &ParToReadNum1, &ParToReadNum2);
    share_list(plain::Options.ParToCombine, &NparToCombine, &ParToCombineNum1, &ParToCombineNum2);
    for (std::size_t r = 0; r < MAX_COLS; r++) {
        Type[r].style_type = plain::Type[r].style_type;
        Type[r].p_type = plain::Type[r].p_type;
    }
}
