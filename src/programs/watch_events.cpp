// SPDX-License-Identifier: MIT
//
// When to read the file. The system tells of changes in its folder, which goes on when the file is
// replaced or away for a while; a look from time to time sees what the system cannot tell: changes
// made by another computer, behind a link, or in a folder that was made anew.
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <tuple>

#include "watch.h"

// Milliseconds.
static constexpr std::int64_t REST = 150;   // without a change: whoever writes has finished
static constexpr std::int64_t LOOK = 2000;  // between looks; nor must a busy writer last longer

static constexpr std::uint32_t CHANGES =
    IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;

static const char* Name;
static const char* Base;  // the name in its folder
static std::string Folder;
static int Events;
static struct stat Taken = {};  // the file as it was taken last; all 0 if it was not there
static bool Changed = true;     // since it was taken
static std::int64_t FirstChange, LastChange, NextLook;

static std::int64_t now() {
    struct timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::int64_t>(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

static void note_change() {
    LastChange = now();
    if (!Changed)
        FirstChange = LastChange;
    Changed = true;
}

static struct stat file_status() {
    struct stat status = {};
    if (stat(Name, &status) != 0)
        status = {};
    return status;
}

static bool differs_from_taken() {
    const auto traits = [](const struct stat& status) {
        return std::make_tuple(status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
                               status.st_mtim.tv_nsec);
    };
    return traits(file_status()) != traits(Taken);
}

// The folder's watch is set every time: it is lost when the folder is.
static void look() {
    inotify_add_watch(Events, Folder.c_str(), CHANGES);
    if (differs_from_taken())
        note_change();
    NextLook = now() + LOOK;
}

void require_rereadable(const char* name) {
    const struct stat file = file_status();
    if (file.st_mode != 0 && !S_ISREG(file.st_mode))
        fail(stderr, "%s is no file that can be read again and again\n", name);
}

int watch_file(const char* name) {
    Name = name;
    const char* slash = std::strrchr(name, '/');
    Base = slash == nullptr ? name : slash + 1;
    Folder.assign(name, Base);
    if (Folder.empty())
        Folder = "./";
    struct stat folder = {};
    if (stat(Folder.c_str(), &folder) != 0)
        fail(stderr, "Cannot open file '%s'\n", name);
    require_rereadable(name);
    Events = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    return Events;
}

// Without a name it is about the folder, or tells that others are lost.
static void take_event(const struct inotify_event& event) {
    if (event.len == 0 || std::strcmp(event.name, Base) == 0)
        note_change();
}

void take_events() {
    alignas(struct inotify_event) char events[4096];
    ssize_t size;
    while ((size = read(Events, events, sizeof events)) > 0) {
        for (const char* next = events; next < events + size;) {
            const auto* event = reinterpret_cast<const struct inotify_event*>(next);
            take_event(*event);
            next += sizeof *event + event->len;
        }
    }
}

static std::int64_t due_time() {
    return std::min(LastChange + REST, FirstChange + LOOK);
}

bool file_is_due() {
    if (now() >= NextLook)
        look();
    return Changed && now() >= due_time();
}

void file_is_taken() {
    Changed = false;
    Taken = file_status();
}

int time_to_next_look() {
    const std::int64_t next = Changed ? std::min(NextLook, due_time()) : NextLook;
    return static_cast<int>(std::max<std::int64_t>(next - now(), 0));
}
