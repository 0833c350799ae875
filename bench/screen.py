"""Looks at an X display and presses its keys and buttons from this process: what a person sees and
does, to the millisecond, without starting another program each time."""

import ctypes
import ctypes.util
import time

_X = ctypes.CDLL(ctypes.util.find_library("X11") or "libX11.so.6")
_TEST = ctypes.CDLL(ctypes.util.find_library("Xtst") or "libXtst.so.6")

_ALL_PLANES = ctypes.c_ulong(-1)
_Z_PIXMAP = 2


class _Image(ctypes.Structure):
    # The beginning of XImage; the rest is not needed.
    _fields_ = [("width", ctypes.c_int), ("height", ctypes.c_int), ("xoffset", ctypes.c_int),
                ("format", ctypes.c_int), ("data", ctypes.c_void_p), ("byte_order", ctypes.c_int),
                ("bitmap_unit", ctypes.c_int), ("bitmap_bit_order", ctypes.c_int),
                ("bitmap_pad", ctypes.c_int), ("depth", ctypes.c_int),
                ("bytes_per_line", ctypes.c_int)]


_X.XOpenDisplay.restype = ctypes.c_void_p
_X.XDefaultRootWindow.restype = ctypes.c_ulong
_X.XGetImage.restype = ctypes.POINTER(_Image)
_X.XStringToKeysym.restype = ctypes.c_ulong
_X.XKeysymToKeycode.restype = ctypes.c_ubyte
_X.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]


class Screen:
    """The root window of a display."""

    def __init__(self, display):
        self._display = ctypes.c_void_p(_X.XOpenDisplay(display.encode()))
        self._root = ctypes.c_ulong(_X.XDefaultRootWindow(self._display))

    def pixels(self, x, y, width, height):
        """The bytes of a rectangle, four for each pixel: blue, green, red, unused."""
        image = _X.XGetImage(self._display, self._root, x, y, width, height, _ALL_PLANES, _Z_PIXMAP)
        data = ctypes.string_at(image.contents.data, image.contents.bytes_per_line * height)
        _X.XDestroyImage(image)
        return data

    def wait_for(self, condition, rectangle, what, timeout=60.0):
        """Looks until the pixels of a rectangle meet a condition; the time then, in seconds."""
        deadline = time.monotonic() + timeout
        while not condition(self.pixels(*rectangle)):
            if time.monotonic() > deadline:
                raise TimeoutError(f"waited {timeout:g} s in vain for {what}")
            time.sleep(0.0005)
        return time.monotonic()

    def click(self, x, y):
        """Clicks; the time at which the button went down, in seconds."""
        _TEST.XTestFakeMotionEvent(self._display, -1, x, y, ctypes.c_ulong(0))
        _X.XSync(self._display, 0)
        begin = time.monotonic()
        for down in (1, 0):
            _TEST.XTestFakeButtonEvent(self._display, 1, down, ctypes.c_ulong(0))
        _X.XSync(self._display, 0)
        return begin

    def press(self, key):
        """Presses and releases a key by its X name; the time at which it went down, in seconds."""
        code = _X.XKeysymToKeycode(self._display, _X.XStringToKeysym(key.encode()))
        begin = time.monotonic()
        for down in (1, 0):
            _TEST.XTestFakeKeyEvent(self._display, code, down, ctypes.c_ulong(0))
        _X.XSync(self._display, 0)
        return begin
