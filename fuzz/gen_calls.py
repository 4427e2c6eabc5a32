#!/usr/bin/env python3
"""Generates the call table of every function the public header declares:
each parameter classified (image or array pointer with its step and size
parameters and channel count, opaque state in or out, scalar, structure by
value), an invoker per function, and for functions that take a scratch
buffer the size query whose parameters they share by name.

usage: gen_calls.py rvpcv.h OUT.inc
"""
import re
import sys

SAMPLES = {"Rvp8u": 1, "Rvp8s": 1, "Rvp16u": 2, "Rvp16s": 2, "Rvp32s": 4, "Rvp32u": 4, "Rvp32f": 4, "Rvp64f": 8,
           "void": 1, "int": 4, "RvpiPoint": 8, "RvpiSize": 8, "RvpiRect": 16, "RvpiPoint32f": 8, "RvpPointPolar": 8,
           "RvpiConnectedComp": 48}
SCALARS = {"int": "kInt", "Rvp8u": "kU8", "Rvp8s": "kS8", "Rvp16u": "kU16", "Rvp16s": "kS16", "Rvp32s": "kInt",
           "Rvp32u": "kInt", "Rvp32f": "kF32", "Rvp64f": "kF64", "RvpiSize": "kSize", "RvpiPoint": "kPoint",
           "RvpiRect": "kRect", "RvpiPoint32f": "kPoint32f", "RvpPointPolar": "kPolar"}
FIELDS = {"kInt": "i", "kU8": "u8", "kS8": "s8", "kU16": "u16", "kS16": "s16", "kF32": "f", "kF64": "d",
          "kSize": "size", "kPoint": "pt", "kRect": "rect",
          "kPoint32f": "pt32f", "kPolar": "polar"}


def parse(text):
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    out = []
    for name, params in re.findall(r"RVPAPI\s+RvpStatus\s+(\w+)\s*\(([^;]*?)\)\s*;", text, re.S):
        ps = []
        for p in params.split(","):
            p = " ".join(p.split())
            if not p or p == "void":
                continue
            m = re.match(r"(const\s+)?(\w+)\s*(\**)\s*(\w+)(\[\d+\])?$", p)
            if not m:
                raise SystemExit("cannot read parameter '%s' of %s" % (p, name))
            # An array parameter (T name[N]) is a pointer.
            ps.append({"const": bool(m.group(1)), "type": m.group(2), "stars": len(m.group(3)) + (1 if m.group(5) else 0),
                       "name": m.group(4)})
        out.append((name, ps))
    return out


def channels(fname):
    tail = fname.rsplit("_", 1)[-1]
    cs = [int(c) for c in re.findall(r"C(\d)", tail)]
    return (cs[0], cs[-1]) if cs else (1, 1)


def classify(fname, ps, opaque):
    src_c, dst_c = channels(fname)
    sizes = [i for i, p in enumerate(ps) if p["type"] == "RvpiSize" and p["stars"] == 0]
    rows = []
    for i, p in enumerate(ps):
        t, st, const, n = p["type"], p["stars"], p["const"], p["name"]
        r = {"kind": "", "elem": 0, "ch": 1, "step": -1, "size": -1, "const": int(const), "state": -1,
             "real": int(t in ("Rvp32f", "Rvp64f"))}
        if t in opaque and st == 1 and re.search(r"Init_", fname):
            r["kind"] = "kScratch"  # a state built in the caller's memory, sized by the family's query
        elif t in opaque:
            r["kind"] = "kStateOut" if st == 2 else "kStateIn"
            r["state"] = opaque.index(t)
        elif st == 0:
            r["kind"] = SCALARS[t]
        elif st == 2:
            r["kind"], r["elem"] = "kRows", SAMPLES[t]
            r["ch"] = src_c if const else dst_c
        else:
            r["kind"], r["elem"] = "kData", SAMPLES[t]
            nxt = ps[i + 1] if i + 1 < len(ps) else None
            if nxt and nxt["type"] == "int" and nxt["stars"] == 0 and nxt["name"].lower().endswith("step"):
                r["step"] = i + 1
                role = n[1:].lower()
                named = [j for j in sizes if ps[j]["name"].lower().startswith(role[:3])]
                after = [j for j in sizes if j > i]
                r["size"] = named[0] if named else after[0] if after else sizes[-1] if sizes else -1
                r["ch"] = 1 if "mask" in n.lower() else (src_c if const else dst_c)
            elif "buf" in n.lower() and t == "Rvp8u" and not const:
                r["kind"] = "kScratch"
        rows.append(r)
    return rows


def main():
    header, out = sys.argv[1], sys.argv[2]
    funcs = parse(open(header).read())
    # States: records made by a constructor (taken by address) or passed by
    # pointer with no sample layout of their own.
    opaque = sorted({p["type"] for _, ps in funcs for p in ps if p["stars"] >= 1 and p["type"] not in SAMPLES})
    names = [f for f, _ in funcs]
    queries = [(i, f) for i, f in enumerate(names) if re.search(r"Get(Buffer|Buf)?Size", f)]
    lines = ["// Generated from the public header by gen_calls.py; do not edit.", ""]
    lines.append("static const char* const kStateTypes[] = {%s};" % ", ".join('"%s"' % t for t in opaque) if opaque
                 else "static const char* const kStateTypes[] = {nullptr};")
    lines.append("constexpr int kStateTypeCount = %d;" % len(opaque))
    table = []
    for idx, (f, ps) in enumerate(funcs):
        rows = classify(f, ps, opaque)
        # The size query of a function with a scratch buffer: same type
        # suffix, longest shared stem, every parameter but its output found
        # by name among the function's.
        query, qmap = -1, []
        if any(r["kind"] == "kScratch" for r in rows):
            suffix = f.split("_", 1)[1] if "_" in f else ""
            stem = f.split("_", 1)[0]
            best = 0
            for qi, q in queries:
                qps = funcs[qi][1]
                qsuffix = q.split("_", 1)[1] if "_" in q else ""
                base = re.sub(r"Get(Buffer|Buf)?Size.*", "", q.split("_", 1)[0])
                plain = suffix.replace("IR", "R")
                # A query whose suffix names the function's form beats the
                # plain query of the same stem (GetSize_Grad for Grad forms).
                score = len(base) + (0.5 if qsuffix else 0)
                # The type and form parts of a suffix (8u32f_C1R of Region_8u32f_C1R); a
                # query of the source type (8u_C1R) serves the forms it starts.
                form = [x for x in suffix.split("_") if x[:1].isdigit() or re.match(r"C\d", x)]
                qform = qsuffix.split("_")
                widening = (len(form) == len(qform) > 1 and form[0] != qform[0] and form[0].startswith(qform[0])
                            and form[1:] == qform[1:])
                exact = not qsuffix or qsuffix in (suffix, plain) or suffix.startswith(qsuffix)
                if not exact:
                    score -= 0.25  # a query that names the form exactly wins
                if (not exact and not widening) \
                        or not stem.startswith(base) or score <= best:
                    continue
                m = []
                for qp in qps[:-1]:
                    found = [j for j, p in enumerate(ps) if p["name"] == qp["name"] and p["type"] == qp["type"]]
                    if not found and qp["name"] == "roiWidth":  # the width of the function's roiSize
                        found = [1000 + j for j, p in enumerate(ps) if p["name"] == "roiSize"]
                    # A sample type or channel count the function's name gives: 2000 + its value.
                    if not found and qp["name"] == "dataType":
                        code = {"8u": 1, "16u": 5, "32f": 13}.get(suffix.split("_")[-2] if suffix.count("_") else "")
                        found = [2000 + code] if code else []
                    if not found and qp["name"] == "channels":
                        form = re.search(r"_C([1-4])I?R$", suffix)
                        found = [2000 + int(form.group(1))] if form else []
                    m.append(found[0] if found else -2)
                if -2 in m:
                    continue
                best, query, qmap = score, qi, m
        args = []
        for i, (p, r) in enumerate(zip(ps, rows)):
            k = r["kind"]
            cast = ("const " if p["const"] else "") + p["type"] + "*" * p["stars"]
            if k in FIELDS:
                args.append("a[%d].%s" % (i, FIELDS[k]))
            else:
                args.append("(%s)a[%d].p" % (cast, i))
        lines.append("static int call%d(Arg* a) { return %s(%s); }" % (idx, f, ", ".join(args)))
        plist = ", ".join("{%s, %d, %d, %d, %d, %d, %d, %d, \"%s\"}" % (r["kind"], r["elem"], r["ch"], r["step"],
                                                                       r["size"], r["const"], r["state"], r["real"],
                                                                       p["name"])
                          for p, r in zip(ps, rows))
        lines.append("static const Param kParams%d[] = {%s};" % (idx, plist or "{kInt, 0, 0, -1, -1, 0, -1, 0, \"\"}"))
        qm = ", ".join(str(x) for x in qmap) if qmap else "-1"
        lines.append("static const int kQuery%d[] = {%s};" % (idx, qm))
        table.append("{\"%s\", %d, kParams%d, call%d, %d, kQuery%d}" % (f, len(ps), idx, idx, query, idx))
    lines.append("static const Function kFunctions[] = {\n    %s};" % ",\n    ".join(table))
    lines.append("constexpr int kFunctionCount = %d;" % len(funcs))
    open(out, "w").write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
