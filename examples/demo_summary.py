#!/usr/bin/env python3
"""Prints the tree a host received from one import on one screen.

  demo_summary.py DUMP.json

DUMP.json is what `velmora dump --summary FILE.vlm` prints. Every group is a
line; a group that holds only geometry (a scan, an image, a model) gets one
line that names what it holds, with the counts. The last lines count the
kinds of objects.
"""
import json
import sys

KINDS = {"triblock": "mesh", "pointcloud": "cloud", "curve": "curve"}


def describe(item):
    kind = item["type"]
    if kind == "triblock":
        return "%s: mesh %d vertices %d triangles" % (item["name"], item["vertices"]["count"],
                                                      item["triangles"]["count"])
    if kind == "pointcloud":
        return "%s: cloud %d points" % (item["name"], item["points"]["count"])
    if kind == "curve":
        return "%s: curve" % item["name"]
    return "%s: %s" % (item.get("name", "?"), kind)


def walk(node, prefix, last, lines, counts, top=False):
    children = node.get("children", [])
    geometry = [c for c in children if c["type"] != "group"]
    groups = [c for c in children if c["type"] == "group"]
    for g in geometry:
        counts[KINDS.get(g["type"], g["type"])] = counts.get(KINDS.get(g["type"], g["type"]), 0) + 1
    branch = "" if top else ("`- " if last else "|- ")
    text = node["name"]
    if geometry and not groups:
        # A leaf group: the scan or the model with what it holds. A scan's
        # node carries the object's own name; say only what differs.
        parts = [describe(g) if g["name"] != node["name"] else describe(g).split(": ", 1)[1] for g in geometry]
        text = "%-26s %s" % (text, "; ".join(parts))
    elif not children:
        text += "  (empty)"
    lines.append(prefix + branch + text)
    inner = prefix + ("" if top else ("   " if last else "|  "))
    for k, g in enumerate(groups):
        walk(g, inner, k == len(groups) - 1, lines, counts)


def main(argv):
    if len(argv) != 1:
        print(__doc__)
        return 2
    with open(argv[0], encoding="utf-8") as f:
        dump = json.load(f)
    if dump.get("root") is None:
        print("the import produced nothing (result %s)" % dump.get("result"))
        return 1
    lines, counts = [], {}
    walk(dump["root"], "", True, lines, counts, top=True)
    print("\n".join(lines))
    print("imported: " + ", ".join("%d %s%s" % (n, k, "es" if k == "mesh" and n != 1 else ("s" if n != 1 else ""))
                                   for k, n in sorted(counts.items())))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
