// SPDX-License-Identifier: MIT
#include "run/run.h"

// clang-format off
data_type_t Type[MAX_COLS] = {
    {P_GINT_S, "S-values", "S", "S",
     "black", 0, 0, 1.5, 0.0, 0},
    {P_GINT_INT, "Total experimental intensity", "Tot.Exp.Int.", "{/Arial-Italic I}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_RINT, "Reduced experimental intensity", "Red.Exp.Int.", "{/Arial-Italic I}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_BGL, "Background", "Bgl.", "{/Arial-Italic B}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_SMS, "Experimental sM(s)", "Exp.sM(s)", "{/Arial-Italic sM}({/Arial-Italic s})",
     "black", ST_POINTS, 6, 1.0, 0.0, 0},
    {P_GINT_TSMS, "Theoretical sM(s)", "Thr.sM(s)", "{/Arial-Italic sM}({/Arial-Italic s})",
     "#AA0000", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_DSMS, "Delta sM(s)", "D.sM(s)", "{/Arial-Italic sM}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_SEC, "Sector function", "Sec.", "{/Arial-Italic K}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_IAT, "Atomic scattering intensity", "Iat.", "{/Arial-Italic sM}({/Arial-Italic s})_{at}",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_RBGL, "Reduced background", "Rbgl", "{/Arial-Italic B}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_SMSS, "sM(s) Std. dev", "sMsS", "{/Arial-Italic S}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_INTS, "Int Std. dev", "IntS", "{/Arial-Italic S}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_R, "R-values", "R", "R",
     "black", 0, 0, 1.5, 0.0, 0},
    {P_GINT_LINT, "Levelled experimental intensity", "Lvl.Exp.Int.", "{/Arial-Italic I}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_LBGL, "Levelled background", "Lbgl", "{/Arial-Italic B}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_TINT, "Theoretical intensity", "Tot.Thr.I", "{/Arial-Italic I}({/Arial-Italic s})",
     "#AA0000", ST_LINES, 6, 2.0, 0.0, 0},
    {P_GINT_DINT, "Delta intensity", "Delta.I", "{/Arial-Italic I}({/Arial-Italic s})",
     "black", ST_LINES, 6, 2.0, 0.0, 0},
};
// clang-format on

int d_idx(int t) {
    for (int row = 0; row < MAX_COLS; row++) {
        if (Type[row].type == t)
            return row;
    }
    fail(stdout, "Unknown data type: %d\n", t);
}
