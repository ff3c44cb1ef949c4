#!/usr/bin/env python3
"""`velmora preview` on the demo archive, read back with zlib alone.

  preview_pictures.py VELMORA MAKE_DEMO_ARCHIVE OUTDIR

Writes the demo archive, previews it twice (the bytes must be the same) and
dumps it. Then for every picture: its size; for a height map the legend's
range against the lowest and highest height of the mesh's vertices in the
dump, the map's columns and rows against the mesh's extent, and the pixels of
chosen nodes against the colour ramp at the node's height (the highest
vertex over that spot), computed here from the ramp's stops; for an image the
pixels against the cloud's colours. overview.png must hold them all.
"""
import json
import math
import os
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import png_read  # noqa: E402

# The ramp as the preview help describes it: 256 levels, stops every 64.
STOPS = [(0, 0, 160), (0, 160, 255), (0, 200, 80), (255, 220, 0), (200, 0, 0)]
LEVELS = 256
MARGIN = 8


def fail(msg):
    print("FAIL: " + msg)
    sys.exit(1)


def level(z, lo, hi):
    rng = hi - lo
    if not rng > 0:
        return 0
    t = (z - lo) / rng * (LEVELS - 1)
    if not t > 0:
        return 0
    if t >= LEVELS - 1:
        return LEVELS - 1
    return int(math.floor(t + 0.5))


def ramp(k):
    s, f = divmod(k, 64)
    a, b = STOPS[s], STOPS[s + 1]
    return tuple((a[i] * (64 - f) + b[i] * f + 32) // 64 for i in range(3))


def run(args):
    r = subprocess.run(args, capture_output=True)
    if r.returncode != 0:
        fail("%s: exit %d: %s" % (" ".join(args), r.returncode, r.stderr.decode(errors="replace").strip()))
    return r.stdout


def items(node, path, out):
    """Meshes and clouds of the dump in the walk's order, with their paths.
    A picture shows an item in its own coordinates, as the dump gives them."""
    for c in node.get("children", []):
        if c["type"] == "group":
            items(c, path + [c["name"]], out)
        elif c["type"] in ("triblock", "pointcloud"):
            out.append((path + [c["name"]], c))


def check_height_map(png, mesh, label):
    verts = mesh["vertices"]
    zs = [v[2] for v in verts]
    lo, hi = (float(x) for x in png.texts["Heights"].split())
    if (lo, hi) != (min(zs), max(zs)):
        fail("%s: legend %r..%r, the dump's heights %r..%r" % (label, lo, hi, min(zs), max(zs)))
    raster = png_read.fields(png.texts["Raster"])
    ox, oy, ppm = float(raster["origin_x"]), float(raster["origin_y"]), float(raster["pixels_per_mm"])
    left, top = int(raster["left"]), int(raster["top"])
    cols, rows = int(raster["columns"]), int(raster["rows"])
    if ppm != 4.0:
        fail("%s: %r pixels a millimetre, expected 4" % (label, ppm))
    xs, ys = [v[0] for v in verts], [v[1] for v in verts]
    # A scan is its mesh alone; an insole's outlines may reach further.
    need_cols = math.ceil(max(xs) * ppm) - math.floor(min(xs) * ppm) + 1
    need_rows = math.ceil(max(ys) * ppm) - math.floor(min(ys) * ppm) + 1
    exact = mesh["name"].startswith("SCAN_")
    if (exact and (cols, rows) != (need_cols, need_rows)) or cols < need_cols or rows < need_rows:
        fail("%s: map %dx%d for an extent of %dx%d pixels" % (label, cols, rows, need_cols, need_rows))
    if png.width < left + cols or png.height < top + rows:
        fail("%s: picture %dx%d too small for its map" % (label, png.width, png.height))
    legend = png_read.fields(png.texts["Legend"])
    bar_x, bar_top = int(legend["left"]), int(legend["top"])
    if png.height < bar_top + LEVELS or int(legend["levels"]) != LEVELS:
        fail("%s: the colour bar does not fit" % label)
    for k in range(LEVELS):
        got = png.pixel(bar_x + 1, bar_top + LEVELS - 1 - k)
        if got != ramp(k):
            fail("%s: colour bar level %d is %s, expected %s" % (label, k, got, ramp(k)))
    # The visible height over a node: the highest vertex there.
    tops = {}
    for v in verts:
        key = (v[0], v[1])
        tops[key] = max(tops.get(key, -math.inf), v[2])
    spots = sorted(tops.items(), key=lambda kv: (kv[1], kv[0]))
    chosen = [spots[0], spots[-1]] + [spots[len(spots) * k // 7] for k in range(1, 7)]
    checked = 0
    for (x, y), z in chosen:
        u, v = (x - ox) * ppm, (y - oy) * ppm
        if u != round(u) or v != round(v):
            continue
        px, py = left + int(u), top + rows - 1 - int(v)
        got, want = png.pixel(px, py), ramp(level(z, lo, hi))
        if got != want:
            fail("%s: node (%r, %r) at height %r shows %s at pixel (%d, %d), the ramp gives %s"
                 % (label, x, y, z, got, px, py, want))
        checked += 1
    if checked < 5:
        fail("%s: only %d chosen nodes lie on pixel centres" % (label, checked))
    return checked


def check_image(png, cloud, label):
    layout = png_read.fields(png.texts["Layout"])
    if layout.get("mode") != "rows":
        fail("%s: image not laid out in rows: %s" % (label, png.texts["Layout"]))
    left, top = int(layout["left"]), int(layout["top"])
    cols, rows = int(layout["columns"]), int(layout["rows"])
    pts, colours = cloud["points"], cloud["colours"]
    if cols * rows != len(pts) or any(p[1] != pts[0][1] for p in pts[:cols]) or pts[cols][1] == pts[0][1]:
        fail("%s: %dx%d pixels for %d points" % (label, cols, rows, len(pts)))
    if png.width < cols + 2 * MARGIN or png.height != top + rows + MARGIN:
        fail("%s: picture %dx%d" % (label, png.width, png.height))
    for k in [0, cols - 1, len(pts) // 3, len(pts) // 2, len(pts) - 1] + list(range(len(pts) // 2, len(pts) // 2 + 40)):
        got = png.pixel(left + k % cols, top + rows - 1 - k // cols)
        if list(got) != colours[k]:
            fail("%s: point %d shows %s, its colour is %s" % (label, k, got, colours[k]))


def main(argv):
    if len(argv) != 3:
        print(__doc__)
        return 2
    velmora, maker, outdir = argv
    os.makedirs(outdir, exist_ok=True)
    archive = os.path.join(outdir, "demo.vlm")
    run([maker, archive])
    first, second = os.path.join(outdir, "first"), os.path.join(outdir, "second")
    for d in (first, second):
        run([velmora, "preview", archive, "-o", d])
    files = sorted(os.listdir(first))
    if files != sorted(os.listdir(second)):
        fail("two previews wrote different files")
    for f in files:
        if open(os.path.join(first, f), "rb").read() != open(os.path.join(second, f), "rb").read():
            fail("two previews wrote different bytes into " + f)
    dump = json.loads(run([velmora, "dump", "--compact", archive]))
    found = []
    items(dump["root"], [dump["root"]["name"]], found)
    pngs = {}
    for f in files:
        if f != "overview.png":
            png = png_read.read(os.path.join(first, f))
            pngs[png.texts["Title"]] = png
    if len(pngs) != len(found) or len(files) != len(found) + 1:
        fail("%d pictures and %d files for %d meshes and clouds" % (len(pngs), len(files), len(found)))
    kinds = {"scan": 0, "insole": 0, "image": 0}
    nodes = 0
    for path, item in found:
        label = "/".join(path)
        png = pngs.get(label)
        if png is None:
            fail("no picture titled " + label)
        kind = png.texts["Kind"]
        if item["type"] == "triblock":
            want = "insole height map" if item["name"].startswith("FINISH_MODEL") else "scan height map"
            if kind != want:
                fail("%s: kind %r, expected %r" % (label, kind, want))
            nodes += check_height_map(png, item, label)
            kinds[want.split()[0]] += 1
        else:
            if kind != "image":
                fail("%s: kind %r, expected an image" % (label, kind))
            check_image(png, item, label)
            kinds["image"] += 1
    if kinds != {"scan": 4, "insole": 4, "image": 4}:
        fail("the demo's pictures: %s" % kinds)
    sheet = png_read.read(os.path.join(first, "overview.png"))
    want_title = "demo.vlm: 4 scans, 4 insoles, 4 images"
    if sheet.texts.get("Title") != want_title or sheet.width != 4 * (200 + 2 * MARGIN):
        fail("overview: %r, %d pixels wide" % (sheet.texts.get("Title"), sheet.width))
    print("%d pictures, %d nodes checked against the ramp: OK" % (len(pngs), nodes))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
