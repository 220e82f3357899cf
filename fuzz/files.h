// SPDX-License-Identifier: MIT
//
// The settings of the target `files` (files_settings.cpp): its input is a line of settings, then
// the file to be drawn.
#pragma once

#include <cstddef>
#include <string>

// How the file is given.
struct file_settings_t {
    bool through_pipe;  // --pipe
    std::size_t fill;   // --fill: characters more in its first line, for more than one block
};

// Sets what the line says, in the program and in the reference. What is no option of either is
// passed over.
file_settings_t apply_settings(const std::string& line);

// Releases the settings that are texts.
void release_settings();
