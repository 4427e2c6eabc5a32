"""The C declarations of the library, read from its own headers.

The public headers are turned into cffi declarations once per process: the
preprocessor lines are evaluated (nothing is defined but the headers' own
guards), the export macros dropped, integer #defines kept, inline function
bodies dropped. Every exported function is then callable as lib.<name>,
with argument types checked by cffi; the comment above each prototype in
the header is kept as its documentation.
"""
import os
import re

import cffi

from . import _config

LIBRARY = "librvpcvm7.so.7.1"
CORE = "librvpcore.so.7.1"
HEADERS = ("rvpcv.h", "rvpcore.h")


def _find(name, env, configured):
    """A file from the environment variable `env` (a file or a directory),
    else from the configured directory, else the bare name."""
    for base in (os.environ.get(env), configured):
        if not base:
            continue
        path = base if os.path.isfile(base) else os.path.join(base, name)
        if os.path.isfile(path):
            return path
    return name


def _directory(path):
    here = os.path.dirname(os.path.abspath(__file__))
    return path if os.path.isabs(path) else os.path.normpath(os.path.join(here, path))


_INT = re.compile(r"^(-?(?:0[xX][0-9a-fA-F]+|\d+))[uUlL]*$")


def declarations(text):
    """cffi declarations from a header's text."""
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r"//[^\n]*", "", text)
    text = re.sub(r"\\\n", " ", text)
    out, active, defined = [], [True], set()
    for line in text.split("\n"):
        s = line.strip()
        if not s.startswith("#"):
            if all(active):
                out.append(line)
            continue
        words = s[1:].split()
        d = words[0] if words else ""
        if d in ("ifdef", "ifndef"):
            known = words[1] in defined
            active.append(known if d == "ifdef" else not known)
        elif d == "if":
            active.append(False)  # the headers test only what is not defined here
        elif d == "else":
            active[-1] = not active[-1]
        elif d == "endif":
            active.pop()
        elif d == "define" and all(active) and len(words) >= 2:
            defined.add(words[1])
            value = " ".join(words[2:])
            m = _INT.match(value)
            if m and "(" not in words[1]:
                out.append("#define %s %s" % (words[1], m.group(1)))
    text = "\n".join(out)
    text = re.sub(r"\bRVP(?:CORE)?API\b", "", text)
    # Inline function definitions: drop from the header to the matching brace.
    while True:
        m = re.search(r"static\s+inline[^;{]*\{", text)
        if not m:
            break
        depth, i = 1, m.end()
        while depth:
            depth += {"{": 1, "}": -1}.get(text[i], 0)
            i += 1
        text = text[: m.start()] + text[i:]
    return text


def documentation(text):
    """{function name: the comment that stands above its prototype}."""
    docs, last = {}, ""
    for m in re.finditer(r"/\*(.*?)\*/|\bRVP(?:CORE)?API\s+[\w\s\*]+?\b(\w+)\s*\(", text, flags=re.S):
        if m.group(1) is not None:
            lines = [re.sub(r"^\s*\*\s?", "", l) for l in m.group(1).strip().split("\n")]
            last = " ".join(l.strip() for l in lines if l.strip())
        else:
            docs[m.group(2)] = last
    return docs


def _load():
    include = _directory(_config.INCLUDE_DIR)
    libdir = _directory(_config.LIBRARY_DIR)
    texts = []
    for h in HEADERS:
        path = _find(h, "RVPCV_INCLUDE", include)
        with open(path) as f:
            texts.append(f.read())
    ffi = cffi.FFI()
    ffi.cdef("\n".join(declarations(t) for t in texts))
    core = ffi.dlopen(_find(CORE, "RVPCV_LIBRARY_DIR", libdir))
    lib = ffi.dlopen(_find(LIBRARY, "RVPCV_LIBRARY_DIR", libdir))
    docs = {}
    for t in texts:
        docs.update(documentation(t))
    return ffi, lib, core, docs


ffi, lib, core, docs = _load()
