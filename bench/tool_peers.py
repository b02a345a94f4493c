"""Reading text by the vel tool, process start and all, beside NumPy and SciPy:
tool_peers.py VEL FOLDER. Prints seconds; the files are removed."""
import os, subprocess, sys, time

import numpy as np
import scipy.io, scipy.sparse

vel, folder = sys.argv[1:]
os.chdir(folder)


def best(work, rounds=3):
    times = []
    for _ in range(rounds):
        start = time.perf_counter()
        work()
        times.append(time.perf_counter() - start)
    return min(times)


def compare(what, file, peer, rounds):
    ours = best(lambda: subprocess.run([vel, "convert", file, "t.vel"], check=True), rounds)
    theirs = best(lambda: peer(file), rounds)
    print("%s: vel %.2f s, peer %.2f s, %.1f times as fast" % (what, ours, theirs, theirs / ours))


rng = np.random.default_rng(1)
entries = int(os.environ.get("ENTRIES", 10**7))
try:
    np.savetxt("t.csv", rng.random((100000, 10)), delimiter=",", fmt="%.17g")
    compare("CSV of 10^6 numbers", "t.csv", lambda f: np.loadtxt(f, delimiter=","), 3)
    with open("t.mtx", "w") as f:
        f.write("%%%%MatrixMarket matrix coordinate real general\n1000000 1000000 %d\n" % entries)
        for k in range(0, entries, 10**6):
            n = min(10**6, entries - k)
            i, j, x = rng.integers(1, 10**6, n), rng.integers(1, 10**6, n), rng.random(n)
            np.savetxt(f, np.column_stack((i, j, x)), fmt="%d %d %.17g")
    compare("Matrix Market of %d entries" % entries, "t.mtx", scipy.io.mmread, 1)
finally:
    for file in ("t.csv", "t.mtx", "t.vel"):
        if os.path.exists(file):
            os.remove(file)
