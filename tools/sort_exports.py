#!/usr/bin/env python3
"""Puts include/lumcv_exports.h back into byte order of the export names.

Usage: sort_exports.py [FILE]
       sort_exports.py --merge   (during a git merge with a conflict in the list)

Each row keeps the comment block standing right above it. With --merge, the
list is rebuilt from the rows of both sides of the merge (a row that stands
on both sides is kept once, as ours has it), which resolves the usual merge
of two branches that each added their own exports.
"""
import subprocess
import re
import sys


def main():
    args = sys.argv[1:]
    merge = "--merge" in args
    args = [a for a in args if a != "--merge"]
    path = args[0] if args else "include/lumcv_exports.h"
    if merge:
        ours = subprocess.run(["git", "show", ":2:" + path], check=True, capture_output=True, text=True).stdout
        theirs = subprocess.run(["git", "show", ":3:" + path], check=True, capture_output=True, text=True).stdout
        head, entries = parse(ours.split("\n"))
        for name, block in parse(theirs.split("\n"))[1].items():
            entries.setdefault(name, block)
    else:
        head, entries = parse(open(path).read().split("\n"))
    out = head[:]
    for name in sorted(entries, key=lambda n: n.encode()):
        block = entries[name]
        if block and block[0].strip().startswith("/*") and out and out[-1].strip() != "":
            out.append("")
        out.extend(block)
    open(path, "w").write("\n".join(out).rstrip("\n") + "\n")


def parse(lines):
    """The file's header comment, and each row with the comment above it, by name."""
    # The file's own header comment ends at the first blank line after it.
    head_end = 0
    for i, l in enumerate(lines):
        if l.strip() == "" and i > 0:
            head_end = i + 1
            break
    head, body = lines[:head_end], lines[head_end:]
    entries, pending, current = {}, [], None
    for l in body:
        if current is not None:
            current.append(l)
            if l.rstrip().endswith("))") and balanced(current):
                name = re.match(r"LUM_EXPORT\(\s*[^,]+,\s*(\w+)", " ".join(current)).group(1)
                if name not in entries:
                    entries[name] = pending + current
                pending, current = [], None
            continue
        if l.startswith("LUM_EXPORT("):
            current = [l]
            if balanced(current):
                name = re.match(r"LUM_EXPORT\(\s*[^,]+,\s*(\w+)", l).group(1)
                if name not in entries:
                    entries[name] = pending + current
                pending, current = [], None
        elif l.strip() == "" and not pending:
            continue
        else:
            pending.append(l)
    return head, entries


def balanced(chunk):
    text = " ".join(chunk)
    return text.count("(") == text.count(")")


if __name__ == "__main__":
    main()
