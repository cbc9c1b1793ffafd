"""Lists of what is known to be so, each entry a line that names it and indented lines that say why."""


def read_explained(path):
    """Name -> reason."""
    explained, key = {}, None
    with open(path, encoding="utf-8") as listed:
        for line in listed:
            line = line.rstrip()
            if not line or line.startswith("#"):
                continue
            if not line.startswith(" "):
                key = line
                explained[key] = ""
            else:
                explained[key] = (explained[key] + " " + line.strip()).strip()
    return explained
