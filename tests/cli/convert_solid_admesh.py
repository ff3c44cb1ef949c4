#!/usr/bin/env python3
"""Checks with admesh that `velmora convert` writes every finished insole as a
closed solid.

  convert_solid_admesh.py VELMORA MAKE_DEMO_ARCHIVE OUTDIR

Writes the demo archive and a larger one (three visits, scans twice as fine)
into OUTDIR, converts the insoles of each with `--only insoles --split` (STL,
closed by default) and runs admesh on every file with the exact edge check
and the normal checks only (no nearby matching, no removal, no hole
filling). Each must read as one part with no facet that has a disconnected
edge, no degenerate facet, no backwards edge, no facet the direction check
would turn and no normal to fix, and a positive volume. The same insoles
written with --no-solid must show open edges, so that the check can fail.
"""
import json
import os
import re
import shutil
import subprocess
import sys


def fail(msg):
    print("FAIL: " + msg)
    sys.exit(1)


def run(args):
    r = subprocess.run(args, capture_output=True, text=True)
    if r.returncode != 0:
        fail("%s: exit %d: %s" % (" ".join(args), r.returncode, (r.stdout + r.stderr).strip()[-800:]))
    return r.stdout


def admesh_report(path):
    # The exact check matches edges; the direction and value checks count
    # parts and what they would have to turn or fix, which must be nothing.
    out = run(["admesh", "--exact", "--normal-directions", "--normal-values", path])

    def original(label):
        m = re.search(r"^%s\s*:\s*(\d+)\s+(\d+)" % re.escape(label), out, re.M)
        if not m:
            fail("admesh %s: no line %r" % (path, label))
        return int(m.group(1))

    def value(label, pattern=r"(\d+)"):
        m = re.search(r"%s\s*:\s*%s" % (re.escape(label), pattern), out)
        if not m:
            fail("admesh %s: no figure %r" % (path, label))
        return m.group(1)

    return {
        "facets": original("Number of facets"),
        "open": sum(original("Facets with %d disconnected edge%s" % (k, "" if k == 1 else "s")) for k in (1, 2, 3)),
        "parts": int(value("Number of parts")),
        "volume": float(value("Volume", r"(-?[0-9.]+(?:e[-+]?\d+)?)")),
        "degenerate": int(value("Degenerate facets")),
        "backwards": int(value("Backwards edges")),
        "reversed": int(value("Facets reversed")),
        "normals_fixed": int(value("Normals fixed")),
    }


def main(argv):
    if len(argv) != 3:
        print(__doc__)
        return 2
    velmora, make_demo, outdir = argv
    if shutil.which("admesh") is None:
        fail("admesh is not installed (Debian package admesh; scripts/install-deps installs it)")
    shutil.rmtree(outdir, ignore_errors=True)
    os.makedirs(outdir)
    archives = {"demo": [], "scaled": ["--visits", "3", "--fineness", "2"]}
    checked = 0
    for name, options in archives.items():
        archive = os.path.join(outdir, name + ".vlm")
        run([make_demo] + options + [archive])
        solid_dir = os.path.join(outdir, name + "-solid")
        open_dir = os.path.join(outdir, name + "-open")
        run([velmora, "convert", archive, "--only", "insoles", "--split", solid_dir])
        run([velmora, "convert", archive, "--only", "insoles", "--no-solid", "--split", open_dir])
        manifest = json.load(open(os.path.join(solid_dir, "manifest.json"), encoding="utf-8"))
        if not manifest["files"]:
            fail(name + ": no insole written")
        for f in manifest["files"]:
            r = admesh_report(os.path.join(solid_dir, f["file"]))
            print("%s %s: %d facets, %d open, %d parts, volume %.3f mm3, %d degenerate, %d backwards, "
                  "%d reversed, %d normals fixed" % (name, f["path"].rsplit("/", 1)[-1], r["facets"], r["open"],
                                                     r["parts"], r["volume"], r["degenerate"], r["backwards"],
                                                     r["reversed"], r["normals_fixed"]))
            if r["facets"] != f["triangles"]:
                fail("%s: admesh read %d facets, the manifest says %d" % (f["file"], r["facets"], f["triangles"]))
            for key in ("open", "degenerate", "backwards", "reversed", "normals_fixed"):
                if r[key] != 0:
                    fail("%s: %s is %d, not 0" % (f["file"], key, r[key]))
            if r["parts"] != 1:
                fail("%s: %d parts, not 1" % (f["file"], r["parts"]))
            if not r["volume"] > 0:
                fail("%s: volume %g is not positive" % (f["file"], r["volume"]))
            o = admesh_report(os.path.join(open_dir, f["file"]))
            if o["open"] == 0:
                fail("%s written with --no-solid shows no open edge: the check could not fail" % f["file"])
            checked += 1
    print("OK: %d insoles closed" % checked)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
