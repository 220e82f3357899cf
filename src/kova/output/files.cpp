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
#include <vector>

#include "output/output.h"
#include "run/run.h"

namespace {

struct new_file_t {
    FILE* file;
    std::string name;       // that it will have; none for standard output
    std::string temporary;  // what is removed if the run fails: the name that it has until then
    mode_t rights;          // that it will have
    bool replaces;          // may replace what has that name
};

}  // namespace

// Null before the first. Never destroyed: a signal may come at the very end.
static std::vector<new_file_t>* Files = nullptr;

// ---- On the way out ----------------------------------------------------------------------------

static void remove_temporaries() {
    for (const new_file_t& file : *Files)
        unlink(file.temporary.c_str());
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
    Files = new std::vector<new_file_t>;
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

[[noreturn]] static void fail_to_write(const std::string& name, int error) {
    fail(stderr, "cannot write %s: %s\n", name.c_str(), std::strerror(error));
}

// The part behind the folder.
static const char* base_name(const char* name) {
    const char* slash = std::strrchr(name, '/');
    const char* base = slash == nullptr ? name : slash + 1;
    if (*base == '\0')
        fail(stderr, "'%s' is no name of a file\n", name);
    return base;
}

// Finds what will be its name, and its rights. A file that is replaced leaves it both; links that
// lead to it stay.
static void find_name(const char* name, new_file_t* file) {
    struct stat status;
    file->name = name;
    if (lstat(name, &status) != 0) {
        if (errno != ENOENT)
            fail_to_write(name, errno);
        const mode_t mask = umask(0);
        umask(mask);
        file->rights = 0666 & ~mask;
        return;
    }
    char* resolved = realpath(name, nullptr);
    if (resolved == nullptr)
        fail_to_write(name, errno);
    file->name = resolved;
    std::free(resolved);
    lstat(file->name.c_str(), &status);
    if (!S_ISREG(status.st_mode))
        fail(stderr, "%s is no file that can be replaced\n", name);
    if (!file->replaces)
        fail(stderr, "%s exists already: -f replaces it\n", name);
    file->rights = status.st_mode & 0777;
}

static void open_beside(new_file_t* file) {
    const char* name = file->name.c_str();
    file->temporary = std::string(name, base_name(name)) + ".gravlex-XXXXXX";
    const int descriptor = mkostemp(file->temporary.data(), O_CLOEXEC);
    if (descriptor == -1)
        fail_to_write(file->name, errno);
    fchmod(descriptor, file->rights);
    file->file = fdopen(descriptor, "w");
    if (file->file == nullptr)              // GCOV_EXCL_BR_LINE no memory: faults/memory
        fail_to_write(file->name, ENOMEM);  // GCOV_EXCL_LINE
}

// Standard output is looked at when the run ends.
static void close_file(new_file_t* file) {
    if (!file->name.empty() && (std::ferror(file->file) || std::fclose(file->file) != 0))
        fail_to_write(file->name, errno);
}

FILE* new_file(const char* name, bool overwrite) {
    if (Files == nullptr)
        prepare_end();
    else
        close_file(&Files->back());
    block_signals(SIG_BLOCK);
    new_file_t& added = Files->emplace_back();
    added.file = stdout;
    added.replaces = overwrite;
    if (std::strcmp(name, "-") != 0) {
        find_name(name, &added);
        open_beside(&added);
    }
    block_signals(SIG_UNBLOCK);
    return added.file;
}

// Gives the file its name, unless somebody else has taken it meanwhile.
static void name_file(new_file_t* file) {
    if (file->name.empty())
        return;
    const unsigned flags = file->replaces ? 0 : RENAME_NOREPLACE;
    const char* temporary = file->temporary.c_str();
    const char* name = file->name.c_str();
    // Not every file system can look and rename in one step.
    if (renameat2(AT_FDCWD, temporary, AT_FDCWD, name, flags) != 0 &&
        (errno == EEXIST || rename(temporary, name) != 0))
        fail_to_write(file->name, errno);
    file->temporary.clear();
    if (!file->replaces)
        file->temporary = file->name;
}

void keep_files() {
    close_file(&Files->back());
    block_signals(SIG_BLOCK);
    for (new_file_t& file : *Files)
        name_file(&file);
    Files->clear();
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
