// SPDX-License-Identifier: MIT
//
// The cases show every name, label and style of the table.
#include <string>

#include "plain/plain.h"
#include "run/run.h"
#include "state.h"

using Kinds = Fresh;

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

TEST_F(Kinds, d_idx_follows_the_rows_not_the_bits) {
    EXPECT_EQ(d_idx(0x100), 0);
    EXPECT_EQ(d_idx(0x20), 2);
    for (int r = 0; r < MAX_COLS; r++) {
        EXPECT_EQ(d_idx(Type[r].type), r);
        EXPECT_EQ(Type[r].user, 0);
    }
}

// Lines have a point type, too, that nothing draws.
TEST_F(Kinds, point_types_are_those_of_the_reference) {
    for (std::size_t r = 0; r < MAX_COLS; r++) {
        EXPECT_EQ(Type[r].p_type, plain::types_at_start()[r].p_type);
        EXPECT_EQ(Type[r].style_crad, 0.0);
    }
}

TEST_F(Kinds, d_idx_ends_the_run_at_anything_but_one_known_flag) {
    for (const int t : {0x3, 0x20000, 0, -1, 0x1ffff, 0x101, 1 << 30})
        EXPECT_TRUE(ended_with(in_child([t] { d_idx(t); }), 1,
                               "Unknown data type: " + std::to_string(t) + "\n", ""));
}
