// SPDX-License-Identifier: MIT
#include <string>

#include "run/run.h"
#include "state.h"

using Kinds = Fresh;

static const char INTENSITY[] = "{/Arial-Italic I}({/Arial-Italic s})";
static const char BACKGROUND[] = "{/Arial-Italic B}({/Arial-Italic s})";
static const char SMS[] = "{/Arial-Italic sM}({/Arial-Italic s})";
static const char STDEV[] = "{/Arial-Italic S}({/Arial-Italic s})";

struct row_t {
    int type;
    const char *name, *name_short, *name_eps, *color;
    int style_type, p_type;
    double style_lw;
};

// Flags as numbers: the constants are checked by the same table.
static const row_t Rows[] = {
    {0x100, "S-values", "S", "S", "black", 0, 0, 1.5},
    {0x1, "Total experimental intensity", "Tot.Exp.Int.", INTENSITY, "black", 1, 6, 2.0},
    {0x20, "Reduced experimental intensity", "Red.Exp.Int.", INTENSITY, "black", 1, 6, 2.0},
    {0x2, "Background", "Bgl.", BACKGROUND, "black", 1, 6, 2.0},
    {0x4, "Experimental sM(s)", "Exp.sM(s)", SMS, "black", 2, 6, 1.0},
    {0x8, "Theoretical sM(s)", "Thr.sM(s)", SMS, "#AA0000", 1, 6, 2.0},
    {0x10, "Delta sM(s)", "D.sM(s)", SMS, "black", 1, 6, 2.0},
    {0x40, "Sector function", "Sec.", "{/Arial-Italic K}({/Arial-Italic s})", "black", 1, 6, 2.0},
    {0x80, "Atomic scattering intensity", "Iat.", "{/Arial-Italic sM}({/Arial-Italic s})_{at}",
     "black", 1, 6, 2.0},
    {0x200, "Reduced background", "Rbgl", BACKGROUND, "black", 1, 6, 2.0},
    {0x400, "sM(s) Std. dev", "sMsS", STDEV, "black", 1, 6, 2.0},
    {0x800, "Int Std. dev", "IntS", STDEV, "black", 1, 6, 2.0},
    {0x1000, "R-values", "R", "R", "black", 0, 0, 1.5},
    {0x2000, "Levelled experimental intensity", "Lvl.Exp.Int.", INTENSITY, "black", 1, 6, 2.0},
    {0x4000, "Levelled background", "Lbgl", BACKGROUND, "black", 1, 6, 2.0},
    {0x8000, "Theoretical intensity", "Tot.Thr.I", INTENSITY, "#AA0000", 1, 6, 2.0},
    {0x10000, "Delta intensity", "Delta.I", INTENSITY, "black", 1, 6, 2.0},
};

TEST_F(Kinds, every_row_of_the_table_is_as_written) {
    ASSERT_EQ(MAX_COLS, 17);
    ASSERT_EQ(std::size(Rows), std::size(Type));
    for (int r = 0; r < MAX_COLS; r++) {
        SCOPED_TRACE(r);
        EXPECT_EQ(Type[r].type, Rows[r].type);
        EXPECT_STREQ(Type[r].name, Rows[r].name);
        EXPECT_STREQ(Type[r].name_short, Rows[r].name_short);
        EXPECT_STREQ(Type[r].name_eps, Rows[r].name_eps);
        EXPECT_STREQ(Type[r].style_color, Rows[r].color);
        EXPECT_EQ(Type[r].style_type, Rows[r].style_type);
        EXPECT_EQ(Type[r].p_type, Rows[r].p_type);
        EXPECT_EQ(Type[r].style_lw, Rows[r].style_lw);
        EXPECT_EQ(bits(Type[r].style_crad), bits(0.0));
        EXPECT_EQ(Type[r].user, 0);
    }
}

TEST_F(Kinds, fields_have_their_sizes) {
    EXPECT_EQ(sizeof Type[0].name, 100U);
    EXPECT_EQ(sizeof Type[0].name_short, 30U);
    EXPECT_EQ(sizeof Type[0].name_eps, 100U);
    EXPECT_EQ(sizeof Type[0].style_color, 20U);
}

TEST_F(Kinds, flags_have_their_values) {
    const int flags[] = {P_GINT_INT,  P_GINT_BGL,  P_GINT_SMS, P_GINT_TSMS, P_GINT_DSMS,
                         P_GINT_RINT, P_GINT_SEC,  P_GINT_IAT, P_GINT_S,    P_GINT_RBGL,
                         P_GINT_SMSS, P_GINT_INTS, P_GINT_R,   P_GINT_LINT, P_GINT_LBGL,
                         P_GINT_TINT, P_GINT_DINT};
    ASSERT_EQ(std::size(flags), 17U);
    for (std::size_t bit = 0; bit < std::size(flags); bit++)
        EXPECT_EQ(flags[bit], 1 << bit);
    EXPECT_EQ(P_GINT_EVERY, 0x1ffffU);
    EXPECT_EQ(P_GINT_WORD_ALL, 0x19effU);
}

TEST_F(Kinds, styles_and_image_formats_have_their_values) {
    EXPECT_EQ(ST_LINES, 1);
    EXPECT_EQ(ST_POINTS, 2);
    EXPECT_EQ(ST_LPOINTS, 3);
    EXPECT_EQ(ST_SPECIAL, 4);
    EXPECT_EQ(IMG_PNG, 1);
    EXPECT_EQ(IMG_EPS, 2);
    EXPECT_EQ(IMG_SVG, 3);
}

TEST_F(Kinds, d_idx_follows_the_rows_not_the_bits) {
    EXPECT_EQ(d_idx(0x100), 0);
    EXPECT_EQ(d_idx(0x20), 2);
    for (int r = 0; r < MAX_COLS; r++)
        EXPECT_EQ(d_idx(Rows[r].type), r);
}

TEST_F(Kinds, d_idx_ends_the_run_at_anything_but_one_known_flag) {
    for (const int t : {0x3, 0x20000, 0, -1, 0x1ffff, 0x101, 1 << 30})
        EXPECT_TRUE(ended_with(in_child([t] { d_idx(t); }), 1,
                               "Unknown data type: " + std::to_string(t) + "\n", ""));
}

TEST_F(Kinds, is_in_looks_for_a_shared_bit) {
    EXPECT_TRUE(is_in(P_GINT_BGL, 0x3));
    EXPECT_FALSE(is_in(P_GINT_SMS, 0x3));
    EXPECT_FALSE(is_in(P_GINT_SMS, 0));
    EXPECT_TRUE(is_in(P_GINT_DINT, P_GINT_EVERY));
}
