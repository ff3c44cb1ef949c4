#!/usr/bin/env python3
"""Cross-check of m0BspCurve against scipy.interpolate.BSpline.

Runs the crosscheck_bsp program given as the first argument, which prints
random clamped curves with the points and first two derivatives that
m0BspCurve computes. Each curve is rebuilt here in homogeneous form, the
polynomial B-spline of (w*x, w*y, w*z, w), and scipy evaluates it and its
derivatives; the rational point and derivatives follow by the quotient rule.
Every value must agree to 1e-9 relative to the size of that quantity over the
curve. Prints the largest difference found; exits 1 on any disagreement.
"""
import subprocess
import sys

import numpy as np
from scipy.interpolate import BSpline

TOLERANCE = 1e-9


def parse(text):
    curves = []
    cur = None
    for line in text.splitlines():
        fields = line.split()
        if not fields:
            continue
        tag, nums = fields[0], [float(v) for v in fields[1:]]
        if tag == "curve":
            cur = {"degree": int(nums[0]), "n": int(nums[1]), "rational": int(nums[2]),
                   "knots": None, "cpnts": [], "evals": []}
        elif tag == "knots":
            cur["knots"] = np.array(nums)
        elif tag == "cpnt":
            cur["cpnts"].append(nums)
        elif tag == "eval":
            cur["evals"].append(nums)
        elif tag == "end":
            curves.append(cur)
            cur = None
        else:
            raise ValueError("unexpected line: " + line)
    return curves


def reference(curve):
    """Points, first and second derivatives at the printed parameters."""
    cp = np.array(curve["cpnts"])
    xyz, w = cp[:, :3], cp[:, 3]
    homogeneous = np.column_stack([xyz * w[:, None], w])
    spline = BSpline(curve["knots"], homogeneous, curve["degree"], extrapolate=True)
    ts = np.array([e[0] for e in curve["evals"]])
    h0, h1, h2 = spline(ts, 0), spline(ts, 1), spline(ts, 2)
    a0, a1, a2 = h0[:, :3], h1[:, :3], h2[:, :3]
    w0, w1, w2 = h0[:, 3:], h1[:, 3:], h2[:, 3:]
    p = a0 / w0
    d1 = (a1 - p * w1) / w0
    d2 = (a2 - 2.0 * d1 * w1 - p * w2) / w0
    return p, d1, d2


def main():
    if len(sys.argv) != 2:
        print("usage: crosscheck_bsp.py PROGRAM", file=sys.stderr)
        return 2
    out = subprocess.run([sys.argv[1]], check=True, capture_output=True, text=True).stdout
    curves = parse(out)
    if not curves:
        print("crosscheck_bsp: the program printed no curves")
        return 1
    names = ("point", "first_der", "second_der")
    worst = {name: (0.0, None) for name in names}
    failures = 0
    values = 0
    for index, curve in enumerate(curves):
        ours = np.array(curve["evals"])
        mine = (ours[:, 1:4], ours[:, 4:7], ours[:, 7:10])
        for name, got, want in zip(names, mine, reference(curve)):
            scale = max(np.abs(want).max(), 1e-300)
            diff = np.abs(got - want).max(axis=1) / scale
            values += diff.size
            k = int(np.argmax(diff))
            if diff[k] > worst[name][0]:
                worst[name] = (float(diff[k]), (index, ours[k, 0]))
            bad = np.nonzero(diff > TOLERANCE)[0]
            for b in bad[:3]:
                print(f"curve {index} (degree {curve['degree']}, rational {curve['rational']}) "
                      f"{name} at t={ours[b, 0]!r}: relative difference {diff[b]:.3e}")
            failures += bad.size
    for name in names:
        rel, where = worst[name]
        at = f" (curve {where[0]}, t={where[1]!r})" if where else ""
        print(f"largest relative difference of {name}: {rel:.3e}{at}")
    print(f"{len(curves)} curves, {values} values compared against scipy.interpolate.BSpline, "
          f"tolerance {TOLERANCE:g}")
    if failures:
        print(f"{failures} values disagree")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
