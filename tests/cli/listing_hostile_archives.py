#!/usr/bin/env python3
"""Hostile archives never make `velmora inspect` crash or hang: each fixture is
named after the one thing wrong with it. The command exits 0 with a listing
(valid JSON) or 3 with one line on stderr; it never dies of a signal, never
runs past the time limit, and what it lists stays within what the archive
holds."""

import json
import os
import random
import shutil
import sys
import tempfile
import zipfile
import zlib

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import vlmtest  # noqa: E402

TIME_LIMIT = 60  # seconds per run; the worst fixture here takes well under one


def zip_of(path, entries, method=zipfile.ZIP_DEFLATED):
    with zipfile.ZipFile(path, "w", method) as z:
        for name, data in entries:
            z.writestr(name, data)


def raw_chunk(header_c, header_d, payload, lower=False):
    fmt = b"%08x" if lower else b"%08X"
    return b"ZIP000000" + fmt % header_c + fmt % header_d + payload


CATALOGUE_OK = b"-\n1,A,B\n3,1,4,0,101,d,n,0,c,0,1\n"


def fixtures():
    """name -> (bytes of the file or None when written by a function, writer)."""
    comp = zlib.compress(b"PCSC" + bytes(1000))
    f = {}
    f["not_a_zip"] = b"this is a text file\n" * 10
    f["empty_file"] = b""
    f["zip_signature_only"] = b"PK\x05\x06" + bytes(18)
    f["chunk_size_lowercase_hex"] = [("VLM00001.dat", raw_chunk(len(comp), 1004, comp, lower=True)),
                                     ("00000.vlk", CATALOGUE_OK)]
    f["chunk_declares_4gib_output"] = [("VLM00001.dat", raw_chunk(len(comp), 0xFFFFFFFF, comp)),
                                       ("00000.vlk", CATALOGUE_OK)]
    f["chunk_compressed_size_beyond_entry"] = [("VLM00001.dat", raw_chunk(0x7FFFFFFF, 1004, comp))]
    f["chunk_compressed_size_max"] = [("VLM00001.dat", raw_chunk(0xFFFFFFFF, 0xFFFFFFFF, comp))]
    f["chunk_zlib_corrupt"] = [("VLM00001.dat", raw_chunk(len(comp), 1004, b"\x00" * len(comp))),
                               ("00000.vlk", CATALOGUE_OK)]
    f["chunk_inflates_short"] = [("VLM00001.dat", raw_chunk(len(comp), 4000, comp)),
                                 ("00000.vlk", CATALOGUE_OK)]
    f["chunk_header_cut"] = [("VLM00001.dat", vlmtest.chunk(b"PCSC1234")[:20])]
    f["chunk_payload_cut"] = [("VLM00001.dat", vlmtest.chunk(b"PCSC" + bytes(5000))[:40])]
    f["chunks_over_512"] = [("VLM00001.dat", b"".join(vlmtest.chunk(b"x") for _ in range(600)))]
    f["chunk_inflates_32mib"] = [("VLM00001.dat", vlmtest.chunk(bytes(32 << 20), 9))]
    f["catalogue_empty_lines_only"] = [("00000.vlk", b"-\n" + b"\n" * 5000)]
    f["catalogue_lone_unknown_levels"] = [("00000.vlk", b"-\n" + b"7\n" * 3000)]
    f["catalogue_commas_only"] = [("00000.vlk", b"-\n" + b"," * 9990)]
    f["catalogue_separator_last_byte"] = [("00000.vlk", b"header\n-")]
    f["catalogue_without_separator"] = [("00000.vlk", b"1,A,B\n" * 100)]
    f["catalogue_over_buffer"] = [("00000.vlk", b"-\n" + b"3,1,4,0,101,d,n,0,c,0,1\n" * 2000)]
    f["catalogue_nul_bytes"] = [("00000.vlk", b"-\n1,\x00\x00,\x00\n3\x00,1\n")]
    f["catalogue_huge_numbers"] = [("00000.vlk", b"-\n3,99999999999999999999,-5,4294967296,1,d,n,0,c,0,"
                                    b"99999999999999999999999\n")]
    f["entry_names_many"] = [("VLM%05d.dat" % (i % 100000), vlmtest.chunk(b"PCSC")) for i in range(3000)]
    f["entry_is_directory"] = [("folder/", b""), ("folder/VLM00001.dat", vlmtest.chunk(b"PCSC"))]
    f["entry_name_invalid_utf8"] = "invalid_utf8"
    f["zip_truncated"] = "truncated"
    return f


def write_invalid_utf8(path):
    # The name is patched after writing: zipfile only writes names it can encode.
    zip_of(path, [("VLM\u00aa\u00aa012.dat", vlmtest.chunk(b"PCSC")), ("00000.vlk", CATALOGUE_OK)],
           zipfile.ZIP_STORED)
    data = open(path, "rb").read().replace("VLM\u00aa\u00aa012.dat".encode("utf-8"), b"VLM\xff\xfe\xfd\xfc012.dat")
    open(path, "wb").write(data)


def write_truncated(path):
    zip_of(path, [("VLM00001.dat", vlmtest.chunk(b"PCSC" + bytes(4000))), ("00000.vlk", CATALOGUE_OK)])
    data = open(path, "rb").read()
    open(path, "wb").write(data[: len(data) // 2])


def write_fixture(path, recipe):
    if recipe == "invalid_utf8":
        write_invalid_utf8(path)
    elif recipe == "truncated":
        write_truncated(path)
    elif isinstance(recipe, bytes):
        open(path, "wb").write(recipe)
    else:
        zip_of(path, recipe)


def check_run(checks, velmora, name, path):
    try:
        status, out, err = vlmtest.run(velmora, "inspect", "--json", path, timeout=TIME_LIMIT)
    except Exception as e:  # the time limit
        checks.check(name + " finishes", False, str(e))
        return None
    checks.check(name + " exits 0 or 3", status in (0, 3), f"status {status}: {err[-500:]!r}")
    if status == 3:
        checks.check(name + " one stderr line naming the file",
                     err.count(b"\n") == 1 and path.encode() in err, repr(err))
        return None
    if status != 0:
        return None
    try:
        return json.loads(out)
    except ValueError as e:
        checks.check(name + " JSON parses", False, str(e))
        return None


def check_listing(checks, name, listing):
    for e in listing["entries"]:
        if e["kind"] == "catalogue":
            checks.check(name + " catalogue size within buffer", e["size"] <= vlmtest.CATALOGUE_BUFFER)
        if e["size"] is not None:
            checks.check(name + " size not negative", e["size"] >= 0)


def specific(checks, name, listing):
    """What the fixtures that have one right answer must show."""
    if listing is None:
        return
    entries = listing["entries"]
    if name == "not_a_zip" or name == "empty_file":
        checks.check(name + " is unreadable", False, "was listed")
    if name == "chunks_over_512":
        checks.equal(name + " chunk count capped", entries[0]["chunks"], 512)
        checks.equal(name + " size", entries[0]["size"], 512)
    if name == "chunk_inflates_32mib":
        checks.equal(name + " size", entries[0]["size"], 32 << 20)
    if name == "entry_names_many":
        checks.equal(name + " all listed", len(entries), 3000)
    if name == "catalogue_lone_unknown_levels" or name == "catalogue_empty_lines_only":
        checks.equal(name + " no records", listing["catalogues"][0]["records"], [])
    if name == "catalogue_over_buffer":
        checks.equal(name + " size", listing["catalogues"][0]["size"], vlmtest.CATALOGUE_BUFFER)
    if name == "entry_name_invalid_utf8":
        checks.equal(name + " name", entries[0]["name"], vlmtest.text_of(b"VLM\xff\xfe\xfd\xfc012.dat"))


def mutations(checks, velmora, tmp, count):
    """Random byte changes of a valid archive: whatever the damage, no crash."""
    base = os.path.join(tmp, "base.vlm")
    zip_of(base, [("VLM00012.dat", vlmtest.chunk_chain(b"PCSC" + bytes(range(256)) * 8, 700)),
                  ("00000.vlk", b"-\n1,A,B\n2,C,D\n3,1,4,0,101,d,n,0,c,0,12\n")], zipfile.ZIP_STORED)
    data = open(base, "rb").read()
    rnd = random.Random(7)
    for i in range(count):
        m = bytearray(data)
        for _ in range(rnd.randrange(1, 8)):
            m[rnd.randrange(len(m))] = rnd.randrange(256)
        path = os.path.join(tmp, "mutated_%03d.vlm" % i)
        open(path, "wb").write(bytes(m))
        listing = check_run(checks, velmora, "mutated_%03d" % i, path)
        if listing is not None:
            check_listing(checks, "mutated_%03d" % i, listing)
        os.remove(path)


def main():
    velmora = sys.argv[1]
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 150
    checks = vlmtest.Checks()
    tmp = tempfile.mkdtemp(prefix="velmora_hostile_")
    try:
        for name, recipe in fixtures().items():
            path = os.path.join(tmp, name + ".vlm")
            write_fixture(path, recipe)
            listing = check_run(checks, velmora, name, path)
            if listing is not None:
                check_listing(checks, name, listing)
            specific(checks, name, listing)
        mutations(checks, velmora, tmp, count)
    finally:
        shutil.rmtree(tmp)
    return checks.finish("listing_hostile_archives")


if __name__ == "__main__":
    sys.exit(main())
