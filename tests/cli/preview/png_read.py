"""A reader of 8-bit RGB and RGBA PNG files without interlacing (those
velmora writes and a browser's screenshots), with nothing but zlib: the
pixels row by row and the tEXt chunks."""
import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"


class Png:
    def __init__(self, width, height, rows, texts, bpp):
        self.width = width
        self.height = height
        self.rows = rows  # bytes objects, bpp bytes a pixel
        self.texts = texts
        self.bpp = bpp

    def pixel(self, x, y):
        """The red, green and blue of the pixel at (x, y)."""
        r, k = self.rows[y], self.bpp * x
        return (r[k], r[k + 1], r[k + 2])


def _paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    if pa <= pb and pa <= pc:
        return a
    return b if pb <= pc else c


def read(path):
    data = open(path, "rb").read()
    if data[:8] != SIGNATURE:
        raise ValueError(path + ": not a PNG file")
    pos, idat, texts, ihdr, seen_end = 8, b"", {}, None, False
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        crc = struct.unpack(">I", data[pos + 8 + length:pos + 12 + length])[0]
        if zlib.crc32(kind + body) != crc:
            raise ValueError("%s: bad CRC in %s" % (path, kind))
        if kind == b"IHDR":
            ihdr = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        elif kind == b"tEXt":
            key, _, value = body.partition(b"\0")
            texts[key.decode("latin-1")] = value.decode("latin-1")
        elif kind == b"IEND":
            seen_end = True
            break
        pos += 12 + length
    if ihdr is None or not seen_end:
        raise ValueError(path + ": no IHDR or IEND")
    width, height, depth, colour, _, _, interlace = ihdr
    if depth != 8 or colour not in (2, 6) or interlace != 0:
        raise ValueError("%s: not 8-bit RGB or RGBA without interlacing" % path)
    bpp = 3 if colour == 2 else 4
    raw = zlib.decompress(idat)
    stride = width * bpp
    if len(raw) != height * (stride + 1):
        raise ValueError(path + ": wrong amount of pixel data")
    rows, prev = [], bytearray(stride)
    for y in range(height):
        f = raw[y * (stride + 1)]
        line = bytearray(raw[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for i in range(stride):
            a = line[i - bpp] if i >= bpp else 0
            b = prev[i]
            c = prev[i - bpp] if i >= bpp else 0
            if f == 1:
                line[i] = (line[i] + a) & 255
            elif f == 2:
                line[i] = (line[i] + b) & 255
            elif f == 3:
                line[i] = (line[i] + ((a + b) >> 1)) & 255
            elif f == 4:
                line[i] = (line[i] + _paeth(a, b, c)) & 255
            elif f != 0:
                raise ValueError("%s: unknown filter %d" % (path, f))
        rows.append(bytes(line))
        prev = line
    return Png(width, height, rows, texts, bpp)


def fields(text):
    """'a=1 b=2' as a dict of strings; a leading word without '=' is 'mode'."""
    out = {}
    for word in text.split():
        if "=" in word:
            k, v = word.split("=", 1)
            out[k] = v
        else:
            out["mode"] = word
    return out
