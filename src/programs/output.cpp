// SPDX-License-Identifier: MIT
//
// The files that a program writes, and the gnuplot that draws them. Each file grows under another
// name beside its own, so that what is there is the old one or the whole new one at every moment.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "program.h"

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
static volatile pid_t Gnuplot = 0;  // the one that is running

// ---- On the way out ----------------------------------------------------------------------------

static void remove_temporaries() {
    for (int i = 0; i < Nfiles; i++) {
        if (Files[i].temporary != nullptr)
            unlink(Files[i].temporary);
    }
}

// Only what may be called in the middle of anything else.
static void end_by_signal(int signal) {
    if (Gnuplot > 0)
        kill(Gnuplot, SIGTERM);
    remove_temporaries();
    std::signal(signal, SIG_DFL);
    raise(signal);
}

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
    char* copy = strdup(text);
    if (copy == nullptr)
        fail(stderr, "Cannot allocate memory\n");
    return copy;
}

// The name without the links that lead to it: they stay when the file is replaced.
static char* final_name(const char* name, bool overwrite) {
    struct stat status;
    if (lstat(name, &status) != 0)
        return copy_of(name);
    char* resolved = realpath(name, nullptr);
    if (resolved == nullptr || stat(resolved, &status) != 0)
        fail_to_write(name, errno);
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
    if (descriptor == -1) {
        const int error = errno;
        std::free(*temporary);
        *temporary = nullptr;
        fail_to_write(name, error);
    }
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    return fdopen(descriptor, "w+");
}

FILE* new_file(const char* name, bool overwrite) {
    if (Nfiles == 0)
        prepare_end();
    new_file_t added = {stdout, nullptr, nullptr, overwrite};
    block_signals(SIG_BLOCK);
    if (std::strcmp(name, "-") != 0) {
        added.name = final_name(name, overwrite);
        added.file = open_beside(added.name, &added.temporary);
        if (added.file == nullptr) {
            unlink(added.temporary);
            fail_to_write(name, ENOMEM);
        }
    }
    Files = resized(Files, static_cast<std::size_t>(Nfiles) + 1);
    Files[Nfiles] = added;
    Nfiles = Nfiles + 1;
    block_signals(SIG_UNBLOCK);
    return added.file;
}

// Standard output is looked at when the run ends.
static void close_file(new_file_t* file) {
    const bool own = file->name != nullptr;
    if (own && (std::ferror(file->file) || std::fclose(file->file) != 0))
        fail_to_write(file->name, errno);
}

// Gives the file its name, unless somebody else has taken it meanwhile.
static void name_file(new_file_t* file) {
    if (file->name == nullptr)
        return;
    const unsigned flags = file->replaces ? 0 : RENAME_NOREPLACE;
    if (renameat2(AT_FDCWD, file->temporary, AT_FDCWD, file->name, flags) != 0) {
        // Not every file system can look and rename in one step.
        const bool can_both = errno != EINVAL && errno != ENOSYS;
        if (can_both || rename(file->temporary, file->name) != 0)
            fail_to_write(file->name, errno);
    }
    file->temporary = nullptr;
}

void keep_files() {
    for (int i = 0; i < Nfiles; i++)
        close_file(&Files[i]);
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

char* numbered_name(const char* name, int number) {
    const char* base = base_name(name);
    const char* ending = std::strrchr(base, '.');
    if (ending == nullptr || ending == base)
        ending = name + std::strlen(name);
    const std::size_t room = std::strlen(name) + 16;
    char* numbered = resized<char>(nullptr, room);
    std::snprintf(numbered, room, "%.*s-%d%s", static_cast<int>(ending - name), name, number,
                  ending);
    return numbered;
}

// ---- gnuplot -----------------------------------------------------------------------------------

// In the child: gnuplot reads the commands as a file, which it does in blocks, and no settings of
// the user's; without a UTF-8 locale it complains about the encoding.
[[noreturn]] static void become_gnuplot(int commands, int picture, int messages) {
    char name[32];
    std::snprintf(name, sizeof name, "/dev/fd/%d", commands);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("GNUTERM", "unknown", 1);  // every picture has a terminal of its own
    if (dup2(picture, STDOUT_FILENO) != -1 && dup2(messages, STDERR_FILENO) != -1 &&
        fcntl(commands, F_SETFD, 0) != -1)
        execlp("gnuplot", "gnuplot", "-d", name, static_cast<char*>(nullptr));
    _exit(errno == ENOENT ? 127 : 126);
}

static int run_gnuplot(FILE* commands, FILE* picture, FILE* messages) {
    block_signals(SIG_BLOCK);
    Gnuplot = fork();
    if (Gnuplot == 0) {
        block_signals(SIG_UNBLOCK);
        become_gnuplot(fileno(commands), fileno(picture), fileno(messages));
    }
    block_signals(SIG_UNBLOCK);
    if (Gnuplot == -1)
        fail(stderr, "cannot start gnuplot: %s\n", std::strerror(errno));
    int status = 0;
    while (waitpid(Gnuplot, &status, 0) == -1 && errno == EINTR)
        continue;
    Gnuplot = 0;
    return status;
}

// The first line of gnuplot's that is no picture of the command it is about.
static void read_complaint(FILE* messages, char* line, int room) {
    rewind(messages);
    *line = '\0';
    while (std::fgets(line, room, messages) != nullptr) {
        line[std::strcspn(line, "\n")] = '\0';
        if (line[std::strspn(line, " ^\t")] != '\0' && std::strncmp(line, "gnuplot>", 8) != 0)
            return;
    }
    *line = '\0';
}

static void refuse_status(int status, FILE* messages) {
    char line[1000];
    read_complaint(messages, line, sizeof line);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127 && *line == '\0')
        fail(stderr, "gnuplot not found: install it, or put it on the search path\n");
    if (*line != '\0')
        fail(stderr, "gnuplot says: %s\n", line);
    fail(stderr, "gnuplot ended without a picture\n");
}

void draw(FILE* commands, FILE* picture) {
    if (std::fflush(commands) != 0 || std::ferror(commands))
        fail(stderr, "cannot write a temporary file: %s\n", std::strerror(errno));
    lseek(fileno(commands), 0, SEEK_SET);
    FILE* messages = scratch_file();
    const int status = run_gnuplot(commands, picture, messages);
    struct stat drawn = {};
    fstat(fileno(picture), &drawn);
    if (status != 0 || (S_ISREG(drawn.st_mode) && drawn.st_size == 0))
        refuse_status(status, messages);
    std::fclose(messages);
}

// Octal digits stand for whatever could mean something to gnuplot; "./" keeps a pipe "|cmd" and an
// option from being one.
void write_name(FILE* commands, const char* name) {
    const bool plain_start = std::strchr("_./", *name) != nullptr || std::isalnum(*name & 0xff);
    std::fprintf(commands, "\"%s", plain_start ? "" : "./");
    for (const char* c = name; *c != '\0'; c++) {
        const bool plain = std::strchr(" _./,=+-", *c) != nullptr || std::isalnum(*c & 0xff);
        std::fprintf(commands, plain ? "%c" : "\\%03o", static_cast<unsigned char>(*c));
    }
    std::fprintf(commands, "\"");
}
