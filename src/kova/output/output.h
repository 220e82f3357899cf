// SPDX-License-Identifier: MIT
//
// Where the work of further programs goes: files that are there whole or not at all, and processes
// that read or draw. gravlex needs none of it: its commands go through a pipe.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <functional>
#include <string>

// ---- Files (files.cpp) -------------------------------------------------------------------------

// Opens a file beside the one of this name, to be written, and closes the one before. The name is
// refused, with a sentence, if there is something already that may not be replaced. "-" is
// standard output.
FILE* new_file(const char* name, bool overwrite);

// Closes the last new file and gives all of them their names. A file that could not be written
// ends the run with a sentence; whatever ends the run before leaves none of them.
void keep_files();

// A file that nobody sees, to be closed by the caller. Where none can be made, the run ends with a
// sentence.
FILE* scratch_file();

// Sees to it that all of it is in the file. A disk that is full ends the run with a sentence.
void complete(FILE* scratch);

// FILE and a number: fit.gp is fit-2.gp.
std::string numbered_name(const char* name, int number);

// ---- Processes (processes.cpp) -----------------------------------------------------------------

// Does the work in a process of its own, as the core reads once in a process. Returns its exit
// status; one that is killed ends the run with a sentence. It ends with the process that waits.
int read_in_child(const std::function<void()>& work);

// Waits for a child of this process and returns the status of its end, as waitpid gives it.
int status_of_end(pid_t child);

// For a child: becomes gnuplot, which reads the script, or its standard input where that is null.
// It ends with the process that waits for it.
[[noreturn]] void become_gnuplot(const char* script);

// Ends the run if gnuplot has said why it failed, or was not found. status is that of its end.
void blame_gnuplot(int status, const std::string& complaint);

// What has to stand in front of a file name that a program could take for an option, or gnuplot
// for a pipe: "./" or nothing.
const char* before_name(const char* name);

// Writes a text as a string of gnuplot that no byte of it can end: between single quotes gnuplot
// 5.4 ends it behind two of them.
void write_text(FILE* commands, const char* text);

// The same for a file name, which gnuplot takes for a file of that name and nothing else.
void write_name(FILE* commands, const char* name);
