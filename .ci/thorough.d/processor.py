"""Which parts of src/ are written for instruction sets that this machine's processor lacks."""

import re


def instruction_sets():
    """The names of /proc/cpuinfo, which are the compiler's but for one."""
    with open("/proc/cpuinfo", encoding="utf-8") as described:
        flags = re.search(r"^flags\s*:(.*)$", described.read(), re.M)
    names = set(flags[1].split()) if flags else set()
    return names | ({"bmi"} if "bmi1" in names else set())


def missing_targets():
    """The macros before functions that cannot run here: those of row_function.h that ask for more than there is."""
    with open("src/kernels/row_function.h", encoding="utf-8") as header:
        defined = re.findall(r'^#define (KZB_TARGET_\w+) (?:.|\\\n)*?\("([^"]*)"\)', header.read(), re.M)
    present = instruction_sets()
    return [macro for macro, needed in defined if not set(needed.split(",")) <= present]


def closing_place(text, start, pair):
    """The place of what closes the brace or parenthesis at `start`; the text's end when nothing does."""
    depth = 0
    for place in range(start, len(text)):
        depth += {pair[0]: 1, pair[1]: -1}.get(text[place], 0)
        if depth == 0:
            return place
    return len(text)


def foreign_functions(text, targets):
    """Where the functions are that need one of these targets: (start, end) in the text."""
    found = []
    for macro in re.finditer(r"\b(" + "|".join(targets or ["(?!)"]) + r")\b(?![ \\\n]*\[\[gnu::target)", text):
        body = re.compile(r"\) (?:const )?(?:: [^{;]*)?(?:\w+\{[^{}]*\}, )*\{").search(text, macro.end())
        if body and ";" not in text[macro.end() : body.start()]:
            found.append((macro.start(), closing_place(text, body.end() - 1, "{}") + 1))
    return found
