// SPDX-License-Identifier: MIT
//
// Each file grows under another name beside its own, so that what is there is the old one or the
// whole new one at every moment.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

#include "output/output.h"
#include "run/run.h"

namespace {

struct new_file_t {
    FILE* file;
    char* name;       // that it will have; null for standard output
    char* temporary;  // that it has
    bool replaces;    // may replace what has that name
};

}  // namespace

static new_file_t* Files = nullptr;
static volatile int Nfiles = 0;

// ---- On the way out ----------------------------------------------------------------------------

static void remove_temporaries() {
    for (int i = 0; i < Nfiles; i++) {
        if (Files[i].temporary != nullptr)
            unlink(Files[i].temporary);
    }
}

// Only what may be called in the middle of anything else.
// GCOV_EXCL_START the counts cannot be written there
static void end_by_signal(int signal) {
    remove_temporaries();
    std::signal(signal, SIG_DFL);
    raise(signal);
}
// GCOV_EXCL_STOP

static void prepare_end() {
    std::atexit(remove_temporaries);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;  // nohup
        action.sa_handler = end_by_signal;
        sigaction(signal, &action, nullptr);
    }
}

// Keeps the signals away while what their handler looks at changes.
static void block_signals(int how) {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM})
        sigaddset(&signals, signal);
    sigprocmask(how, &signals, nullptr);
}

// ---- Files -------------------------------------------------------------------------------------

[[noreturn]] static void fail_to_write(const char* name, int error) {
    fail(stderr, "cannot write %s: %s\n", name, std::strerror(error));
}

// The part behind the folder.
static const char* base_name(const char* name) {
    const char* slash = std::strrchr(name, '/');
    const char* base = slash == nullptr ? name : slash + 1;
    if (*base == '\0')
        fail(stderr, "'%s' is no name of a file\n", name);
    return base;
}

static char* copy_of(const char* text) {
    return std::strcpy(resized<char>(nullptr, std::strlen(text) + 1), text);
}

// The name without the links that lead to it: they stay when the file is replaced.
static char* final_name(const char* name, bool overwrite) {
    struct stat status;
    if (lstat(name, &status) != 0)
        return copy_of(name);
    char* resolved = realpath(name, nullptr);
    if (resolved == nullptr)
        fail_to_write(name, errno);
    lstat(resolved, &status);
    if (!S_ISREG(status.st_mode))
        fail(stderr, "%s is no file that can be replaced\n", name);
    if (!overwrite)
        fail(stderr, "%s exists already: -f replaces it\n", name);
    return resolved;
}

// A file beside the one of this name, with the rights that a new file has.
static FILE* open_beside(const char* name, char** temporary) {
    const int folder = static_cast<int>(base_name(name) - name);
    const std::size_t room = static_cast<std::size_t>(folder) + 32;
    *temporary = resized<char>(nullptr, room);
    std::snprintf(*temporary, room, "%.*s.gravlex-XXXXXX", folder, name);
    const int descriptor = mkostemp(*temporary, O_CLOEXEC);
    if (descriptor == -1)
        fail_to_write(name, errno);
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    return fdopen(descriptor, "w+");
}

// Standard output is looked at when the run ends.
static void close_file(new_file_t* file) {
    const bool own = file->name != nullptr;
    if (own && (std::ferror(file->file) || std::fclose(file->file) != 0))
        fail_to_write(file->name, errno);
}

FILE* new_file(const char* name, bool overwrite) {
    if (Nfiles == 0)
        prepare_end();
    else
        close_file(&Files[Nfiles - 1]);
    block_signals(SIG_BLOCK);
    Files = resized(Files, static_cast<std::size_t>(Nfiles) + 1);
    new_file_t* added = &Files[Nfiles];
    *added = {stdout, nullptr, nullptr, overwrite};
    if (std::strcmp(name, "-") != 0) {
        added->name = final_name(name, overwrite);
        added->file = open_beside(added->name, &added->temporary);
    }
    Nfiles = Nfiles + 1;
    block_signals(SIG_UNBLOCK);
    if (added->file == nullptr)       // GCOV_EXCL_BR_LINE no memory: faults/memory
        fail_to_write(name, ENOMEM);  // GCOV_EXCL_LINE
    return added->file;
}

// Gives the file its name, unless somebody else has taken it meanwhile.
static void name_file(new_file_t* file) {
    if (file->name == nullptr)
        return;
    const unsigned flags = file->replaces ? 0 : RENAME_NOREPLACE;
    // Not every file system can look and rename in one step.
    if (renameat2(AT_FDCWD, file->temporary, AT_FDCWD, file->name, flags) != 0 &&
        (errno == EEXIST || rename(file->temporary, file->name) != 0))
        fail_to_write(file->name, errno);
    file->temporary = nullptr;
}

void keep_files() {
    close_file(&Files[Nfiles - 1]);
    block_signals(SIG_BLOCK);
    for (int i = 0; i < Nfiles; i++)
        name_file(&Files[i]);
    block_signals(SIG_UNBLOCK);
}

FILE* scratch_file() {
    FILE* file = std::tmpfile();
    if (file == nullptr)
        fail(stderr, "cannot write a temporary file: %s\n", std::strerror(errno));
    return file;
}

void complete(FILE* scratch) {
    if (std::fflush(scratch) != 0 || std::ferror(scratch))
        fail(stderr, "cannot write a temporary file: %s\n", std::strerror(errno));
}

std::string numbered_name(const char* name, int number) {
    const char* base = base_name(name);
    const char* ending = std::strrchr(base, '.');
    if (ending == nullptr || ending == base)
        ending = name + std::strlen(name);
    return std::string(name, ending) + "-" + std::to_string(number) + ending;
}
