#!/usr/bin/env python3
"""Reads the files `velmora convert` writes with tools of other makers.

  convert_external.py assimp    OUTDIR SOURCE...
  convert_external.py validator OUTDIR NPM_PREFIX SOURCE...

SOURCE is `--sample WRITER` (the hand-built sample scene written by
write_sample_scene), `--convert VELMORA ARCHIVE` (velmora convert of an
archive into every format) or `--demo VELMORA MAKE_DEMO_ARCHIVE` (the same for
the demo archive, written first into OUTDIR).

assimp: `assimp info` must read the .glb, .gltf, .obj, .ply, .stl and .3mf files and
find meshes in each; for the sample scene the counts are checked exactly.
validator: the glTF validator of the npm registry, installed into NPM_PREFIX
on first use, must report no error for the .glb and .gltf files. Without npm
the check is skipped (exit 77) with a message saying so.
"""
import os
import re
import shutil
import subprocess
import sys

SKIP = 77
FORMATS = ["glb", "gltf", "obj", "ply", "stl", "3mf"]

# What assimp must find in the sample scene's files: (meshes, vertices, faces).
# PLY: assimp keeps only the vertices that faces use, so just the mesh.
# STL: six vertices, each triangle has its own.
SAMPLE_COUNTS = {
    "glb": (4, 43, 39),
    "gltf": (4, 43, 39),
    "obj": (4, 43, 39),
    "ply": (1, 4, 2),
    "stl": (1, 6, 2),
    "3mf": (1, 4, 2),
}


def fail(msg):
    print("FAIL: " + msg)
    sys.exit(1)


def produce(outdir, source):
    os.makedirs(outdir, exist_ok=True)
    if source[0] == "--sample":
        r = subprocess.run([source[1], outdir], capture_output=True, text=True)
        if r.returncode != 0:
            fail("write_sample_scene: " + r.stderr.strip())
        return {ext: os.path.join(outdir, "sample." + ext) for ext in FORMATS}, True
    if source[0] == "--demo":
        archive = os.path.join(outdir, "demo.vlm")
        r = subprocess.run([source[2], archive], capture_output=True, text=True)
        if r.returncode != 0:
            fail("make_demo_archive: " + r.stderr.strip())
        source = ["--convert", source[1], archive]
    if source[0] == "--convert":
        files = {}
        for ext in FORMATS:
            out = os.path.join(outdir, "converted." + ext)
            r = subprocess.run([source[1], "convert", source[2], "-o", out], capture_output=True, text=True)
            if r.returncode != 0:
                fail("velmora convert %s -o %s: exit %d: %s" % (source[2], out, r.returncode, r.stderr.strip()))
            files[ext] = out
        return files, False
    fail("unknown source " + source[0])


def assimp_counts(path):
    r = subprocess.run(["assimp", "info", path], capture_output=True, text=True)
    if r.returncode != 0:
        fail("assimp info %s: exit %d: %s" % (path, r.returncode, (r.stdout + r.stderr).strip()[-500:]))

    def count(label):
        m = re.search(r"^%s:\s+(\d+)" % label, r.stdout, re.M)
        if not m:
            fail("assimp info %s: no %s count" % (path, label))
        return int(m.group(1))

    return count("Meshes"), count("Vertices"), count("Faces")


def check_assimp(files, sample):
    if shutil.which("assimp") is None:
        fail("assimp is not installed (Debian package assimp-utils; scripts/install-deps installs it)")
    for ext, path in files.items():
        got = assimp_counts(path)
        print("assimp info %s: %d meshes, %d vertices, %d faces" % (os.path.basename(path), *got))
        if got[0] < 1:
            fail("assimp found no mesh in " + path)
        if sample and got != SAMPLE_COUNTS[ext]:
            fail("assimp read %s as %s, expected %s" % (path, got, SAMPLE_COUNTS[ext]))


def check_validator(files, prefix):
    if shutil.which("npm") is None or shutil.which("node") is None:
        print("SKIPPED: npm and node are needed to fetch and run the gltf-validator package")
        sys.exit(SKIP)
    module = os.path.join(prefix, "node_modules", "gltf-validator")
    if not os.path.isdir(module):
        os.makedirs(prefix, exist_ok=True)
        r = subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--prefix", prefix, "gltf-validator"],
                           capture_output=True, text=True)
        if r.returncode != 0:
            fail("npm install gltf-validator: " + (r.stdout + r.stderr).strip()[-800:])
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "gltf_validate.js")
    r = subprocess.run(["node", script, module, files["glb"], files["gltf"]], capture_output=True, text=True)
    print(r.stdout.strip())
    if r.returncode != 0:
        fail("the glTF validator reports errors: " + r.stderr.strip())


def main(argv):
    if len(argv) < 3:
        print(__doc__)
        return 2
    mode, outdir = argv[0], argv[1]
    if mode == "assimp":
        files, sample = produce(outdir, argv[2:])
        check_assimp(files, sample)
    elif mode == "validator":
        files, _ = produce(outdir, argv[3:])
        check_validator(files, argv[2])
    else:
        print(__doc__)
        return 2
    print("OK")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
