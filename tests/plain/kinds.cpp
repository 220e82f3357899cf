// SPDX-License-Identifier: MIT
#include "plain/plain.h"

namespace plain {

static const char I[] = "{/Arial-Italic I}({/Arial-Italic s})";
static const char B[] = "{/Arial-Italic B}({/Arial-Italic s})";
static const char M[] = "{/Arial-Italic sM}({/Arial-Italic s})";
static const char A[] = "{/Arial-Italic sM}({/Arial-Italic s})_{at}";
static const char K[] = "{/Arial-Italic K}({/Arial-Italic s})";
static const char D[] = "{/Arial-Italic S}({/Arial-Italic s})";

// clang-format off
std::array<data_type_t, MAX_COLS> types_at_start() {
    return {{
        {P_GINT_S, "S-values", "S", "S", "black", 0, 0, 1.5},
        {P_GINT_INT, "Total experimental intensity", "Tot.Exp.Int.", I, "black", 1, 6, 2.0},
        {P_GINT_RINT, "Reduced experimental intensity", "Red.Exp.Int.", I, "black", 1, 6, 2.0},
        {P_GINT_BGL, "Background", "Bgl.", B, "black", 1, 6, 2.0},
        {P_GINT_SMS, "Experimental sM(s)", "Exp.sM(s)", M, "black", 2, 6, 1.0},
        {P_GINT_TSMS, "Theoretical sM(s)", "Thr.sM(s)", M, "#AA0000", 1, 6, 2.0},
        {P_GINT_DSMS, "Delta sM(s)", "D.sM(s)", M, "black", 1, 6, 2.0},
        {P_GINT_SEC, "Sector function", "Sec.", K, "black", 1, 6, 2.0},
        {P_GINT_IAT, "Atomic scattering intensity", "Iat.", A, "black", 1, 6, 2.0},
        {P_GINT_RBGL, "Reduced background", "Rbgl", B, "black", 1, 6, 2.0},
        {P_GINT_SMSS, "sM(s) Std. dev", "sMsS", D, "black", 1, 6, 2.0},
        {P_GINT_INTS, "Int Std. dev", "IntS", D, "black", 1, 6, 2.0},
        {P_GINT_R, "R-values", "R", "R", "black", 0, 0, 1.5},
        {P_GINT_LINT, "Levelled experimental intensity", "Lvl.Exp.Int.", I, "black", 1, 6, 2.0},
        {P_GINT_LBGL, "Levelled background", "Lbgl", B, "black", 1, 6, 2.0},
        {P_GINT_TINT, "Theoretical intensity", "Tot.Thr.I", I, "#AA0000", 1, 6, 2.0},
        {P_GINT_DINT, "Delta intensity", "Delta.I", I, "black", 1, 6, 2.0},
    }};
}
// clang-format on

std::array<data_type_t, MAX_COLS> Type = types_at_start();

int d_idx(int t) {
    for (int i = 0; i < MAX_COLS; i++) {
        if (Type[i].type == t)
            return i;
    }
    fail(stdout, "Unknown data type: %d\n", t);
}

}  // namespace plain
