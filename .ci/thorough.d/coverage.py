"""coverage.py COVERAGE.json EXPLAINED.txt: the branches of src/ that tests take, per file and in total.

COVERAGE.json is from llvm-cov export. A branch is one side of one condition; it counts as taken when any instance of a
template takes it. EXPLAINED.txt names branches that no test can take, each with a reason below it:

    src/folder/file.cpp: function: condition: never true
        reason

Functions for instruction sets that this processor lacks are left out, and their branches counted. Exits with 1 when a
branch is neither taken nor explained.
"""

import collections
import json
import os
import re
import subprocess
import sys

from explanations import read_explained
from processor import foreign_functions, missing_targets

ROOT = os.getcwd() + "/"


def plain_names(mangled):
    """Mangled name -> the innermost named function, without its namespaces, parameters and template arguments."""
    # A function of one file alone carries the file's name before its own.
    stripped = [name.rsplit(":", 1)[-1] for name in mangled]
    output = subprocess.run(["c++filt"], input="\n".join(stripped), capture_output=True, text=True, check=True).stdout
    return dict(zip(mangled, map(plain_name, output.splitlines())))


def plain_name(name):
    name = re.sub(r"\[abi:\w+\]|\(anonymous namespace\)::", "", name)
    name = re.sub(r"operator\(\)", "lambda", name)
    kept, depth = "", 0
    for character in name:
        if character in "<([{":
            depth += 1
        elif character in ">)]}":
            depth -= 1
        elif depth == 0:
            kept += character
    parts = [part for part in kept.replace(" const", "").split("::") if part]
    parts = [part for part in parts if not re.search(r"'lambda|\$_|lambda$", part)]
    return parts[-1].split(" ")[-1] if parts else name


class Sources:
    def __init__(self):
        self.lines = {}
        self.foreign = {}
        self.missing = missing_targets()

    def read(self, file):
        if file in self.lines:
            return
        with open(ROOT + file, encoding="utf-8") as source:
            text = source.read()
        self.lines[file] = text.splitlines()
        self.foreign[file] = [
            range(text.count("\n", 0, start) + 1, text.count("\n", 0, end) + 2)
            for start, end in foreign_functions(text, self.missing)
        ]

    def cannot_run(self, file, line):
        self.read(file)
        return any(line in lines for lines in self.foreign[file])

    def text(self, file, region):
        """The source between two places, on one line; None where the condition is no run-time one."""
        self.read(file)
        start_line, start, end_line, end = region
        lines = self.lines[file][start_line - 1 : end_line]
        if re.search(r"\bif constexpr \($", lines[0][: start - 1]):
            return None
        lines[-1] = lines[-1][: end - 1]
        lines[0] = lines[0][start - 1 :]
        return " ".join(" ".join(lines).split())


def read_branches(path):
    """(file, function, line, column, condition, side) -> how often it was taken; and how many cannot be taken here."""
    with open(path, encoding="utf-8") as exported:
        functions = json.load(exported)["data"][0]["functions"]
    names = plain_names(sorted({function["name"] for function in functions}))
    sources = Sources()
    branches = collections.Counter()
    foreign = set()
    for function in functions:
        for *region, taken, not_taken, file_index, _, _ in function["branches"]:
            file = os.path.relpath(function["filenames"][file_index], ROOT)
            if not file.startswith("src/"):
                continue
            if sources.cannot_run(file, region[0]):
                foreign |= {(file, region[0], region[1], side) for side in ("true", "false")}
                continue
            condition = sources.text(file, region)
            if condition is None:
                continue
            place = (file, names[function["name"]], region[0], region[1], condition)
            branches[place + ("true",)] += taken
            branches[place + ("false",)] += not_taken
    return branches, len(foreign)


def main():
    branches, foreign = read_branches(sys.argv[1])
    explained = read_explained(sys.argv[2])
    unused = set(explained)
    open_branches = []
    total, taken, excused = collections.Counter(), collections.Counter(), collections.Counter()
    for (file, function, line, _, condition, side), count in sorted(branches.items()):
        total[file] += 1
        key = f"{file}: {function}: {condition}: never {side}"
        if count:
            taken[file] += 1
        elif explained.get(key):
            excused[file] += 1
            unused.discard(key)
        else:
            open_branches.append((line, key))

    for file in sorted(total):
        print(f"{100 * taken[file] / total[file]:6.1f} %  {taken[file]:4} of {total[file]:4}  {file}")
    for key in sorted(unused):
        print(f"explained, but taken or gone: {key}")
    for line, key in open_branches:
        print(f"not taken (line {line}):\n{key}")
    share = 100 * sum(taken.values()) / sum(total.values())
    print(
        f"{sum(taken.values())} of {sum(total.values())} branches taken ({share:.1f} %), "
        f"{sum(excused.values())} explained, {len(open_branches)} open"
        + (f"; {foreign} more are for other processors" if foreign else "")
    )
    return 1 if open_branches else 0


sys.exit(main())
