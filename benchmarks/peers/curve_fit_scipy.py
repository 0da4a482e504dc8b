#!/usr/bin/env python3
"""Curve fits beside SciPy's make_lsq_spline, in turns, for the same points, parameters and knots.

Usage: curve_fit_scipy.py PATH_OF_libnorvek_math.so [threads are best held to one by OMP_NUM_THREADS=1]
"""
import ctypes
import sys
import time

import numpy as np
from scipy.interpolate import make_lsq_spline

ORDER = 4


class Curve(ctypes.Structure):
    _fields_ = [("order", ctypes.c_int), ("count", ctypes.c_int), ("knots", ctypes.c_void_p),
                ("start", ctypes.c_double), ("end", ctypes.c_double), ("points", ctypes.c_void_p)]


class Comm(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in ("reserved", "work", "knots", "points")]


create = getattr(ctypes.CDLL(sys.argv[1]), "_Z16spd_create_curveiPdPiP9NURBSCurvP8spd_Comm")


def measure(rows, count):
    knots = np.clip((np.arange(count + ORDER) - ORDER + 1) / (count - ORDER + 1), 0, 1)
    # Parameters spread like the control points': evenly spread ones cannot be interpolated.
    greville = [knots[j + 1:j + ORDER].mean() for j in range(count)]
    t = np.interp(np.linspace(0, count - 1, rows), np.arange(count), greville)
    points = np.ascontiguousarray(np.stack([np.cos(40 * t), np.sin(40 * t), 30 * t], 1)) * 1e3
    t = np.r_[0, np.cumsum(np.linalg.norm(np.diff(points, axis=0), axis=1))]
    t /= t[-1]
    ours, theirs = [], []
    for _ in range(max(9, min(200, 200000 // rows))):
        own_knots, own = np.zeros(count + ORDER), np.zeros((count, 4))
        options = (ctypes.c_int * 5)(0, 100, 0, 0, 0)
        curve = Curve(ORDER, count, own_knots.ctypes.data, 0, 0, own.ctypes.data)
        begin = time.perf_counter()
        status = create(rows, points.ctypes.data_as(ctypes.c_void_p), options,
                        ctypes.byref(curve), ctypes.byref(Comm(0, 2 ** 31 - 1, 0, 0)))
        ours.append(time.perf_counter() - begin)
        assert status == 0
        begin = time.perf_counter()
        spline = make_lsq_spline(t, points, knots, ORDER - 1)
        theirs.append(time.perf_counter() - begin)
        assert np.abs(spline.c - own[:, :3]).max() < 1e-6
    a, b = np.median(ours) * 1e6, np.median(theirs) * 1e6
    print(f"{rows} x {count}: {a:.1f} us, SciPy {b:.1f} us, ratio {a / b:.2f}")


for shape in ((100, 20), (2000, 200), (1448, 1448), (20000, 10), (200000, 10)):
    measure(*shape)
