#!/usr/bin/env python3
"""Compares the interpolating splines printed by crosscheck_spline with scipy.

Open splines are compared with CubicSpline given the same first derivatives at
both ends (the spline's end tangents are derivatives with respect to its own
chord-length parameter, so they are passed as they are); closed ones, whose
parameters are evenly spaced, with the periodic CubicSpline. Both are also
compared a little beyond their ends, where each continues its end cubics. Points and
tangents must agree to 1e-9 relative to the size of the case's coordinates.
Usage: crosscheck_spline.py EXECUTABLE
"""
import json
import subprocess
import sys

import numpy as np
from scipy.interpolate import CubicSpline

TOLERANCE = 1e-9


def reference(case):
    u = np.array(case["params"])
    p = np.array(case["points"])
    t = np.array(case["tangents"])
    if case["kind"] == "open":
        return CubicSpline(u, p, bc_type=((1, t[0]), (1, t[-1])))
    steps = np.diff(u)
    if np.max(np.abs(steps - steps.mean())) > 1e-12 * steps.mean():
        raise SystemExit(f"{case['name']}: closed case is not evenly spaced")
    # Beyond its ends the spline continues its end segments' cubics, as ours does,
    # rather than repeating itself.
    return CubicSpline(u, p, bc_type="periodic", extrapolate=True)


def compare(case):
    spline = reference(case)
    scale = max(1.0, float(np.max(np.abs(np.array(case["points"])))))
    samples = case["samples"]
    at = np.array([s[0] for s in samples])
    ours = np.array([s[1] for s in samples])
    point_diff = float(np.max(np.abs(spline(at) - ours))) / scale
    u = np.array(case["params"])
    tangent_diff = float(np.max(np.abs(spline(u, 1) - np.array(case["tangents"])))) / scale
    return point_diff, tangent_diff


def main():
    if len(sys.argv) != 2:
        raise SystemExit("usage: crosscheck_spline.py EXECUTABLE")
    out = subprocess.run([sys.argv[1]], check=True, capture_output=True, text=True).stdout
    cases = json.loads(out)
    worst = 0.0
    failed = []
    for case in cases:
        point_diff, tangent_diff = compare(case)
        largest = max(point_diff, tangent_diff)
        if not largest <= TOLERANCE:
            failed.append(case["name"])
        worst = largest if not largest <= worst else worst
        print(f"{case['name']:34s} points {point_diff:.3e}  tangents {tangent_diff:.3e}")
    print(f"largest relative difference over {len(cases)} splines: {worst:.3e} (tolerance {TOLERANCE:g})")
    if failed:
        print("beyond tolerance: " + ", ".join(failed))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
