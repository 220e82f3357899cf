// SPDX-License-Identifier: MIT
//
// The command line, as popt takes it apart.
#include <popt.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "run/run.h"

// popt may go on without the memory that it asked for: without an argument, or with a piece left
// out of its texts. Only errno tells, so its calls stand between these two.
static bool InPopt;

static void enter_popt() {
    InPopt = true;
    errno = 0;
}

static void leave_popt() {
    InPopt = false;
    // GCOV_EXCL_START no memory: faults/memory, here and below
    if (errno == ENOMEM)
        fail(stderr, "Cannot allocate memory\n");
    // GCOV_EXCL_STOP
}

// popt ends the run itself where it has printed the help, and where it does see a lack of memory.
static void end_in_popt() {
    if (!InPopt || errno != ENOMEM)  // GCOV_EXCL_BR_LINE
        return;
    // GCOV_EXCL_START
    complain("Cannot allocate memory\n");
    _exit(EXIT_FAILURE);
    // GCOV_EXCL_STOP
}

static poptContext new_context(int argc, char** argv, const poptOption* table,
                               const char* arguments) {
    enter_popt();
    poptContext context = poptGetContext(argv[0], argc, const_cast<const char**>(argv), table, 0);
    if (context != nullptr)  // GCOV_EXCL_BR_LINE
        poptSetOtherOptionHelp(context, arguments);
    leave_popt();
    return context;
}

static int next_option(poptContext context) {
    enter_popt();
    const int code = poptGetNextOpt(context);
    leave_popt();
    return code;
}

// Takes all options from popt. False if any of them is wrong, with every message printed.
static bool take_options(poptContext context, bool (*handle)(int code)) {
    bool good = true;
    int code;
    while ((code = next_option(context)) >= 0)
        good = handle(code) && good;
    if (code == -1)
        return good;
    complain("%s: %s (%d)\n", poptBadOption(context, POPT_BADOPTION_NOALIAS), poptStrerror(code),
             code);
    return false;
}

// The next argument that is no option, as a copy that outlives the context; null if there is none.
static char* take_argument(poptContext context) {
    const char* argument = poptGetArg(context);
    if (argument == nullptr)
        return nullptr;
    const std::size_t size = std::strlen(argument) + 1;
    return static_cast<char*>(std::memcpy(resized<char>(nullptr, size), argument, size));
}

// Null after a message if there is none.
static char** take_input_names(poptContext context, int room) {
    char** names = resized<char*>(nullptr, static_cast<std::size_t>(room));
    int count = 0;
    while ((names[count] = take_argument(context)) != nullptr)
        count++;
    if (count > 0)
        return names;
    complain("No input file defined.\n");
    std::free(names);
    return nullptr;
}

char** parse_options(int argc, char** argv, const poptOption* table, const char* arguments,
                     bool (*handle)(int code)) {
    std::atexit(end_in_popt);
    poptContext context = new_context(argc, argv, table, arguments);
    if (argc < 2) {
        enter_popt();
        poptPrintUsage(context, stdout, 0);
        poptFreeContext(context);
        std::exit(EXIT_SUCCESS);  // unless memory was missing
    }
    char** names = take_options(context, handle) ? take_input_names(context, argc) : nullptr;
    poptFreeContext(context);
    if (names == nullptr)
        std::exit(EXIT_FAILURE);
    return names;
}

const char* parse_command_line(int argc, char** argv) {
    return *parse_options(argc, argv, optionsTable, "[options...] inputfile", handle_option);
}
