#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""hardening.py PROGRAM BUILD-FOLDER: what the release flags must have done to the program.

Flags that the compiler does not know are not asked for.
"""

import json
import os
import re
import subprocess
import sys
from pathlib import Path

PROGRAM, BUILD = sys.argv[1], Path(sys.argv[2])
FAILURES = []


def check(holds, what):
    print("ok  " if holds else "FAIL", what)
    if not holds:
        FAILURES.append(what)


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"}).stdout


def known(flag):
    """Asks the compiler, not the build files: these may have lost a flag."""
    cache = (BUILD / "CMakeCache.txt").read_text()
    compiler = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.M).group(1)
    command = [compiler, "-Werror", "-O2", "-U_FORTIFY_SOURCE", "-include", "cstdlib", flag]
    command += ["-xc++", "-c", "-o", os.devnull, os.devnull]
    return subprocess.run(command, capture_output=True).returncode == 0


def check_compilation():
    """Every source of the program is compiled with every flag that the compiler knows."""
    level = 3 if known("-D_FORTIFY_SOURCE=3") else 2
    flags = [f"-D_FORTIFY_SOURCE={level}", "-D_GLIBCXX_ASSERTIONS", "-ffp-contract=off"]
    flags += [flag for flag in ("-fstack-protector-strong", "-fstack-clash-protection",
                                "-fcf-protection=full", "-ftrivial-auto-var-init=zero")
              if known(flag)]
    commands = {Path(entry["file"]).name: entry["command"].split()
                for entry in json.loads((BUILD / "compile_commands.json").read_text())
                if "/src/kova/" in entry["file"]}
    check("main.cpp" in commands and len(commands) > 10, f"{len(commands)} sources compiled")
    for name, command in commands.items():
        for flag in flags:
            check(flag in command, f"{name}: {flag}")


def check_program():
    header, segments = output("readelf", "-hW", PROGRAM), output("readelf", "-lW", PROGRAM)
    dynamic, symbols = output("readelf", "-dW", PROGRAM), output("readelf", "-sW", PROGRAM)
    check(re.search(r"Type:\s+DYN", header), "position-independent program")
    check("GNU_RELRO" in segments, "relocations read-only")
    check(re.search(r"FLAGS_1.*NOW", dynamic), "all symbols bound at the start")
    check(re.search(r"GNU_STACK.* RW ", segments), "stack not executable")
    check(re.search(r"__\w+_chk", symbols), "fortified calls of the C library")
    check("__stack_chk_fail" in symbols, "stack protector")
    check(not re.search(r"R(UN)?PATH", dynamic), "no search path of its own for libraries")
    needed = set(re.findall(r"\[(lib\w+)", dynamic))
    check(needed <= {"libpopt", "libstdc", "libc", "libm", "libgcc_s"},
          f"no library that is not used: {' '.join(sorted(needed))}")
    if known("-fcf-protection=full"):
        code = output("objdump", "-d", "--no-show-raw-insn", PROGRAM)
        check(code.count("endbr64") > 50, "indirect branches have marked targets")


check_compilation()
check_program()
sys.exit(bool(FAILURES))
