// SPDX-License-Identifier: MIT
//
// What all unit tests share: fresh process-wide state, curve stores made from plain tables, input
// files made from text, and what a call prints, sends to gnuplot or ends with.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "common/start.h"

class Fresh : public testing::Test {
  protected:
    void SetUp() override { reset_state(); }
    void TearDown() override { reset_state(); }
};

// ---- Output ------------------------------------------------------------------------------------

using act_t = std::function<void()>;

// What a call prints on standard output.
std::string said(const act_t& act);

// What a call writes to gnuplot; what it prints is dropped.
std::string sent(const act_t& act);

struct ended_t {
    int status;            // exit status, or minus the signal that ended it
    std::string out, err;  // what it printed
};

// Runs a call in a process of its own, for calls that end the run or change what cannot be reset.
// If it returns, or exits by itself, the status is its own; a failed assertion in it makes it
// FAILED_INSIDE, with the text of the failure in out.
constexpr int FAILED_INSIDE = 99;
ended_t in_child(const act_t& act);

// True if the call ended with exactly this.
testing::AssertionResult ended_with(const ended_t& ended, int status, const std::string& out,
                                    const std::string& err);

// True if the text has the part in it.
testing::AssertionResult contains(const std::string& text, const std::string& part);

// Leaves the process a gigabyte of memory to allocate. For a process that ends soon.
void limit_memory();

// ---- Input -------------------------------------------------------------------------------------

// A file with the text, as long as the object lives.
struct text_file_t {
    explicit text_file_t(const std::string& text);
    text_file_t(const text_file_t&) = delete;
    text_file_t& operator=(const text_file_t&) = delete;
    ~text_file_t();
    std::string path;
    const char* name() const { return path.c_str(); }
};

// ---- The store ---------------------------------------------------------------------------------

using column_t = std::vector<double>;

// The plot columns; the first one is the abscissa.
void set_plot_columns(const std::vector<int>& kinds);

// Appends a data set, with one column for each plot column; an empty one is left out (null).
void add_set(int Nd, int Nc, const std::vector<column_t>& columns);

// Puts everything that is in the store into curve group 1 and column group 1.
void combine_all();

// The bits of a number; those of all NaN are the same.
std::uint64_t bits(double value);
