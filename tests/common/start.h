// SPDX-License-Identifier: MIT
//
// The state of the program, which is all process-wide: as at its start, or as in the reference.
#pragma once

// Sets every process-wide variable of the program to the value that it had when the process
// started, and releases the store, the curve buffer and the pair lists. The same for the
// reference.
void reset_state();

// Gives the reference the columns and data sets of the program, with their groups and shifts.
void share_curves();

// Gives the program the settings of the reference.
void share_settings();
