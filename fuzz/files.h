// SPDX-License-Identifier: MIT
//
// The parts of the target `files`: its input is a line of settings, then the file to be drawn.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// ---- Settings (files_settings.cpp) -------------------------------------------------------------

// What the settings line may have: options of the program, and how the file is given. What is
// none of them is passed over.
std::vector<std::string> settings_words(bool with_argument);

// How the file is given.
struct file_settings_t {
    bool through_pipe;  // --pipe
    std::size_t fill;   // --fill: characters more in its first line, for more than one block
};

// Sets what the line says, in the program and in the reference.
file_settings_t apply_settings(const std::string& line);

// Releases the settings that are texts.
void release_settings();

// ---- Files to be drawn (files_mutator.cpp) -----------------------------------------------------

struct random_t {
    std::uint64_t state;
};

// An input with a well-formed file.
std::string grow_input(random_t* random);

// Damages the input: its lines, its numbers, its settings.
void damage_input(random_t* random, std::string* input);
