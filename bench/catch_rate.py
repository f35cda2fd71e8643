#!/usr/bin/env python3
"""How often `arbolet check` notices a deleted block start or end line.

For every component file below the given folders that checks clean, deletes each line that opens
or closes a block (If ... Then, For, Do, While, Select Case, With, procedure, Type and Enum
headers, and their ends), one at a time, and runs the check on the damaged copy. Prints how many
deletions were caught, per kind of line. With --sample N, deletes N lines chosen at random.

    bench/catch_rate.py build/rel/apps/arbolet/arbolet FOLDER... [--sample N] [--seed S]
"""
import argparse
import pathlib
import random
import re
import subprocess
import sys
import tempfile

COMPONENTS = {".bas", ".cls", ".frm", ".ctl", ".pag", ".dob", ".dsr"}
MODIFIERS = r"(?:(?:public|private|friend|static|global)\s+)*"
BLOCK_LINE = re.compile(
    r"^\s*(?:\d+\s+)?(?:"
    r"(?P<if>if\b.*\bthen\s*(?:'.*)?$)|(?P<for>for\b)|(?P<do>do\b)|(?P<while>while\b)"
    r"|(?P<select>select\s+case\b)|(?P<with>with\b)"
    r"|(?P<procedure>" + MODIFIERS + r"(?:sub|function|property)\b)"
    r"|(?P<type>" + MODIFIERS + r"(?:type|enum)\b)"
    r"|(?P<end>end\s+(?:if|select|with|sub|function|property|type|enum)\b)"
    r"|(?P<next>next\b)|(?P<loop>loop\b)|(?P<wend>wend\b)"
    r"|(?P<directive>#(?:if|end\s*if)\b))",
    re.IGNORECASE)


def check(arbolet, path):
    run = subprocess.run([arbolet, "check", "--quiet", str(path)], capture_output=True)
    return run.returncode


def block_lines(lines):
    found = []
    for number, line in enumerate(lines):
        match = BLOCK_LINE.match(line)
        if match:
            found.append((number, match.lastgroup))
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("arbolet")
    parser.add_argument("folders", nargs="+")
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--seed", type=int, default=1)
    args = parser.parse_args()

    files = [p for folder in args.folders for p in sorted(pathlib.Path(folder).rglob("*"))
             if p.suffix.lower() in COMPONENTS]
    candidates = []
    for path in files:
        if check(args.arbolet, path) != 0:
            print(f"skipped (not clean): {path}", file=sys.stderr)
            continue
        lines = path.read_bytes().split(b"\n")
        text = [line.decode("latin-1") for line in lines]
        candidates += [(path, lines, number, kind) for number, kind in block_lines(text)]
    if args.sample:
        random.Random(args.seed).shuffle(candidates)
        candidates = candidates[: args.sample]

    caught = {}
    missed = []
    with tempfile.TemporaryDirectory() as scratch:
        for path, lines, number, kind in candidates:
            damaged = pathlib.Path(scratch) / path.name
            damaged.write_bytes(b"\n".join(lines[:number] + lines[number + 1:]))
            status = check(args.arbolet, damaged)
            hits, total = caught.get(kind, (0, 0))
            caught[kind] = (hits + (status == 1), total + 1)
            if status != 1:
                missed.append(f"{path}:{number + 1}: {lines[number].decode('latin-1').strip()}")
    hits = sum(h for h, _ in caught.values())
    total = sum(t for _, t in caught.values())
    for kind, (h, t) in sorted(caught.items()):
        print(f"{kind:10} {h:5} of {t:5}")
    print(f"caught {hits} of {total} deletions ({100.0 * hits / max(total, 1):.1f}%)")
    for line in missed:
        print("missed:", line)


if __name__ == "__main__":
    main()
