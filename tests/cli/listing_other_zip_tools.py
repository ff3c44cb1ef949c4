#!/usr/bin/env python3
"""`velmora inspect --json` on archives written by other ZIP tools: Python's
zipfile (stored, deflated, streamed with data descriptors, zip64) and Info-ZIP
`zip` (stored and deflated). Every entry, every decoded chunk chain (size and
sha256 of what was written) and every catalogue record must come out as the
reader's walk gives them."""

import io
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import zipfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import vlmtest  # noqa: E402

CATALOGUE = (
    b"Velmora catalogue\r\n"
    b"exported by the archiving program\n"
    b"----------------------------\n"
    b"1,Praxis Nord,Dr. M\xfcller\n"                       # Latin-1 byte: not UTF-8
    b"2,Patient 0815,Erika\r\n"                             # CR stays in name1
    b"3,1,4,0,101,2024-03-01,Scan links,7,first scan,0,12\n"
    b"3,1,5,0,102,2024-03-01,Bild rechts,7,image,0,13\n"
    b"x3,3,6,4,101,2024-03-02,Modell,1,comment \xe2\x82\xac,2,14,extra,fields\n"
    b"3,1,7,0,101,2024-03-03,short\n"                       # fields missing at the end
    b"3,1,8,0,101,d,n,0,c,0,15\n"
    b"3,1,9,0,101,d,n,0,c,0,16\n"
    b"3,1,10,0,101,d,n,0,c,0,0\n"
    b"3,1,11,0,101,d,n,0,c,0,17\n"
    b"3,1,12,0,101,d,n,0,c,0,99\n"
    b"\n"                                                   # empty line
    b"7\n"                                                  # lone unknown level
    b"9,2,Gruppe,B\n"                                       # unknown level, then a level-2 record
    b"2,last,line"                                          # no line end at all
)

SECOND_CATALOGUE = b"-\r\n1,A,B\r\n3,1,4,0,101,d,n,0,c,0,18\r\n3,1,5,0,101,d,n,0,c,0,12\r\n"


def content_entries():
    """(name, stored bytes, decoded content or None, chunks) in archive order."""
    rnd = random.Random(20240301)
    scan = b"PCSC" + bytes(rnd.randrange(256) for _ in range(5000))
    image = b"PCIM" + bytes(rnd.randrange(4) for _ in range(300))
    contour = b"0001\n[Rohlingsdaten]\nLaenge=250.0\n" * 40
    pieces = [
        ("VLM00012.dat", vlmtest.chunk_chain(scan, 2000), scan, 3),
        ("VLM00013.dat", vlmtest.chunk_chain(image, 1000), image, 1),
        ("VLM00014.dat", vlmtest.chunk_chain(contour, 64), contour, vlmtest.chunk_count(contour, 64)),
        ("VLM00015.dat", vlmtest.chunk(b"PC!"), b"PC!", 1),
        ("notes.txt", b"not part of the data\n", None, 0),
        ("D\u00fcsseldorf00016.dat", vlmtest.chunk(b"\x01\x02\x03\x04rest"), b"\x01\x02\x03\x04rest", 1),
        ("data.dat", vlmtest.chunk(b"0001 short name"), b"0001 short name", 1),
        ("VLM00017.dat", b"no chunk header here, just 37 bytes", None, 0),
        ("00000.vlk", CATALOGUE, None, 0),
        ("VLM00018.dat", vlmtest.chunk(b"PCSC after"), b"PCSC after", 1),
        ("XY00000.vlk", SECOND_CATALOGUE, None, 0),
        ("ABCD00001.vlk", b"-\n1,not,read\n", None, 0),
    ]
    return [(n.encode("utf-8"), s, c, k) for n, s, c, k in pieces]


class Unseekable(io.RawIOBase):
    """A write-only file that cannot seek, so zipfile writes data descriptors."""

    def __init__(self, f):
        self.f = f

    def writable(self):
        return True

    def write(self, b):
        return self.f.write(b)


def write_zipfile(path, entries, method, streamed=False, zip64=False):
    def fill(z):
        for name, stored, _, _ in entries:
            info = zipfile.ZipInfo(name.decode("utf-8"), date_time=(2024, 3, 1, 12, 0, 0))
            info.compress_type = method
            with z.open(info, "w", force_zip64=zip64) as w:
                w.write(stored)
    if streamed:
        with open(path, "wb") as f, zipfile.ZipFile(Unseekable(f), "w") as z:
            fill(z)
    else:
        with zipfile.ZipFile(path, "w") as z:
            fill(z)


def write_infozip(path, entries, level):
    work = tempfile.mkdtemp(prefix="velmora_infozip_")
    try:
        for name, stored, _, _ in entries:
            with open(os.path.join(work.encode(), name), "wb") as f:
                f.write(stored)
        names = [n for n, _, _, _ in entries]
        subprocess.run([b"zip", b"-q", b"-X", b"-%d" % level, os.path.abspath(path).encode()] + names,
                       cwd=work, check=True)
    finally:
        shutil.rmtree(work)


def check_statuses(checks, velmora, tmp):
    """Exit statuses and diagnostics of the built command."""
    status, out, err = vlmtest.run(velmora, "--version")
    checks.check("--version", status == 0 and out.startswith(b"velmora "), repr((status, out)))
    status, out, err = vlmtest.run(velmora)
    checks.check("no command is wrong usage", status == 2 and err.count(b"\n") == 1, repr((status, err)))
    status, out, err = vlmtest.run(velmora, "inspect", "--bogus", "x.vlm")
    checks.check("unknown option is wrong usage", status == 2 and b"--bogus" in err, repr((status, err)))
    missing = os.path.join(tmp, "missing.vlm")
    status, out, err = vlmtest.run(velmora, "inspect", missing)
    checks.equal("missing file status", status, 3)
    checks.equal("missing file message", err, b"velmora inspect: " + missing.encode() + b": no such file\n")
    text = os.path.join(tmp, "text.vlm")
    open(text, "wb").write(b"PK but not really a zip\n")
    status, out, err = vlmtest.run(velmora, "inspect", "--json", text)
    checks.equal("not a ZIP status", status, 3)
    checks.equal("not a ZIP message", err, b"velmora inspect: " + text.encode() + b": not a ZIP archive\n")
    checks.equal("not a ZIP prints no listing", out, b"")


def main():
    velmora = sys.argv[1]
    checks = vlmtest.Checks()
    entries = content_entries()
    want = vlmtest.expected_listing(entries)
    checks.check("model sees three catalogues", len(want["catalogues"]) == 3)
    tmp = tempfile.mkdtemp(prefix="velmora_e2e_")
    writers = {
        "zipfile_stored": lambda p: write_zipfile(p, entries, zipfile.ZIP_STORED),
        "zipfile_deflated": lambda p: write_zipfile(p, entries, zipfile.ZIP_DEFLATED),
        "zipfile_streamed_data_descriptors": lambda p: write_zipfile(p, entries, zipfile.ZIP_DEFLATED, streamed=True),
        "zipfile_zip64": lambda p: write_zipfile(p, entries, zipfile.ZIP_STORED, zip64=True),
        "infozip_stored": lambda p: write_infozip(p, entries, 0),
        "infozip_deflated": lambda p: write_infozip(p, entries, 9),
    }
    try:
        check_statuses(checks, velmora, tmp)
        for tool, write in writers.items():
            path = os.path.join(tmp, tool + ".vlm")
            write(path)
            status, out, err = vlmtest.run(velmora, "inspect", "--json", path)
            checks.equal(tool + " exit status", status, 0)
            checks.equal(tool + " stderr", err, b"")
            got = json.loads(out)
            checks.equal(tool + " key order", list(got.keys()), list(want.keys()))
            for i, (g, w) in enumerate(zip(got["entries"], want["entries"])):
                checks.equal(f"{tool} entry {i} {w['name']}", g, w)
                checks.equal(f"{tool} entry {i} key order", list(g.keys()), list(w.keys()))
            checks.equal(tool + " entry count", len(got["entries"]), len(want["entries"]))
            for i, (g, w) in enumerate(zip(got["catalogues"], want["catalogues"])):
                checks.equal(f"{tool} catalogue {i}", g, w)
            checks.equal(tool + " catalogue count", len(got["catalogues"]), len(want["catalogues"]))
            # Bytes that are not UTF-8 are written as their own value.
            checks.check(tool + " Latin-1 byte escaped", b"Dr. M\\u00fcller" in out)
            checks.check(tool + " carriage return kept", b'"Erika\\r"' in out)
            status, table, err = vlmtest.run(velmora, "inspect", path)
            checks.equal(tool + " table exit status", status, 0)
            checks.check(tool + " table lists the data entry", b"VLM00012.dat" in table)
    finally:
        shutil.rmtree(tmp)
    return checks.finish("listing_other_zip_tools")


if __name__ == "__main__":
    sys.exit(main())
