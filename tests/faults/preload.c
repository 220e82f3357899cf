// SPDX-License-Identifier: MIT
//
// Preloaded into the program, and into nothing that it starts, to make what it asks for fail:
//
//     FAULTS_MEMORY=N     the N-th allocation fails; N+ and all after it
//     FAULTS_SPACE=SIZE   so many KiB of memory are left, for real
//     FAULTS_READ=SIZE    a read gives at most so many bytes; -SIZE one byte more each time
//     FAULTS_FILES=LIMIT  so many descriptors are allowed (the dynamic linker needs more)
//     FAULTS_GROW=FILE    a piece of FILE is appended to what is read, before each read
//     FAULTS_RENAME=1     no file can be renamed on condition that its new name is free
//     FAULTS_OPTION=CODE  popt comes with this code first
//     FAULTS_NOTE=FILE    is told the library that asked for each allocation that failed
//
// Allocations count from the start of the process until it exits; what comes then belongs to tools
// that watch the program.
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <popt.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <unistd.h>

static long Memory = 0;       // the allocation to fail, 0 for none
static int AllAfter = 0;      // and all after it
static long Allocations = 0;  // so far
static int Over = 0;          // the program has ended
static long ReadSize = 0;
static int Growing = 0;            // ReadSize
static const char* Source = NULL;  // FAULTS_GROW
static const char* Note = NULL;

static void stop_counting(void) {
    Over = 1;
}

// Sets the limit to what the variable says above what is used already, if it says something.
static void limit(__rlimit_resource_t resource, const char* variable, rlim_t used, rlim_t unit) {
    const char* text = getenv(variable);
    if (text == NULL)
        return;
    const rlim_t value = used + unit * (rlim_t)strtoul(text, NULL, 10);
    if (setrlimit(resource, &(struct rlimit){value, value}) != 0)
        _exit(99);
}

static rlim_t used_space(void) {
    char text[100] = "";
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    if (read(file, text, sizeof text - 1) == -1)
        return 0;
    close(file);
    return (rlim_t)strtoul(text, NULL, 10) * (rlim_t)sysconf(_SC_PAGESIZE);
}

__attribute__((constructor)) static void prepare(void) {
    const char* text = getenv("FAULTS_MEMORY");
    char* end;
    if (text != NULL) {
        Memory = strtol(text, &end, 10);
        AllAfter = *end == '+';
    }
    text = getenv("FAULTS_READ");
    if (text != NULL) {
        Growing = *text == '-';
        ReadSize = strtol(text + Growing, NULL, 10);
    }
    limit(RLIMIT_NOFILE, "FAULTS_FILES", 0, 1);
    limit(RLIMIT_AS, "FAULTS_SPACE", used_space(), 1024);
    Source = getenv("FAULTS_GROW");
    Note = getenv("FAULTS_NOTE");
    unsetenv("LD_PRELOAD");
}

// ---- Memory ------------------------------------------------------------------------------------

static void take_note(const void* caller) {
    Dl_info info;
    const char* name = dladdr(caller, &info) != 0 ? info.dli_fname : "nobody";
    const int file = open(Note, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (write(file, name, strlen(name)) == -1 || write(file, "\n", 1) == -1)
        _exit(99);
    close(file);
}

static int is_refused(const void* caller) {
    if (Over || Memory == 0)
        return 0;
    Allocations++;
    if (AllAfter ? Allocations < Memory : Allocations != Memory)
        return 0;
    if (Note != NULL)
        take_note(caller);
    errno = ENOMEM;
    return 1;
}

#define CALLER __builtin_return_address(0)
// The function that would have been called without this library.
#define NEXT(name, ...) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))(__VA_ARGS__)

void* malloc(size_t size) {
    return is_refused(CALLER) ? NULL : NEXT(malloc, size);
}

void* calloc(size_t count, size_t size) {
    return is_refused(CALLER) ? NULL : NEXT(calloc, count, size);
}

void* realloc(void* block, size_t size) {
    return is_refused(CALLER) ? NULL : NEXT(realloc, block, size);
}

// On its own, since the next one would come back to realloc and count twice.
void* reallocarray(void* block, size_t count, size_t size) {
    if (is_refused(CALLER))
        return NULL;
    if (size != 0 && count > SIZE_MAX / size) {
        errno = ENOMEM;
        return NULL;
    }
    return NEXT(realloc, block, count * size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return is_refused(CALLER) ? NULL : NEXT(aligned_alloc, alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    return is_refused(CALLER) ? ENOMEM : NEXT(posix_memalign, block, alignment, size);
}

// ---- Files -------------------------------------------------------------------------------------

int renameat2(int old_folder, const char* old_name, int folder, const char* name, unsigned flags) {
    if (getenv("FAULTS_RENAME") != NULL) {
        errno = EINVAL;
        return -1;
    }
    return NEXT(renameat2, old_folder, old_name, folder, name, flags);
}

// ---- popt --------------------------------------------------------------------------------------

poptContext poptGetContext(const char* name, int argc, const char** argv,
                           const struct poptOption* options, unsigned flags) {
    atexit(stop_counting);  // here, because in the constructor would be too early to run first
    return NEXT(poptGetContext, name, argc, argv, options, flags);
}

int poptGetNextOpt(poptContext context) {
    const char* code = getenv("FAULTS_OPTION");
    if (code == NULL)
        return NEXT(poptGetNextOpt, context);
    unsetenv("FAULTS_OPTION");
    return atoi(code);
}

// ---- Reading -----------------------------------------------------------------------------------

static size_t cut(size_t size) {
    if (ReadSize == 0 || size <= (size_t)ReadSize)
        return size;
    size = (size_t)ReadSize;
    ReadSize += Growing;
    return size;
}

// Appends the next piece of the source to the file that is open for reading.
static void grow(int file) {
    static off_t done = 0;
    char name[32], piece[100];
    const int source = open(Source, O_RDONLY | O_CLOEXEC);
    const ssize_t size = pread(source, piece, sizeof piece, done);
    snprintf(name, sizeof name, "/proc/self/fd/%d", file);
    const int target = open(name, O_WRONLY | O_APPEND | O_CLOEXEC);
    if (size == -1 || write(target, piece, (size_t)size) != size)
        _exit(99);
    done += size;
    close(source);
    close(target);
}

ssize_t read(int file, void* buffer, size_t size) {
    if (Source != NULL)
        grow(file);
    return NEXT(read, file, buffer, cut(size));
}

// What a program built with _FORTIFY_SOURCE calls.
ssize_t __read_chk(int file, void* buffer, size_t size, size_t room);
ssize_t __read_chk(int file, void* buffer, size_t size, size_t room) {
    if (Source != NULL)
        grow(file);
    return NEXT(__read_chk, file, buffer, cut(size), room);
}
