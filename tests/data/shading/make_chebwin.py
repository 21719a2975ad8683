#!/usr/bin/python3
"""Reference Dolph-Chebyshev windows for the shading tests.

Computed by scipy.signal.windows.chebwin, which works through a transform,
so it checks the library's direct Chebyshev sum independently. Run once with
Debian's python3-scipy; the output, chebwin.txt, is committed beside it:

    /usr/bin/python3 tests/data/shading/make_chebwin.py > tests/data/shading/chebwin.txt

Each line: attenuation in dB (positive), point count, then the window's
values, greatest value 1, printed with 17 significant digits.
"""
import warnings

import scipy
from scipy.signal.windows import chebwin

warnings.simplefilter("ignore")  # chebwin warns below 45 dB; the values are still exact

print(f"# scipy {scipy.__version__} chebwin(n, at, sym=True): at n w[0] .. w[n-1]")
for at in (15, 20, 25, 30, 35, 40):
    for n in (1, 2, 3, 4, 5, 8, 15, 16, 17, 32, 63, 64, 96, 128, 256):
        w = chebwin(n, at, sym=True)
        print(at, n, " ".join(f"{v:.17g}" for v in w))
