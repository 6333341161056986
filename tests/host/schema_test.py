#!/usr/bin/env python3
"""The documents made from the key tables: that the committed ones are fresh, that the manual says the
same, and that the schema takes what the reader takes.

    schema_test.py REPOSITORY HOST_REFERENCE RANDOM_HOST_FILE
"""
import json
import pathlib
import re
import subprocess
import sys

import jsonschema

RANDOM_HOSTS = 60
OTHER_JSON = {"CMakePresets.json", "docs/host.schema.json"}


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout.decode()


def check_fresh(repository, reference):
    for option, name in ("--markdown", "host-file.md"), ("--schema", "host.schema.json"):
        committed = (repository / "docs" / name).read_text()
        assert committed == output_of(reference, option), (
            f"docs/{name} is stale: build the target docs")


def check_manual(reference):
    """The manual says of each key what the committed page says."""
    manual = output_of(reference, "--mdoc")
    macros = set(re.findall(r"^\.(\w*)", manual, re.MULTILINE))
    assert macros == {"Bl", "El", "It", "Pp", "Sh", "Ss", "Sx", "br"}, macros
    manual = manual.replace("\\&", "").replace("\\-", "-").replace("\\e", "\\")
    manual = " ".join(manual.split()).lower()
    rows = re.findall(r"^\| [`0](?:[^|]*\|){6}$", output_of(reference, "--markdown"), re.MULTILINE)
    assert len(rows) > 200, len(rows)
    for row in rows:
        name, kind, takes, unit, default, meaning = (cell.strip().replace("`", "") for cell in row.split("|")[1:-1])
        kind, _, link = kind.replace("list of objects", "list").partition(": ")
        said = f".it cm {name} {meaning}. .br {kind}"
        said += f" ({unit})" if unit else ""
        said += f": {takes}" if takes else ""
        said += f"; {default}" if default.startswith("required") else f"; default: {default}" if default else ""
        said += f" .br see .sx {link[1:].partition(']')[0]} ." if link else ""
        assert said.lower() + " ." in manual, f"the manual does not say: {said}"


def host_files(repository):
    for path in sorted(repository.rglob("*.json")):
        name = path.relative_to(repository)
        if name.parts[0] not in ("build", ".git") and str(name) not in OTHER_JSON:
            yield name, path.read_text()


def written(value, indent=0):
    """As another program writes the value: two blanks a level, lists of plain values on one line."""
    items = value.values() if isinstance(value, dict) else value if isinstance(value, list) else ()
    if not isinstance(value, dict) and not any(isinstance(item, (dict, list)) for item in items):
        return json.dumps(value, ensure_ascii=False).replace("\x7f", "\\u007f")
    keys = [written(key) + ": " for key in value] if isinstance(value, dict) else [""] * len(value)
    blanks = "\n" + " " * indent
    lines = [f"{blanks}  {key}{written(item, indent + 2)}" for key, item in zip(keys, items)]
    left, right = "{}" if isinstance(value, dict) else "[]"
    return left + ",".join(lines) + (blanks if lines else "") + right


def main():
    repository, reference, random_host_file = pathlib.Path(sys.argv[1]), *sys.argv[2:4]
    check_fresh(repository, reference)
    check_manual(reference)
    schema = json.loads((repository / "docs" / "host.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)

    files = list(host_files(repository))
    assert len(files) >= 9, files
    for seed in range(RANDOM_HOSTS):
        text = output_of(random_host_file, str(seed))
        assert text == written(json.loads(text)) + "\n", f"random host {seed}"
        files.append((f"random host {seed}", text))
    for name, text in files:
        wrong = jsonschema.exceptions.best_match(validator.iter_errors(json.loads(text)))
        assert wrong is None, f"{name}: {list(wrong.absolute_path)}: {wrong.message}"
    print(f"{len(files)} hosts fit the schema")


main()
