# SPDX-License-Identifier: MIT
# The part of scripts/coverage that reads what llvm-cov tells, from standard input.
# Usage: coverage.py table FOLDER   its summary: lines and branches of each module of FOLDER
#        coverage.py missed         its sources: the lines and branches that no test reached
import collections
import json
import os
import re
import sys


def table(folder):
    modules = collections.defaultdict(lambda: [0, 0, 0, 0])
    for found in json.load(sys.stdin)["data"][0]["files"]:
        name = os.path.relpath(os.path.normpath(found["filename"]), folder)
        if name.startswith(".."):
            continue
        counts = [found["summary"][what][part]
                  for what in ("lines", "branches") for part in ("covered", "count")]
        for module in (os.path.dirname(name) or ".", "all"):
            modules[module] = [a + b for a, b in zip(modules[module], counts)]
    print(f"{'module':24}{'lines':>8}{'reached':>10}{'branches':>10}{'reached':>10}")
    for module in sorted(modules, key=lambda module: (module == "all", module)):
        lines, all_lines, branches, all_branches = modules[module]
        print(f"{module:24}{all_lines:8}{share(lines, all_lines):>10}"
              f"{all_branches:10}{share(branches, all_branches):>10}")


def share(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def missed():
    file = line = text = ""
    for shown in sys.stdin:
        if source := re.match(r"(/.*):$", shown):
            file = os.path.relpath(source[1])
        elif counted := re.match(r" *(\d+)\| *([\d.]+[kMGTPE]?)?\|(.*)", shown):
            line, times, text = counted.groups()
            if times == "0":
                print(f"{file}:{line}: {text.strip()}")
        elif branch := re.search(r"Branch \(\d+:(\d+)\): \[True: (\S+), False: (\S+)\]", shown):
            column, true, false = branch.groups()
            if (true == "0") != (false == "0"):
                print(f"{file}:{line}: never {'true' if true == '0' else 'false'} from column {column}: {text.strip()}")


table(sys.argv[2]) if sys.argv[1] == "table" else missed()
