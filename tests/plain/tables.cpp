// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "plain/plain.h"

namespace plain {

table_t Table;

int points(const curve_t& curve, int column) {
    if (column >= static_cast<int>(curve.columns.size()))
        return 0;
    return static_cast<int>(curve.columns[column].size());
}

bool in_plot(const curve_t& curve, int column, int curve_group, int column_group) {
    return curve.PlotGroup == curve_group && Table.ColPlotGroup[column] == column_group;
}

static bool has(const std::string& line, const char* mark) {
    return line.find(mark) != std::string::npos;
}

// ---- Both layouts ------------------------------------------------------------------------------

static const struct {
    const char* text;
    int type;
} Labels[MAX_COLS] = {{"   Total Int.  |", P_GINT_INT},  {"    Red. Int.  |", P_GINT_RINT},
                      {"    Lvl. Int.  |", P_GINT_LINT}, {"   Background  |", P_GINT_BGL},
                      {"   Exp. sM(s)  |", P_GINT_SMS},  {"   Thr. sM(s)  |", P_GINT_TSMS},
                      {"  Delta sM(s)  |", P_GINT_DSMS}, {"   Sec. Func.  |", P_GINT_SEC},
                      {"   At. Scat.   |", P_GINT_IAT},  {"       S      |", P_GINT_S},
                      {"    Red. Bgl   |", P_GINT_RBGL}, {"    Lvl. Bgl   |", P_GINT_LBGL},
                      {"  sM(s) St.dev |", P_GINT_SMSS}, {"  Int. St.dev  |", P_GINT_INTS},
                      {"      R      |", P_GINT_R},      {" Thr. Tot. Int |", P_GINT_TINT},
                      {"   Delta Int.  |", P_GINT_DINT}};

// The columns in the order of their labels on the line.
static void find_columns(const std::string& line) {
    std::vector<std::pair<std::size_t, int>> found;  // position and kind
    for (const auto& label : Labels) {
        const std::size_t position = line.find(label.text);
        if (position != std::string::npos)
            found.emplace_back(position, label.type);
    }
    std::sort(found.begin(), found.end());
    Table.Ncols = 0;
    for (const auto& [position, type] : found)
        Table.ColType[Table.Ncols++] = type;
}

static void read_header_row(const std::string& line) {
    table_t& t = Table;
    find_columns(line);
    t.NcolsToPlot = 0;
    std::printf("%d types of data have been found:\n", t.Ncols);
    for (int i = 0; i < t.Ncols; i++) {
        std::printf(" %d %s \n", i, Type[d_idx(t.ColType[i])].name);
        if ((static_cast<unsigned>(t.ColType[i]) & Options.DataToRead) == 0)
            continue;
        t.PlotColType[t.NcolsToPlot] = t.ColType[i];
        t.PlotTypePos[t.NcolsToPlot] = i;
        t.NcolsToPlot++;
    }
    std::printf("%d types of data are subject to process:\n", t.NcolsToPlot);
    for (int j = 0; j < t.NcolsToPlot; j++)
        std::printf(" %d %s (column %d)\n", j, Type[d_idx(t.PlotColType[j])].name,
                    t.PlotTypePos[j]);
    if (t.NcolsToPlot < 2)
        fail(stdout, "Not enough data for plotting.\n");
}

static bool is_selected(const pair_t& label) {
    if (Options.ParToRead.empty())
        return true;
    for (const pair_t& wanted : Options.ParToRead) {
        if (wanted == label)
            return true;
    }
    return false;
}

static void create_columns() {
    Table.curves.back().columns.resize(Table.NcolsToPlot);
}

static double corrected(double v, int type, double factor) {
    if (Options.PlotBglPlus1 && (type == P_GINT_BGL || type == P_GINT_RBGL || type == P_GINT_LBGL))
        v = v + 1.0;
    if (type == P_GINT_SMSS)
        v = v * Options.smsStdevFactor;
    if (type == P_GINT_SMS || type == P_GINT_TSMS || type == P_GINT_DSMS || type == P_GINT_SMSS)
        v = v / factor;
    return v;
}

static void read_data_row(const std::string& line) {
    double numbers[MAX_NUMBERS];
    const int nrd = read_numbers(line.c_str(), numbers);
    if (nrd != Table.Ncols)
        fail(stdout, "Invalid number of columns: expected %d, read %d \n", Table.Ncols, nrd);
    curve_t& curve = Table.curves.back();
    for (int j = 0; j < Table.NcolsToPlot; j++)
        curve.columns[j].push_back(
            corrected(numbers[Table.PlotTypePos[j]], Table.PlotColType[j], curve.ScaleFactor));
}

static void end_of_set() {
    std::printf("Set # %zu has been read. Number of data points: %d \n", Table.curves.size() - 1,
                points(Table.curves.back(), 0));
}

// ---- Layout 1 ----------------------------------------------------------------------------------

// The label stands between the last '(' and the first ')'.
static void read_label_ver1(const std::string& line, pair_t* label) {
    const std::size_t end = line.find(')');
    if (end == std::string::npos)
        return;
    // Without a '(' it begins at the second character, even if the line begins with the ')'.
    std::string text = line;
    text[end] = '\0';
    const std::size_t open = line.substr(0, end).rfind('(');
    const char* start = text.c_str() + (open == std::string::npos ? 0 : open) + 1;
    if (parse_int_curve(start, label) != 0)
        fail(stdout, "Incorrect format of curve representation: %s \n", start);
}

// The factor stands between the last '=' and the first blank that has an '=' before it.
static void read_factor_ver1(const std::string& line, const pair_t& label, double* factor) {
    std::size_t equals = 0;
    for (std::size_t i = 0; i < line.size(); i++) {
        if (line[i] == '=')
            equals = i;
        if (line[i] != ' ' || equals == 0)
            continue;
        const std::string text = line.substr(equals + 1, i - equals - 1);
        char* end;
        errno = 0;
        *factor = std::strtod(text.c_str(), &end);
        if (errno != 0)
            fail(stderr, "Invalid scale factor (strtod failed) for curve (%d-%d): %s \n", label.N,
                 label.M, text.c_str());
        if (end == text.c_str())
            fail(stderr, "No digits were found for ScaleFactor of curve (%d-%d)!\n", label.N,
                 label.M);
        return;
    }
}

void parse_kova_int_tables_ver1(const char* inpFname) {
    lines_t lines(inpFname);
    int tableN = 0, stage = 0;
    pair_t label = {0, 0};
    double factor = 1.0;
    for (bool last = false; !last;) {
        const std::string line = lines.next();
        last = lines.is_at_end;
        if (stage == 0 && has(line, "GED curves.")) {
            tableN++;
            lines.next();
            Table = table_t();
            if (tableN == Options.TableN)
                stage = 1;
        } else if (stage == 1) {
            read_header_row(line);
            lines.next();
            stage = 2;
        } else if (stage == 2 && has(line, "Curve: ")) {
            read_label_ver1(line, &label);
            read_factor_ver1(line, label, &factor);
            if (!is_selected(label))
                continue;
            Table.curves.push_back({label.N, label.M, factor});
            create_columns();
            lines.next();
            stage = 3;
        } else if (stage == 3 && has(line, "===================")) {
            end_of_set();
            stage = 2;
        } else if (stage == 3 && has(line, "-------------------")) {
            end_of_set();
            std::printf("End of data table.\n");
            return;
        } else if (stage == 3) {
            read_data_row(line);
        }
    }
}

// ---- Layout 2 ----------------------------------------------------------------------------------

// Gives the text behind the mark, up to the white space that ends it. False if none does.
static bool word_after(const std::string& line, const char* mark, std::string* word) {
    const std::size_t start = line.find(mark) + std::strlen(mark);
    const std::size_t end = line.find_first_of(BLANKS, start);
    *word = line.substr(start, end - start);
    return end != std::string::npos;
}

static void read_label_ver2(const std::string& line, pair_t* label) {
    std::string text;
    if (word_after(line, "Set: ", &text) && parse_int_curve(text, label) != 0)
        fail(stdout, "Incorrect format of curve representation: '%s'\n", text.c_str());
}

static double read_factor_ver2(const std::string& line, const pair_t& label) {
    double factor = 1.0;
    std::string text;
    if (word_after(line, "Scale=", &text)) {
        char* end;
        errno = 0;
        factor = std::strtod(text.c_str(), &end);
        if (errno != 0)
            fail(stderr, "Invalid scale factor for curve %d-%d: '%s'\n", label.N, label.M,
                 text.c_str());
        if (end == text.c_str())
            fail(stderr, "No digits were found for ScaleFactor of curve %d-%d\n", label.N,
                 label.M);
    }
    std::printf("Scale(%d-%d)=%e\n", label.N, label.M, factor);
    return factor;
}

void parse_kova_int_tables_ver2(const char* inpFname) {
    lines_t lines(inpFname);
    int tableN = 0, stage = 0;
    pair_t label = {0, 0};
    Table.NcolsToPlot = MAX_COLS;
    for (bool last = false; !last;) {
        const std::string line = lines.next();
        last = lines.is_at_end;
        if (stage == 0 && has(line, "GED curves.")) {
            tableN++;
            lines.next();
            Table.curves.clear();
            if (tableN == Options.TableN)
                stage = 1;
        } else if (stage == 1 && has(line, "Set: ")) {
            read_label_ver2(line, &label);
            if (!is_selected(label))
                continue;
            Table.curves.push_back({label.N, label.M, 1.0});
            stage = 2;
        } else if (stage == 1 && is_empty(line.c_str())) {
            return;
        } else if (stage == 2 && has(line, "Scale=")) {
            Table.curves.back().ScaleFactor = read_factor_ver2(line, label);
            stage = 3;
        } else if (stage == 3 && has(line, "----------------")) {
            stage = 4;
        } else if (stage == 4) {
            read_header_row(line);
            create_columns();
            lines.next();
            stage = 5;
        } else if (stage == 5 && has(line, "----------------")) {
            end_of_set();
            stage = 1;
        } else if (stage == 5) {
            read_data_row(line);
        }
    }
}

}  // namespace plain
