#!/usr/bin/env python3
"""`velmora report` on the demo archive, opened in headless Chromium.

  report_browser.py VELMORA MAKE_DEMO_ARCHIVE OUTDIR NPM_PREFIX

Writes the demo archive and its report into OUTDIR, opens index.html from
file:// in Chromium driven by the npm package playwright-core (installed into
NPM_PREFIX on first use), and checks that the 3D view loads the model, that
the console shows no error, that every picture of the page loads and that the
view is not blank. The screenshot stays in OUTDIR/screenshot.png. Without
Chromium the check is skipped (exit 77).
"""
import json
import os
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "preview"))
import png_read  # noqa: E402

SKIP = 77
PLAYWRIGHT = "playwright-core@1.65.1"


def fail(msg):
    print("FAIL: " + msg)
    sys.exit(1)


def run(args, **kw):
    r = subprocess.run(args, capture_output=True, text=True, **kw)
    if r.returncode != 0:
        fail("%s: exit %d: %s" % (" ".join(args), r.returncode, (r.stdout + r.stderr).strip()[-800:]))
    return r.stdout


def main(argv):
    if len(argv) != 4:
        print(__doc__)
        return 2
    velmora, maker, outdir, prefix = argv
    chromium = shutil.which("chromium") or ("/usr/bin/chromium" if os.path.exists("/usr/bin/chromium") else None)
    if chromium is None:
        print("SKIPPED: chromium is not installed (Debian package chromium; scripts/install-deps installs it)")
        return SKIP
    if shutil.which("npm") is None or shutil.which("node") is None:
        fail("npm and node are needed to drive chromium (scripts/install-deps installs them)")
    module = os.path.join(prefix, "node_modules", "playwright-core")
    if not os.path.isdir(module):
        os.makedirs(prefix, exist_ok=True)
        run(["npm", "install", "--no-audit", "--no-fund", "--no-save", "--prefix", prefix, PLAYWRIGHT])
    os.makedirs(outdir, exist_ok=True)
    archive = os.path.join(outdir, "demo.vlm")
    run([maker, archive])
    report = os.path.join(outdir, "report")
    shutil.rmtree(report, ignore_errors=True)
    r = subprocess.run([velmora, "report", archive, "-o", report], capture_output=True, text=True)
    if r.returncode != 0 or r.stderr:
        fail("velmora report: exit %d: %s" % (r.returncode, r.stderr.strip()))
    for f in ("index.html", "demo.glb", "demo.glb.js", "model-viewer-umd.min.js", "overview.png"):
        if not os.path.isfile(os.path.join(report, f)):
            fail("the report has no " + f)
    screenshot = os.path.join(outdir, "screenshot.png")
    if os.path.exists(screenshot):
        os.remove(screenshot)
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "report_browser.js")
    out = run(["node", script, module, chromium, os.path.abspath(os.path.join(report, "index.html")), screenshot],
              timeout=240)
    seen = json.loads(out.strip().splitlines()[-1])
    if seen["errors"]:
        fail("the browser reports: " + "; ".join(seen["errors"]))
    if seen["model"] != "loaded":
        fail("the 3D view says %r, expected 'loaded'" % seen["model"])
    if len(seen["images"]) != 13 or any(w <= 0 for _, w in seen["images"]):
        fail("pictures of the page: %s" % seen["images"])
    shot = png_read.read(screenshot)
    colours = set()
    for y in range(0, shot.height, 4):
        for x in range(0, shot.width, 4):
            colours.add(shot.pixel(x, y))
    # The view's background is one colour; the insoles, scans and images
    # bring many more.
    if len(colours) < 16:
        fail("the 3D view looks blank: %d colours in %s" % (len(colours), screenshot))
    print("model loaded, %d pictures, %d colours in the view; screenshot %s: OK"
          % (len(seen["images"]), len(colours), screenshot))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
