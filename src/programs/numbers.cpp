// SPDX-License-Identifier: MIT
#include "numbers.h"

static constexpr char DRAW[] = "gravlex and gravlex-figure draw, this program writes numbers";
static constexpr char WHOLE[] = "whole curves are written";
static constexpr char UNSHIFTED[] = "curves are written without shifts";
static constexpr char COPIED[] = "numbers are copied; give it to gravlex with the joined file";

const refused_option_t ChangingOptions[] = {
    {"bglp1", COPIED},
    {"smsef", COPIED},
    {"png", DRAW},
    {"eps", DRAW},
    {"svg", DRAW},
    {"imgw", DRAW},
    {"imgl", DRAW},
    {"grid", DRAW},
    {"legend", DRAW},
    {"no-xtics", DRAW},
    {"ytics", DRAW},
    {"x2tics", DRAW},
    {"y2tics", DRAW},
    {"ratio", DRAW},
    {"term", DRAW},
    {"no-multiplot", DRAW},
    {"no-autoshifts", UNSHIFTED},
    {"shiftmult", UNSHIFTED},
    {"lw", DRAW},
    {"elw", DRAW},
    {"psf", DRAW},
    {"efa", DRAW},
    {"dcombine", "use --dread"},
    {"ccombine", "use --cread"},
    {"smserrbars", "use --dread with smss"},
    {"dsmserrbars", "use --dread with smss"},
    {"smserrfill", "use --dread with smss"},
    {"dsmserrfill", "use --dread with smss"},
    {"dsmslerrfill", "use --dread with smss"},
    {"style_sms", DRAW},
    {"ptype_sms", DRAW},
    {"xmin", WHOLE},
    {"xmax", WHOLE},
    {nullptr, nullptr},
};
const refused_option_t* const DrawingOptions = ChangingOptions + 2;

const char* column_word(int kind) {
    if (kind == P_GINT_S)
        return "s";
    return kind == P_GINT_R ? "r" : kind_word(kind);
}

int column_of(const set_t& set, int kind) {
    for (int j = 0; j < set.NcolsToPlot; j++) {
        if (set.PlotColType[j] == kind)
            return j;
    }
    return -1;
}
