#!/usr/bin/env python3
"""How often `arbolet check` notices a damaged block start or end line.

For every component file below the given folders that checks clean, damages one line at a time
and runs the check on the damaged copy. Prints how many damages were caught, per mutation kind
and, for deletions, per kind of line. Mutation kinds (--mutations, comma-separated):

  delete     deletes a line that opens or closes a block (If ... Then, For, Do, While,
             Select Case, With, procedure, Type and Enum headers, and their ends)
  end-if     turns an `End If` into `End Select`
  next       turns `Next i` into `Next j` where `j` is the variable of the loop around `For i`
  loop-wend  turns a `Loop` into `Wend`

With --sample N, damages N lines of each kind chosen at random.

    bench/catch_rate.py build/rel/apps/arbolet/arbolet FOLDER... [--sample N] [--seed S]
                        [--mutations delete,end-if,next,loop-wend]
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
END_IF = re.compile(r"^(\s*(?:\d+\s+)?)end\s+if\b", re.IGNORECASE)
BARE_LOOP = re.compile(r"^(\s*(?:\d+\s+)?)loop\s*(?:'.*)?$", re.IGNORECASE)
FOR_LINE = re.compile(r"^\s*(?:\d+\s+)?for\s+(?!each\b)(\w+)", re.IGNORECASE)
NEXT_ONE = re.compile(r"^(\s*(?:\d+\s+)?next\s+)(\w+)(\s*(?:'.*)?)$", re.IGNORECASE)


def check(arbolet, path):
    run = subprocess.run([arbolet, "check", "--quiet", str(path)], capture_output=True)
    return run.returncode


def deletions(text):
    for number, line in enumerate(text):
        match = BLOCK_LINE.match(line)
        if match:
            yield number, f"delete {match.lastgroup}", None


def end_if_swaps(text):
    for number, line in enumerate(text):
        match = END_IF.match(line)
        if match:
            yield number, "end-if", match.group(1) + "End Select"


def loop_swaps(text):
    for number, line in enumerate(text):
        match = BARE_LOOP.match(line)
        if match:
            yield number, "loop-wend", match.group(1) + "Wend"


def next_swaps(text):
    loops = []  # variables of the open For loops
    for number, line in enumerate(text):
        opened = FOR_LINE.match(line)
        if opened:
            loops.append(opened.group(1))
            continue
        closed = NEXT_ONE.match(line)
        if not closed or not loops:
            continue
        if len(loops) >= 2 and loops[-1].lower() == closed.group(2).lower():
            outer = loops[-2]
            if outer.lower() != loops[-1].lower():
                yield number, "next", closed.group(1) + outer + closed.group(3)
        loops.pop()


MUTATIONS = {"delete": deletions, "end-if": end_if_swaps, "next": next_swaps,
             "loop-wend": loop_swaps}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("arbolet")
    parser.add_argument("folders", nargs="+")
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--mutations", default="delete,end-if,next,loop-wend")
    args = parser.parse_args()
    kinds = args.mutations.split(",")
    unknown = [k for k in kinds if k not in MUTATIONS]
    if unknown:
        parser.error(f"unknown mutation kinds: {', '.join(unknown)}")

    files = [p for folder in args.folders for p in sorted(pathlib.Path(folder).rglob("*"))
             if p.suffix.lower() in COMPONENTS]
    candidates = {kind: [] for kind in kinds}
    for path in files:
        if check(args.arbolet, path) != 0:
            print(f"skipped (not clean): {path}", file=sys.stderr)
            continue
        lines = path.read_bytes().split(b"\n")
        text = [line.decode("latin-1").rstrip("\r") for line in lines]
        for kind in kinds:
            candidates[kind] += [(path, lines, number, label, replacement)
                                 for number, label, replacement in MUTATIONS[kind](text)]
    chosen = []
    for kind in kinds:
        if args.sample:
            random.Random(args.seed).shuffle(candidates[kind])
            candidates[kind] = candidates[kind][: args.sample]
        chosen += candidates[kind]

    caught = {}
    missed = []
    with tempfile.TemporaryDirectory() as scratch:
        for path, lines, number, label, replacement in chosen:
            damaged = pathlib.Path(scratch) / path.name
            if replacement is None:
                changed = lines[:number] + lines[number + 1:]
            else:
                ending = b"\r" if lines[number].endswith(b"\r") else b""
                changed = lines[:number] + [replacement.encode("latin-1") + ending] + \
                    lines[number + 1:]
            damaged.write_bytes(b"\n".join(changed))
            status = check(args.arbolet, damaged)
            hits, total = caught.get(label, (0, 0))
            caught[label] = (hits + (status == 1), total + 1)
            if status != 1:
                missed.append(f"{label}: {path}:{number + 1}: "
                              f"{lines[number].decode('latin-1').strip()}")
    for kind in kinds:
        rows = {label: counts for label, counts in caught.items()
                if label == kind or label.startswith(kind + " ")}
        hits = sum(h for h, _ in rows.values())
        total = sum(t for _, t in rows.values())
        for label, (h, t) in sorted(rows.items()):
            if label != kind:
                print(f"  {label:18} {h:5} of {t:5}")
        print(f"{kind:10} caught {hits} of {total} ({100.0 * hits / max(total, 1):.1f}%)")
    for line in missed:
        print("missed:", line)


if __name__ == "__main__":
    main()
