#!/usr/bin/env python3
"""Reads what `velmora convert` writes of the demo archive with meshio and
compares the counts with what `velmora dump` reports of the same import.

  convert_meshio.py VELMORA MAKE_DEMO_ARCHIVE OUTDIR

OBJ and PLY of the meshes and point clouds (--only scans,images,insoles, the
insoles left open): meshio's points are every mesh vertex and cloud point
the dump lists, its triangles every triangle. STL of the open meshes:
meshio merges equal corners, so its points are the distinct float32
positions of the vertices the dump's triangles use, placed by the dump's
group placements; its triangles are the dump's.
"""
import json
import os
import shutil
import subprocess
import sys

import numpy


def fail(msg):
    print("FAIL: " + msg)
    sys.exit(1)


def run(args):
    r = subprocess.run(args, capture_output=True, text=True)
    if r.returncode != 0:
        fail("%s: exit %d: %s" % (" ".join(args), r.returncode, r.stderr.strip()[-800:]))
    return r.stdout


def compose(a, b):
    # The command's own order of operations: a * b, b first.
    m = [0.0] * 12
    for r in range(3):
        for c in range(4):
            v = a[r * 4 + 0] * b[0 * 4 + c] + a[r * 4 + 1] * b[1 * 4 + c] + a[r * 4 + 2] * b[2 * 4 + c]
            if c == 3:
                v += a[r * 4 + 3]
            m[r * 4 + c] = v
    return m


def walk(item, world, out):
    if item["type"] == "group":
        world = compose(world, item["xform"])
        for c in item.get("children", []):
            walk(c, world, out)
    else:
        out.append((item, world))


def main(argv):
    if len(argv) != 3:
        print(__doc__)
        return 2
    velmora, make_demo, outdir = argv
    try:
        import meshio
    except ImportError:
        fail("meshio is not installed (Debian package python3-meshio; scripts/install-deps installs it)")
    shutil.rmtree(outdir, ignore_errors=True)
    os.makedirs(outdir)
    archive = os.path.join(outdir, "demo.vlm")
    run([make_demo, archive])
    kinds = ["--only", "scans,images,insoles", "--no-solid"]
    dump = json.loads(run([velmora, "dump", "--only", "scans,images,insoles", archive]))
    scale = [1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0]
    items = []
    walk(dump["root"], scale, items)
    meshes = [(i, w) for i, w in items if i["type"] == "triblock" and i["status"] == 0]
    clouds = [i for i, _ in items if i["type"] == "pointcloud"]
    vertices = sum(len(i["vertices"]) for i, _ in meshes)
    triangles = sum(len(i["triangles"]) for i, _ in meshes)
    points = sum(len(i["points"]) for i in clouds)
    if not meshes or not clouds:
        fail("the dump holds no mesh or no cloud")

    corners = []
    for item, w in meshes:
        v = numpy.array(item["vertices"], dtype=numpy.float64)
        used = v[numpy.unique(numpy.array(item["triangles"], dtype=numpy.int64).ravel())]
        x, y, z = used[:, 0], used[:, 1], used[:, 2]
        placed = numpy.stack([w[r * 4 + 0] * x + w[r * 4 + 1] * y + w[r * 4 + 2] * z + w[r * 4 + 3]
                              for r in range(3)], axis=1)
        corners.append(placed.astype(numpy.float32))
    distinct = len(numpy.unique(numpy.concatenate(corners), axis=0))

    expected = {"obj": (vertices + points, triangles), "ply": (vertices + points, triangles),
                "stl": (distinct, triangles)}
    for ext, (want_points, want_triangles) in expected.items():
        path = os.path.join(outdir, "demo." + ext)
        run([velmora, "convert"] + kinds + [archive, "-o", path])
        m = meshio.read(path)
        got_triangles = sum(len(c.data) for c in m.cells if c.type == "triangle")
        others = [c.type for c in m.cells if c.type != "triangle"]
        print("meshio %s: %d points, %d triangles (velmora dump: %d, %d)" %
              (os.path.basename(path), len(m.points), got_triangles, want_points, want_triangles))
        if others:
            fail("%s: cells other than triangles: %s" % (path, sorted(set(others))))
        if (len(m.points), got_triangles) != (want_points, want_triangles):
            fail("%s: meshio read %d points and %d triangles, the dump says %d and %d" %
                 (path, len(m.points), got_triangles, want_points, want_triangles))
    print("OK")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
