#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets into DIR/archive,
DIR/chunk_chain and DIR/catalogue: small well-formed inputs of each layer and
a few with one thing wrong, made by code so that no binary is committed."""

import io
import os
import sys
import zipfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "cli"))
import vlmtest  # noqa: E402

CATALOGUES = {
    "plain": b"header\n----------\n1,Alpha,Beta\n2,Patient,One\n3,1,4,0,101,2024-03-01,Scan,7,c,0,12\n"
             b"3,3,5,4,101,2024-03-02,Model,1,c,2,14\n",
    "crlf": b"-\r\n1,Alpha,Beta\r\n3,1,4,0,101,d,n,0,c,0,12\r\n",
    "quirks": b"-\n\n7\nx3,1,4,0,101,d,n\n9,2,G,H\n1,no line end",
    "no_separator": b"1,A,B\n",
}


def zip_bytes(entries, method):
    out = io.BytesIO()
    with zipfile.ZipFile(out, "w", method) as z:
        for name, data in entries:
            z.writestr(name, data)
    return out.getvalue()


def main():
    root = sys.argv[1]
    for sub in ("archive", "chunk_chain", "catalogue"):
        os.makedirs(os.path.join(root, sub), exist_ok=True)

    def put(sub, name, data):
        with open(os.path.join(root, sub, name), "wb") as f:
            f.write(data)

    for name, text in CATALOGUES.items():
        put("catalogue", name, text)
    scan = b"PCSC" + bytes(range(256)) * 3
    put("chunk_chain", "one_chunk", vlmtest.chunk(scan))
    put("chunk_chain", "three_chunks", vlmtest.chunk_chain(scan, 300))
    put("chunk_chain", "lowercase_hex", vlmtest.chunk(scan, lower=True))
    put("chunk_chain", "bad_magic_then_chunk", vlmtest.chunk(b"x", magic=b"ZAP") + vlmtest.chunk(b"0001"))
    entries = [("VLM00012.dat", vlmtest.chunk_chain(scan, 300)), ("VLM00014.dat", vlmtest.chunk(b"0001\n")),
               ("00000.vlk", CATALOGUES["plain"])]
    put("archive", "stored", zip_bytes(entries, zipfile.ZIP_STORED))
    put("archive", "deflated", zip_bytes(entries, zipfile.ZIP_DEFLATED))
    put("archive", "catalogue_first", zip_bytes(entries[::-1], zipfile.ZIP_STORED))
    put("archive", "two_catalogues", zip_bytes(entries + [("VLM00015.dat", vlmtest.chunk(b"PCIM")),
                                                          ("XY00000.vlk", CATALOGUES["crlf"])],
                                               zipfile.ZIP_STORED))


if __name__ == "__main__":
    main()
