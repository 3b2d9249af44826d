#!/usr/bin/env python3
"""Puts include/lumcv_exports.h back into byte order of the export names.

Usage: sort_exports.py [--union-conflicts] [FILE]

Each row keeps the comment block standing right above it. With
--union-conflicts, git conflict markers are dropped and the rows of both
sides kept (a row that stands on both sides is kept once), which resolves
the usual merge of two branches that each added their own exports.
"""
import re
import sys


def main():
    args = sys.argv[1:]
    union = "--union-conflicts" in args
    args = [a for a in args if a != "--union-conflicts"]
    path = args[0] if args else "include/lumcv_exports.h"
    lines = open(path).read().split("\n")
    if union:
        lines = [l for l in lines if not re.match(r"^(<<<<<<<|=======|>>>>>>>)( |$)", l)]
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
    out = head[:]
    for name in sorted(entries, key=lambda n: n.encode()):
        block = entries[name]
        if block and block[0].strip().startswith("/*") and out and out[-1].strip() != "":
            out.append("")
        out.extend(block)
    open(path, "w").write("\n".join(out).rstrip("\n") + "\n")


def balanced(chunk):
    text = " ".join(chunk)
    return text.count("(") == text.count(")")


if __name__ == "__main__":
    main()
