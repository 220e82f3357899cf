// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "input/input.h"

// How much is asked for at a time.
static constexpr std::size_t CHUNK_SIZE = 1 << 16;

static const char* Name = nullptr;          // of the open file, for messages
static int Descriptor = -1;                 // of the open file, -1 for none
static bool AtFirstLine;                    // nothing after it has been read yet
static char Block[LINE_SIZE + CHUNK_SIZE];  // what was read last ...
static std::size_t BlockSize;               // ... how much that is ...
static std::size_t BlockPos;                // ... and where the next line begins in it

// Reads the next block: how much it is, 0 at the end of the file, -1 after an error. The pieces of
// the first line stay in front of it, so that the line can be read once more.
static ssize_t read_block() {
    const std::size_t kept = AtFirstLine ? BlockSize : 0;
    ssize_t size;
    do {
        size = read(Descriptor, Block + kept, CHUNK_SIZE);
    } while (size == -1 && errno == EINTR);  // GCOV_EXCL_BR_LINE an interruption: faults/calls
    BlockPos = kept;
    BlockSize = kept + (size > 0 ? static_cast<std::size_t>(size) : 0);
    return size;
}

void open_input(const char* inpFname) {
    if (Descriptor != -1 && std::strcmp(inpFname, Name) == 0)
        return;  // left open at its first line
    close_input();
    Name = inpFname;
    Descriptor = open(inpFname, O_RDONLY | O_CLOEXEC);
    AtFirstLine = true;
    BlockSize = 0;
    // A directory can be opened, but not read: its first block tells.
    if (Descriptor == -1 || read_block() == -1)
        fail(stderr, "Cannot open file '%s'\n", inpFname);
}

void leave_first_line() {
    BlockPos = 0;
}

// True if there is something in the block to take.
static bool has_more() {
    if (BlockPos < BlockSize)
        return true;
    const ssize_t size = read_block();
    // GCOV_EXCL_START an error in the middle: faults/calls
    if (size == -1)
        fail(stderr, "Cannot read file '%s': %s\n", Name, std::strerror(errno));
    // GCOV_EXCL_STOP
    return size > 0;
}

bool read_line(char (&line)[LINE_SIZE]) {
    std::size_t length = 0;
    bool at_end = false;
    for (bool complete = false; !complete && length < LINE_SIZE - 1;) {
        at_end = !has_more();
        if (at_end)
            break;
        const char* start = Block + BlockPos;
        std::size_t size = std::min(LINE_SIZE - 1 - length, BlockSize - BlockPos);
        const void* newline = std::memchr(start, '\n', size);
        complete = newline != nullptr;
        if (complete)
            size = static_cast<std::size_t>(static_cast<const char*>(newline) - start) + 1;
        std::memcpy(line + length, start, size);
        length += size;
        BlockPos += size;
    }
    line[length] = '\0';
    AtFirstLine = false;
    return at_end;
}

void close_input() {
    if (Descriptor != -1)
        close(Descriptor);
    Descriptor = -1;
}
