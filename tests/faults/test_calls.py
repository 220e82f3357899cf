# SPDX-License-Identifier: MIT
"""Lets every system call of a run fail, with each error that it may meet, once and from then on.

strace writes down the calls of an undisturbed run, then it makes them fail one by one. It follows
the program only, not what that starts, and nothing counts before the program looks for closed
streams: that is the work of the dynamic linker.
"""

import collections
import re
import sys

import harness
import running

# The errors that a call may meet. What is not here cannot fail as it is called.
ERRORS = {
    "openat": ("EACCES", "EMFILE", "EINTR"), "read": ("EIO", "EINTR"), "lseek": ("EINVAL",),
    "write": ("EIO", "ENOSPC", "EPIPE", "EINTR"), "close": ("EIO", "EINTR"),
    "fcntl": ("EMFILE",), "dup2": ("EBUSY", "EINTR"), "dup3": ("EBUSY", "EINTR"),
    "newfstatat": ("EIO",), "fstat": ("EIO",), "pipe2": ("EMFILE",), "mmap": ("ENOMEM",),
    "clone3": ("EAGAIN",), "clone": ("EAGAIN",), "vfork": ("EAGAIN",),
    "wait4": ("ECHILD", "EINTR"),
}
# Errors that do not last.
PASSING = (("EINTR", "+"), ("EBUSY", "+"))
# Name: arguments and environment. gnuplot has something to say, so that its words can get lost.
SAYS = {"STANDIN_SAY": "gnuplot speaks\n"}
RUNS = {
    "window": ("--data sms,tsms --curves 1-1,2-1 two.out", SAYS),
    "image": ("--data sms,tsms --curves 1-1,2-1 --png a.png one.out", SAYS),
    "panels": ("--dread sms,tsms two.out", SAYS),
    "images": ("--data sms --no-multiplot --svg a.svg two.out", dict(SAYS, GNUTERM="")),
    "long": ("--data sms long.out", {}),
    "bad row": ("bad.out", {}),
    "bad style": ("--data sms --curves 1-1,2-1 --style_sms 9 one.out", {}),
    "no input": ("none.out", {}),
    "help": ("--help", {}),
}
FILES = {"one.out": harness.layout_1(), "two.out": harness.layout_2(),
         "bad.out": harness.layout_2().replace("0.0", "x"), "long.out": harness.layout_1(1200)}
OUTPUT_LOST = b"Cannot write to standard output: "
# What must have been said in one run or another.
MESSAGES = (b"Cannot open file 'one.out'\n", b"Cannot read file 'long.out': Input/output error\n",
            b"Cannot read the messages of gnuplot: Input/output error\n",
            b"Cannot read the messages of gnuplot: Invalid argument\n",
            b"Cannot connect to gnuplot pipe: Too many open files\n",
            OUTPUT_LOST + b"Input/output error\n", OUTPUT_LOST + b"No space left on device\n",
            harness.LOST)


def traced(name, *strace, **more):
    arguments, env = RUNS[name]
    return running.run(["strace", "-qq", "-o", "{folder}/trace", *strace, running.PROGRAM,
                        *arguments.split()], FILES, env=env, **more)


def descriptor(line):
    match = re.match(r"\w+\((\d+)", line)
    return int(match.group(1)) if match else None


def can_fail(name, call, line):
    if call not in ERRORS or "F_GETFD" in line:
        return False
    if call == "mmap":
        return "MAP_STACK" in line  # the stack of a new process; the others are for malloc
    # A pipe that has failed once goes on to fail, which one call at a time cannot show.
    return not (name == "long" and call == "write" and descriptor(line) > 2)


def calls_of(name):
    """The calls of an undisturbed run: name, how many-th of that name, line of the trace."""
    text = []
    right = traced(name, afterwards=lambda folder: text.append(
        (folder / "trace").read_text(errors="replace")))
    counts = collections.Counter()
    calls = []
    begun = False
    for line in text[0].splitlines():
        call = line.partition("(")[0]
        counts[call] += 1
        begun = begun or line.startswith("fcntl(2, F_GETFD")
        if begun and can_fail(name, call, line):
            calls.append((call, counts[call], line))
    return right, calls


def faults_of(call, error, when, line, result, right):
    """What is wrong, where there is more to say than harness.faults_of does."""
    number = descriptor(line)
    if call == "write" and when:  # nothing at all can be said any more
        good = harness.begins_like(result.streams, right.streams)
        return [] if good and not result.left and result.status in (0, 1) else ["ended badly"]
    if call == "dup2" and result != right:
        return ["standard error is not what it was"]
    if call == "read" and error == "EINTR" and "KOVA" in line:
        return [] if result == right else ["an interrupted read is noticed"]
    if call == "write" and number == 1:
        if result.left or result.streams != right.streams:
            return ["the plot is lost with the output"]
        told = OUTPUT_LOST in result.stderr
        if error == "EPIPE":
            return ["a closed pipe is told"] if told or result.status != right.status else []
        return [] if told and result.status == 1 else ["a lost output is not told"]
    if call == "write" and number == 2:
        return [] if result.status == right.status else ["the status is that of the messages"]
    if call == "write" and result.status == 0 and harness.LOST not in result.stderr:
        return ["a lost plot is not told"]
    return harness.faults_of(result, right)


def check(name, item):
    (call, number, line), error, when, right = item
    result = traced(name, "-e", f"inject={call}:error={error}:when={number}{when}")
    wrong = faults_of(call, error, when, line, result, right)
    if wrong:
        print(f"{name}, {line.partition(' = ')[0]}: {error}{' from then on' if when else ''}: "
              f"{'; '.join(wrong)}\n{harness.describe(result)}")
    return not wrong, result.status, result.stdout + result.stderr


def check_run(name):
    right, calls = calls_of(name)
    items = [(call, error, when, right) for call in calls for error in ERRORS[call[0]]
             for when in ("", "+") if (error, when) not in PASSING]
    if len(calls) < 4:
        sys.exit(f"{name}: only {len(calls)} calls were seen: nothing was tested")
    results = list(running.side_by_side(lambda item: check(name, item), items))
    ends = collections.Counter(status for _, status, _ in results)
    failed = sum(not good for good, _, _ in results)
    print(f"{name}: {len(calls)} calls, {len(items)} runs: status 0 {ends[0]}, 1 {ends[1]}; "
          f"{failed} failed")
    return len(items), failed, b"".join(said for _, _, said in results)


def main():
    running.skip_unless_it_runs("strace", "-o", "/dev/null", "true")
    runs = failed = 0
    all_said = b""
    for name in RUNS:
        count, bad, said = check_run(name)
        runs, failed, all_said = runs + count, failed + bad, all_said + said
    missing = [message for message in MESSAGES if message not in all_said]
    print(f"{runs} runs, {failed} failed", *(f"never said: {text}" for text in missing), sep="\n")
    sys.exit(failed > 0 or bool(missing))


if __name__ == "__main__":
    main()
