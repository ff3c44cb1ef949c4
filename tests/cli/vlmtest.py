"""Helpers of the command-line checks: archive pieces written the way the
archiving program writes them, a model of how the reader walks an archive,
and a runner of the velmora command."""

import codecs
import hashlib
import json
import subprocess
import zlib

CATALOGUE_BUFFER = 10000


def chunk(data: bytes, level: int = 6, magic: bytes = b"ZIP", lower: bool = False) -> bytes:
    """One chunk: a 25-byte header ("ZIP", 6 filler bytes, compressed and
    decompressed size as 8 hexadecimal characters) and the zlib stream."""
    comp = zlib.compress(data, level)
    fmt = b"%08x" if lower else b"%08X"
    return magic + b"000000" + fmt % len(comp) + fmt % len(data) + comp


def chunk_chain(data: bytes, size: int) -> bytes:
    return b"".join(chunk(data[i:i + size]) for i in range(0, len(data), size)) if data else b""


def chunk_count(data: bytes, size: int) -> int:
    return (len(data) + size - 1) // size


def entry_kind_number(name: bytes):
    """The reader's classification of an entry name: (type, number)."""
    t = 0
    if len(name) > 4:
        if name[-4:] == b".dat":
            t = 1
        elif name[-4:] == b".vlk":
            t = 2
    if len(name) <= 9:
        return t, 0
    return t, text_int(name[-9:-4])


def text_int(field: bytes) -> int:
    v = 0
    for b in field:
        if 48 <= b <= 57:
            v = (v * 10 + b - 48) & 0xFFFFFFFF
    return v - (1 << 32) if v >= (1 << 31) else v


def parse_catalogue(buf: bytes):
    """The catalogue parser's records: (separator met, [record dict, ...])."""
    st = {"pos": 0}
    end = len(buf)

    def at(c):
        return st["pos"] < end and buf[st["pos"]] == c

    def pass_line():
        p = st["pos"]
        while p < end and buf[p] != 10:
            p += 1
        if p < end:
            p += 2 if end - p > 1 and buf[p + 1] == 13 else 1
        st["pos"] = p

    def field():
        p = st["pos"]
        q = p
        while q < end and buf[q] not in (44, 10):
            q += 1
        st["pos"] = q + 1 if q < end and buf[q] == 44 else q
        return buf[p:q]

    while st["pos"] < end and not at(45):
        pass_line()
    if not at(45):
        return False, []
    pass_line()
    records = []
    while st["pos"] < end:
        level = text_int(field())
        if level in (1, 2):
            r = {"level": level, "name0": field(), "name1": field()}
            pass_line()
            records.append(r)
        elif level == 3:
            r = {"level": 3}
            r["type1"], r["indx"], r["ref_indx"], r["type2"] = (text_int(field()) for _ in range(4))
            r["date"], r["name1"] = field(), field()
            field()
            r["comment"] = field()
            field()
            r["data_indx"] = text_int(field())
            pass_line()
            records.append(r)
        elif at(10):
            pass_line()
    return True, records


def chain_end(stored: bytes) -> str:
    """Why the reader's walk of a chunk chain ends, for chains whose sizes are
    sound (no negative size, far from the reader's bounds)."""
    at = 0
    while len(stored) - at >= 25:
        header = stored[at:at + 25]
        at += 25
        if header[:3] != b"ZIP":
            continue
        c = int(header[9:17], 16)
        if len(stored) - at < c:
            return "cut_short"
        at += c
    return "cut_short" if at < len(stored) else "end"


def magic(content):
    if content is None or len(content) < 4:
        return None
    return "".join(chr(b) if 0x20 <= b <= 0x7E else "?" for b in content[:4])


def expected_listing(entries):
    """The listing the reader's walk gives for entries, a list of
    (name bytes, stored bytes, decoded content or None, chunk count)."""
    out_entries, catalogues, visible = [], [], []
    for name, stored, content, chunks in entries:
        t, number = entry_kind_number(name)
        e = {"name": text_of(name), "kind": ["other", "data", "catalogue"][t], "number": number,
             "stored_size": len(stored), "size": None, "chunks": 0, "chain": None, "magic": None,
             "sha256": None}
        if t == 1:
            e["size"] = len(content) if content else 0
            e["chunks"] = chunks
            e["chain"] = chain_end(stored)
            if content:
                visible.append((number, content))
        elif t == 2:
            content = stored[:CATALOGUE_BUFFER]
            e["size"] = len(content)
        if t in (1, 2) and content:
            e["magic"] = magic(content)
            e["sha256"] = hashlib.sha256(content).hexdigest()
        out_entries.append(e)
        if t == 2:
            catalogues.append(expected_catalogue(name, number, content, visible))
            visible = []
    # The reasons are the reader's to give; the model only places the key.
    return {"format": "velmora-inspect", "version": 1, "entries": out_entries, "catalogues": catalogues,
            "reasons": None}


def expected_catalogue(name, number, content, visible):
    found = number == 0 and len(content) > 0
    separator, records = parse_catalogue(content) if found else (False, [])
    out = []
    for r in records:
        o = {k: (text_of(v) if isinstance(v, bytes) else v) for k, v in r.items()}
        if r["level"] == 3:
            o = {k: o[k] for k in ("level", "type1", "indx", "ref_indx", "type2", "date", "name1",
                                   "comment", "data_indx")}
            hit = [c for n, c in visible if n == r["data_indx"]]
            o["data"] = magic(hit[0]) if hit else "missing"
        out.append(o)
    return {"entry": text_of(name), "number": number, "size": len(content), "found": found,
            "separator": separator, "records": out}


def _byte_values(err):
    return "".join(chr(b) for b in err.object[err.start:err.end]), err.end


codecs.register_error("velmora_byte_values", _byte_values)


def text_of(raw: bytes) -> str:
    """What a JSON string of the command reads back as: valid UTF-8 as its
    characters, any other byte as the character of its own value."""
    return raw.decode("utf-8", errors="velmora_byte_values")


def run(velmora, *args, timeout=60):
    p = subprocess.run([velmora, *args], capture_output=True, timeout=timeout)
    return p.returncode, p.stdout, p.stderr


class Checks:
    def __init__(self):
        self.failures = 0
        self.count = 0

    def check(self, what, ok, detail=""):
        self.count += 1
        if not ok:
            self.failures += 1
            print(f"FAIL {what} {detail}")

    def equal(self, what, got, want):
        if got != want:
            self.check(what, False, "\n  got:  " + json.dumps(got, ensure_ascii=False)[:2000] +
                       "\n  want: " + json.dumps(want, ensure_ascii=False)[:2000])
        else:
            self.check(what, True)

    def finish(self, name):
        print(f"{name}: {self.count - self.failures}/{self.count} checks passed")
        return 1 if self.failures else 0
