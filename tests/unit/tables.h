// SPDX-License-Identifier: MIT
//
// Intensity tables of both layouts, for the tests of their readers.
#pragma once

#include <string>
#include <vector>

#include "input/input.h"
#include "state.h"

constexpr char L_S[] = "       S      |";
constexpr char L_INT[] = "   Total Int.  |";
constexpr char L_BGL[] = "   Background  |";
constexpr char L_SMS[] = "   Exp. sM(s)  |";
constexpr char L_TSMS[] = "   Thr. sM(s)  |";
constexpr char L_DSMS[] = "  Delta sM(s)  |";
constexpr char L_SMSS[] = "  sM(s) St.dev |";

struct table_set_t {
    std::string label, factor, rows;
};

inline std::string table_ver1(const std::string& header, const std::vector<table_set_t>& sets) {
    std::string text = " 1. GED curves.\n(over)\n" + header + "\n(over)\n";
    for (const table_set_t& set : sets) {
        text += " Curve: (" + set.label + ") =" + set.factor + " \n(over)\n" + set.rows;
        text += &set == &sets.back() ? "-------------------\n" : "===================\n";
    }
    return text;
}

inline std::string set_ver2(const std::string& header, const table_set_t& set) {
    return "Set: " + set.label + " \n(any)\nScale=" + set.factor + " \n(any)\n----------------\n" +
           header + "\n(over)\n" + set.rows + "----------------\n";
}

inline std::string table_ver2(const std::string& header, const std::vector<table_set_t>& sets) {
    std::string text = " 1. GED curves.\n(over)\n";
    for (const table_set_t& set : sets)
        text += set_ver2(header, set);
    return text + "\n";
}

struct layout_t {
    void (*read)(const char* inpFname);
    std::string (*table)(const std::string& header, const std::vector<table_set_t>& sets);
};

inline const layout_t Layouts[] = {{parse_kova_int_tables_ver1, table_ver1},
                                   {parse_kova_int_tables_ver2, table_ver2}};
inline const layout_t& Ver1 = Layouts[0];
inline const layout_t& Ver2 = Layouts[1];

// Reads the text into the store, in place of what is there, and returns what was printed.
inline std::string read_text(const layout_t& layout, const std::string& text) {
    release_curves();
    const text_file_t file(text);
    return said([&] { layout.read(file.name()); });
}

// Reads a text that is to end the run.
inline ended_t read_wrong_text(const layout_t& layout, const std::string& text) {
    const text_file_t file(text);
    return in_child([&] { layout.read(file.name()); });
}

// A plot column of a set.
inline column_t stored(int c, int j) {
    return column_t(Curve[c][j], Curve[c][j] + Npts[c]);
}
