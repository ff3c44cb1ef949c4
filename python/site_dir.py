"""Prints the folder under PREFIX (argv[1]) where this python finds modules.

A folder this python already reads wins (on Debian /usr/lib/python3/dist-packages
for /usr, /usr/local/lib/python3.X/dist-packages for /usr/local, the user's
site-packages for ~/.local); for any other prefix the standard
PREFIX/lib/python3.X/site-packages, which PYTHONPATH or a virtual environment
then names. The folder is always two below PREFIX/lib, where the module finds
the host's library.
"""
import os
import site
import sys
import sysconfig

prefix = os.path.abspath(sys.argv[1])
known = site.getsitepackages() + [site.getusersitepackages()]
for folder in known:
    rel = os.path.relpath(folder, prefix)
    if rel.startswith("lib" + os.sep) and rel.count(os.sep) == 2:
        print(folder)
        break
else:
    print(sysconfig.get_path("platlib", "posix_prefix", vars={"base": prefix, "platbase": prefix}))
