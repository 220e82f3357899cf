// SPDX-License-Identifier: MIT
//
// gravlex-watch: one file, one window, and a loop that waits for either of them.
#pragma once

#include <string>

#include "program.h"

// ---- The file (watch_events.cpp) ---------------------------------------------------------------

// Begins to watch a file. Returns the descriptor that tells of changes, -1 where the system cannot
// tell. What can only be read once, and what is in no folder, ends the run with a sentence.
int watch_file(const char* name);

// Ends the process with a sentence if there is something else than a file of that name: to open a
// pipe may take for ever.
void require_rereadable(const char* name);

// Takes what that descriptor has to tell, if anything.
void take_events();

// True if the file is to be read: it has changed, and has been left alone since.
bool file_is_due();

// To be called before the file is read: what has changed so far will be in it.
void file_is_taken();

// Milliseconds until file_is_due can become true without an event.
int time_to_next_look();

// ---- The picture (watch_picture.cpp) -----------------------------------------------------------

// Reads the file and writes what gnuplot has to load for it, with a number that gnuplot knows once
// all of it is drawn. A zoomed plot of the same curves keeps its zoom. Ends the process with a
// sentence if the file cannot be drawn as it is.
void write_picture(const char* name, FILE* commands, int number);

// ---- The window (watch_window.cpp) -------------------------------------------------------------

// The ends of two pipes: gnuplot's messages come from one, and the other has an error when gnuplot
// has ended.
struct window_t {
    int messages, input;
};

// Starts gnuplot, which inherits the file of commands.
window_t open_window(const char* name, FILE* commands);

// Lets gnuplot load the commands: the picture of this number.
void draw_picture(int number);

// True until gnuplot can be asked for the next picture.
bool window_is_busy();

// Takes what gnuplot has said so far. A gnuplot that cannot show anything ends the run with a
// sentence.
void take_messages();

// Ends the run after gnuplot: well if the window was closed, else with a sentence.
[[noreturn]] void end_with_gnuplot();

// ---- What both of them say (watch.cpp) ---------------------------------------------------------

// False for what was said last: it is not said again.
bool is_news(const std::string& sentence);

// Makes all of it news again.
void forget_news();
