"""Exchanges files with NumPy and SciPy in both directions: exchange.py VEL FOLDER. Exit status 77
when they are not installed."""
import itertools, os, subprocess, sys

try:
    import numpy as np
    import scipy.io, scipy.sparse
except ImportError as missing:
    print("skipped:", missing)
    sys.exit(77)

vel = sys.argv[1]
os.chdir(sys.argv[2])


def convert(*words):
    subprocess.run([vel, "convert", *words], check=True)


def through_vel(name, *options):
    """What comes back of a file that vel turned into a VEL file and back."""
    convert(name, "x.vel", *options)
    convert("x.vel", "back" + os.path.splitext(name)[1])


def same(a, b, what):
    assert a.dtype == b.dtype.newbyteorder("="), what
    assert np.array_equal(a, b, equal_nan=a.dtype.kind in "fc"), what


rng = np.random.default_rng(1)
types = "?bBhHiIqQfdFD"
shapes = [(), (1,), (4,), (0,), (3, 4), (0, 3), (2, 3, 4), (2, 1, 3, 2)]
arrays = {}
for n, (code, shape, order, swapped) in enumerate(
        itertools.product(types, shapes, "CF", (False, True))):
    a = np.asarray(rng.integers(0, 100, shape)).astype(code)
    if code in "FD" and not a.size:
        continue  # an empty array has no imaginary part
    if code in "fdFD" and a.size > 2:
        a.flat[0], a.flat[1] = np.nan, -np.inf
    if code in "FD":
        a.flat[-1] = 1.5 - 2.5j
    arrays["a%d" % n] = np.array(a.astype(a.dtype.newbyteorder()) if swapped else a, order=order)
np.savez(open("a.npz", "wb"), **arrays)
for options in ((), ("--compress",), ("--wide", "--swapped")):
    through_vel("a.npz", *options)
    with np.load("back.npz") as back:
        for name, a in arrays.items():
            same(back[name], a if a.ndim > 1 else a.reshape(-1, 1), (name, a.dtype, a.shape))
for version in ((1, 0), (2, 0), (3, 0)):
    with open("a.npy", "wb") as f:
        np.lib.format.write_array(f, np.arange(6.0).reshape(2, 3), version)
    through_vel("a.npy")
    same(np.load("back.npy"), np.arange(6.0).reshape(2, 3), version)

table = rng.standard_normal((5, 3)) * 10.0 ** rng.integers(-300, 300, (5, 3))
np.savetxt("a.csv", table, delimiter=",", fmt="%.17g")
through_vel("a.csv")
same(np.loadtxt("back.csv", delimiter=","), table, "csv")

sparse = scipy.sparse.random(20, 30, 0.1, format="csr", random_state=2)
for matrix in (sparse, (sparse + 1j * sparse).tocsc(), sparse > 0.5, sparse.tocoo()):
    scipy.sparse.save_npz("s.npz", matrix)
    through_vel("s.npz")
    back = scipy.sparse.load_npz("back.npz")
    assert back.dtype == matrix.dtype and (back != matrix).nnz == 0, "sparse npz"
scipy.sparse.save_npz("wide.npz", scipy.sparse.csr_matrix((1, 10**9)))
refused = subprocess.run([vel, "convert", "wide.npz", "x.vel"], capture_output=True, text=True)
assert (refused.returncode, refused.stderr) == (
    1, "vel: wide.npz: 1000000000 columns take 8000000008 bytes for their starts alone; "
    "--force reads the file nevertheless\n")
square = scipy.sparse.random(9, 9, 0.3, random_state=3).tocsc()
for matrix, symmetry in ((sparse, "general"), (square + square.T, "symmetric"),
                         (square - square.T, "skew-symmetric"),
                         (1j * (square - square.T) + square + square.T, "hermitian")):
    scipy.io.mmwrite("m.mtx", matrix, symmetry=symmetry, precision=17)
    through_vel("m.mtx")
    assert abs(scipy.io.mmread("back.mtx") - matrix).max() == 0, symmetry
