"""Reading text by the vel tool, process start and all, beside NumPy and SciPy:
tool_peers.py VEL FOLDER. Prints seconds, and in brackets those of all processors, which a busy
machine disturbs less; the files are removed."""
import os, subprocess, sys

import numpy as np
import scipy.io, scipy.sparse

vel, folder = sys.argv[1:]
os.chdir(folder)


def seconds(work):
    """Of the clock and of the processors, children included."""
    before = os.times()
    work()
    after = os.times()
    return after.elapsed - before.elapsed, sum(after[:4]) - sum(before[:4])


def compare(what, file, peer, rounds):
    ours, theirs = [
        [min(t) for t in zip(*(seconds(work) for _ in range(rounds)))]
        for work in (
            lambda: subprocess.run([vel, "convert", file, "t.vel"], check=True),
            lambda: peer(file),
        )
    ]
    print("%s: vel %.2f s (%.2f s), peer %.2f s (%.2f s), %.1f (%.1f) times as fast"
          % (what, *ours, *theirs, theirs[0] / ours[0], theirs[1] / ours[1]))


print("peers: NumPy %s, SciPy %s" % (np.__version__, scipy.__version__))
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
