"""mutation.py [FILE...]: changes src/ in one place at a time and sees whether the tests notice.

Works on a copy of the tree in build-mutation/, so that nothing here changes. Each mutant is built and run through the
tests, those of its own family first; a test that fails, crashes or does not end catches it. What no test catches is
printed as a difference, unless mutation.txt says why it behaves as the original does. Exits with 1 when there is such a
one. Functions for instruction sets that this processor lacks are left alone.

    src/folder/file.cpp: line as it is -> line as changed
        reason
"""

import argparse
import collections
import difflib
import hashlib
import itertools
import json
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from explanations import read_explained
from processor import closing_place, foreign_functions, missing_targets

FOLDER = os.path.realpath("build-mutation")
TREE = FOLDER + "/tree"
BUILD = FOLDER + "/build"

# Tests of one of these call nothing of the others.
OPERATIONS = {"filters", "geometry", "rows", "interop"}
# Tests that run none of the module's code.
UNRELATED = re.compile(r"^(host_interface_header_.*|module_symbols|fuzz_replay_image_files)$")

SWAPS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "<<": [">>"], ">>": ["<<"],
    "&": ["|"], "|": ["&"], "^": ["&"], "&&": ["||"], "||": ["&&"], "+=": ["-="], "-=": ["+="],
}  # fmt: skip

MISSING_TARGETS = missing_targets()

Mutant = collections.namedtuple("Mutant", "file start end new kind")


def masked(text):
    """The text with comments, strings, directives, compile-time statements and what cannot run here blanked."""
    blanked = r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^#[^\n]*|static_assert\(.*?;|template <[^\n]*'
    code = re.sub(blanked, lambda found: re.sub(r"[^\n]", "~", found[0]), text, flags=re.S | re.M)
    for start, end in foreign_functions(text, MISSING_TARGETS):
        code = code[:start] + re.sub(r"[^\n]", "~", code[start:end]) + code[end:]
    return code


def mutants_of(file):
    """All places of a file, each with one or more changes to choose from."""
    with open(f"{TREE}/{file}", encoding="utf-8") as source:
        text = source.read()
    code = masked(text)
    places = []

    def add(kind, start, end, *changes):
        places.append([Mutant(file, start, end, change, kind) for change in changes])

    for found in re.finditer(r"(?<= )([-+*/%<>=!&|^]{1,2})(?= |\n)", code):
        if found[1] in SWAPS:
            add("operator", found.start(1), found.end(1), *SWAPS[found[1]])
    for found in re.finditer(r"\+\+|--", code):
        add("operator", found.start(), found.end(), "--" if found[0] == "++" else "++")
    for found in re.finditer(r"(?<=[ (])!(?=[\w(])", code):
        add("condition", found.start(), found.end(), "")
    for found in re.finditer(r"(?<![\w.])(\d+)((?:\.\d+)?(?:e-?\d+)?)\b(?!\.)", code):
        value = int(found[1])
        changes = [f"{value + 1}{found[2]}"] + ([f"{value - 1}{found[2]}"] if value else [])
        add("constant", found.start(), found.end(), *changes)
    for found in re.finditer(r"\b(true|false)\b", code):
        add("constant", found.start(), found.end(), "false" if found[0] == "true" else "true")
    for found in re.finditer(r"\b(?:if|while) \(", code):
        end = closing_place(code, found.end() - 1, "()")
        condition = text[found.end() : end]
        if ";" not in condition and not re.search(r"\w \*?\w+ = ", condition):
            add("condition", found.end(), end, f"!({condition})", "false")
    for found in re.finditer(r"(?<=\breturn )([^;{}]+)(?=;)", code):
        if found[0] not in ("nullptr", "0", "false", "true", "std::nullopt"):
            add("return", found.start(), found.end(), "{}")
    # A statement that stands on its own line, alone or after a condition: a call or an assignment.
    statement = r"(?m)(?:^ +|(?<=\) ))((?!return|const|auto|using|static)[\w.:>\-\[\]*]+(?: [-+|&^]?= [^;{}]+|\([^;{}]*\));)$"
    for found in re.finditer(statement, code):
        if not code[: found.start(1)].rstrip().endswith(","):
            add("statement", found.start(1), found.end(1), ";")
    return places


def pick(files, chance):
    """Shuffled mutants: one place in each file, then any others, the kinds of changes taking turns."""
    first, kinds = [], collections.defaultdict(list)
    for file in files:
        choices = [chance.choice(changes) for changes in mutants_of(file)]
        chance.shuffle(choices)
        first += choices[:1]
        for mutant in choices[1:]:
            kinds[mutant.kind].append(mutant)
    chance.shuffle(first)
    for mutants in kinds.values():
        chance.shuffle(mutants)
    rest = [mutant for turn in itertools.zip_longest(*kinds.values()) for mutant in turn if mutant]
    return first + rest


def changed(mutant, text):
    return text[: mutant.start] + mutant.new + text[mutant.end :]


def described(mutant):
    """`file: line as it is -> line as changed`, and the difference."""
    with open(f"{TREE}/{mutant.file}", encoding="utf-8") as source:
        old = source.read()
    new = changed(mutant, old)
    diff = list(difflib.unified_diff(old.splitlines(), new.splitlines(), mutant.file, mutant.file, n=2, lineterm=""))
    gone = " ".join(" ".join(line[1:].split()) for line in diff[2:] if line.startswith("-"))
    come = " ".join(" ".join(line[1:].split()) for line in diff[2:] if line.startswith("+"))
    return f"{mutant.file}: {gone} -> {come}", "\n".join(diff)


class Tests:
    def __init__(self, of_module, seconds):
        self.seconds = seconds
        listed = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], capture_output=True, check=True)
        families = {}
        for family in os.listdir(TREE + "/tests"):
            if os.path.isfile(f"{TREE}/tests/{family}/CMakeLists.txt"):
                with open(f"{TREE}/tests/{family}/CMakeLists.txt", encoding="utf-8") as rules:
                    families[family] = rules.read()
        self.tests = []
        for test in json.loads(listed.stdout)["tests"]:
            # The host's own tests run none of the module's code.
            if UNRELATED.match(test["name"]) or "kzb_runtime_tests" in test["command"][0]:
                continue
            properties = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
            family = [name for name, rules in families.items() if re.search(rf"\b{re.escape(test['name'])}\b", rules)]
            self.tests.append({
                "name": test["name"], "command": test["command"], "family": family[0] if family else "",
                "environment": properties.get("ENVIRONMENT", []), "folder": properties.get("WORKING_DIRECTORY", BUILD),
                "expected": properties.get("PASS_REGULAR_EXPRESSION", []),
                "needs": "PictureKZB" if f"kzb_add_test({test['name']} SOURCES" in "".join(families.values()) else "all",
            })  # fmt: skip
        if of_module:
            mirrored = set(os.listdir(TREE + "/src")) | {"faults", "digest"}
            self.tests = [test for test in self.tests if test["family"] in mirrored]

    def time_all(self, states):
        """How long each takes, and that each passes, unless that is known for what it is made from."""
        path, times = FOLDER + "/seconds.json", {}
        if os.path.exists(path):
            with open(path, encoding="utf-8") as listed:
                times = json.load(listed)
        for test in self.tests:
            used = ("src", "include", "runtime", "cli", "fuzz", "tests/fixtures", "tests/" + test["family"])
            state = "".join(states[folder] for folder in used if folder in states)
            if times.get(test["name"], {}).get("state") != state:
                started = time.monotonic()
                if not self.passes(test, 1200):
                    sys.exit(f"{test['name']} fails without any change, see {FOLDER}/output.txt")
                times[test["name"]] = {"state": state, "seconds": time.monotonic() - started}
                with open(path, "w", encoding="utf-8") as listed:
                    json.dump(times, listed)
            test["seconds"] = times[test["name"]]["seconds"]
        print(f"{len(self.tests)} tests, {sum(test['seconds'] for test in self.tests):.0f} s", flush=True)

    def passes(self, test, limit):
        """Whether it passes within `limit` seconds of the processor's time, and, however busy the machine, some more."""
        with tempfile.TemporaryDirectory(dir=FOLDER, ignore_cleanup_errors=True) as scratch:
            os.chmod(scratch, 0o755)  # some tests go on as another user
            environment = dict(os.environ, TMPDIR=scratch, GTEST_FAIL_FAST="1", GTEST_BREAK_ON_FAILURE="0")
            environment.update(entry.split("=", 1) for entry in test["environment"])
            with open(FOLDER + "/output.txt", "w+", encoding="utf-8", errors="replace") as output:
                process = subprocess.Popen(
                    test["command"], cwd=test["folder"], env=environment, stdin=subprocess.DEVNULL, stdout=output,
                    stderr=subprocess.STDOUT, start_new_session=True,
                    preexec_fn=lambda: confine(int(limit) + 1),
                )  # fmt: skip
                try:
                    status = process.wait(60 + 20 * limit)
                except subprocess.TimeoutExpired:
                    status = None
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()
                output.seek(0)
                printed = output.read()
                if test["expected"]:
                    return status is not None and any(re.search(text, printed, re.S) for text in test["expected"])
                return status == 0

    def for_file(self, file):
        family, stem = file.split("/")[1], re.sub(r"\W.*", "", os.path.basename(file))
        reachable = [
            test for test in self.tests
            if not {family, test["family"]} <= OPERATIONS or family == test["family"]
        ]  # fmt: skip

        def price(test):
            """Seconds, for tests that are likely to catch it fewer."""
            related = len(os.path.commonprefix([test["name"], stem])) >= 4 or stem in test["name"]
            return test["seconds"] * (0.1 if related else 0.2 if test["family"] == family else 1)

        reachable.sort(key=price)
        spent = itertools.accumulate(test["seconds"] for test in reachable)
        return [test for test, sum_so_far in zip(reachable, spent) if sum_so_far <= self.seconds]

    def catching(self, file, jobs):
        """The name of the first test that fails, or None; "no build" for what is no program."""
        # Most tests need but one of the programs and modules that a change is in.
        for needs in sorted({test["needs"] for test in self.tests}):
            if build(jobs, needs).returncode:
                return "no build"
            for test in self.for_file(file):
                if test["needs"] == needs and not self.passes(test, 5 + 4 * test["seconds"]):
                    return test["name"]
        return None


def confine(seconds):
    """A mutant may ask for any amount of memory or disk."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    resource.setrlimit(resource.RLIMIT_FSIZE, (16 << 30, 16 << 30))
    resource.setrlimit(resource.RLIMIT_AS, (16 << 30, 16 << 30))


def build(jobs, target="all"):
    command = ["cmake", "--build", BUILD, "-j", str(jobs), "--target", target]
    return subprocess.run(command, capture_output=True, text=True)


def prepare(jobs):
    """Copies the tree as it stands and builds it; for each folder what tells its state from others."""
    os.makedirs(TREE, exist_ok=True)
    listed = subprocess.run(["git", "ls-files", "-z"], capture_output=True, check=True).stdout.decode().split("\0")
    kept = {file for file in listed if file and os.path.isfile(file)}
    for folder, _, files in os.walk(TREE):
        for file in files:
            if os.path.relpath(f"{folder}/{file}", TREE) not in kept:
                os.remove(f"{folder}/{file}")
    states = collections.defaultdict(hashlib.sha256)
    for file in sorted(kept):
        os.makedirs(os.path.dirname(f"{TREE}/{file}"), exist_ok=True)
        with open(file, "rb") as source:
            content = source.read()
        parts = file.split("/")
        states["/".join(parts[: 2 if parts[0] == "tests" else 1])].update(file.encode() + b"\0" + content)
        if file == "CMakeLists.txt":
            content = re.sub(rb"-Wall .*-Werror", b"-w", content)
        place_file(f"{TREE}/{file}", content)
        shutil.copymode(file, f"{TREE}/{file}")
    if not os.path.exists(BUILD + "/CMakeCache.txt"):
        configure = ["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release"]
        subprocess.run(configure + ["-DCMAKE_CXX_FLAGS_RELEASE=-O1"], check=True, stdout=subprocess.DEVNULL)
    done = build(jobs)
    if done.returncode:
        sys.exit(done.stdout + done.stderr)
    return {folder: state.hexdigest() for folder, state in states.items()}


def place_file(path, content):
    """Writes it if it differs, so that only what changed is built."""
    if os.path.exists(path):
        with open(path, "rb") as present:
            if present.read() == content:
                return
    with open(path, "wb") as target:
        target.write(content)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("files", nargs="*", help="files and folders of src/; all of them by default")
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=1, help="for the builds")
    parser.add_argument("--module", action="store_true", help="only the tests of the module itself: quicker, and a little milder")
    parser.add_argument("--seconds", type=float, default=float("inf"), help="of tests for a mutant, the likeliest first")
    parser.add_argument("--again", action="store_true", help="only those that the last runs' tests did not catch")
    options = parser.parse_args()

    explained = read_explained(os.path.dirname(os.path.abspath(__file__)) + "/mutation.txt")
    states = prepare(options.jobs)
    survivors_file = FOLDER + "/survivors.json"
    files = sorted(
        f"{os.path.relpath(folder, TREE)}/{name}"
        for folder, _, names in os.walk(TREE + "/src") for name in names
        if name.endswith((".cpp", ".h"))
    )  # fmt: skip
    if options.files:
        files = [file for file in files if any(file == wish or file.startswith(wish.rstrip("/") + "/") for wish in options.files)]
    chance = random.Random(options.seed)
    queue = pick(files, chance)
    if options.again:
        with open(survivors_file, encoding="utf-8") as listed:
            wanted = set(json.load(listed))
        queue = [
            mutant for file in files for changes in mutants_of(file) for mutant in changes
            if described(mutant)[0] in wanted
        ]  # fmt: skip
        options.count = len(queue)
    tests = Tests(options.module, options.seconds)
    tests.time_all(states)

    # What is known of mutants of these very files: the tests only get better.
    results_file, results = FOLDER + "/results.json", {}
    if os.path.exists(results_file):
        with open(results_file, encoding="utf-8") as listed:
            results = json.load(listed)
    made, caught, equivalent, survivors = 0, 0, 0, {}
    while queue and made < options.count:
        mutant = queue.pop(0)
        path = f"{TREE}/{mutant.file}"
        name, diff = described(mutant)
        with open(path, encoding="utf-8") as source:
            original = source.read()
        key = hashlib.sha256((original + diff).encode()).hexdigest()
        by = results.get(key)
        if by == "no build":
            continue
        if not by:
            place_file(path, changed(mutant, original).encode())
            try:
                by = tests.catching(mutant.file, options.jobs)
            finally:
                place_file(path, original.encode())
            if by:
                results[key] = by
                with open(results_file, "w", encoding="utf-8") as listed:
                    json.dump(results, listed)
            if by == "no build":
                continue
        made += 1
        if by:
            caught += 1
        elif explained.get(name):
            equivalent += 1
        else:
            survivors[name] = diff
            with open(survivors_file, "w", encoding="utf-8") as listed:
                json.dump(survivors, listed, indent=1)
        print(f"{made}: {by or ('equivalent' if explained.get(name) else 'SURVIVED')}: {name}", flush=True)

    for diff in survivors.values():
        print("\n" + diff)
    print(f"\n{made} mutants: {caught} caught, {equivalent} equivalent, {len(survivors)} survived")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
