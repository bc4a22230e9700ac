"""ezdxf, an independent DXF implementation, reads every drawing `stcheck convert` writes.

For each drawing of the corpus that ezdxf reads, the drawing is converted to ASCII and to
binary with the built stcheck; ezdxf must read both conversions and see the same table
records, the same counts of entities and objects by type and the same handles as it sees
in the original. Exits 77 (skipped) when the corpus or ezdxf is missing.
"""

import argparse
import collections
import concurrent.futures
import os
import subprocess
import sys
import tempfile

SKIPPED = 77

# Conversions ezdxf cannot be expected to read, and why.
UNREADABLE_CONVERSIONS = {
    ("preR12_AC2.10_libredwg_entities.dxf", "--binary"):
        "binary DXF began with R10; ezdxf compares $ACADVER as text, takes AC2.10 for a "
        "release after R13 and expects 2-byte group codes",
}

TABLES = ("layers", "linetypes", "styles", "dimstyles", "appids", "ucs", "views",
          "block_records")


def summary(ezdxf, path):
    doc = ezdxf.readfile(path)
    tables = {}
    for name in TABLES:
        table = getattr(doc, name, None)
        if table is not None:
            tables[name] = sorted(str(entry.dxf.name) for entry in table)
    types = collections.Counter(e.dxftype() for e in doc.entitydb.values())
    handles = sorted(str(h) for h in doc.entitydb.keys())
    return tables, types, handles


def check(args):
    stcheck, original, folder = args
    import ezdxf  # each worker process imports it once
    name = os.path.basename(original)
    try:
        expected = summary(ezdxf, original)
    except Exception as e:  # ezdxf cannot read the original either: nothing to compare
        return name, "skipped", "ezdxf cannot read the original: %s" % type(e).__name__
    problems = []
    for flag in ("--ascii", "--binary"):
        if (name, flag) in UNREADABLE_CONVERSIONS:
            continue
        out = os.path.join(folder, flag[2:] + "_" + name)
        run = subprocess.run([stcheck, "convert", original, out, flag], capture_output=True,
                             text=True)
        if run.returncode != 0:
            problems.append("%s: stcheck failed: %s" % (flag, run.stderr.strip()))
            continue
        try:
            actual = summary(ezdxf, out)
        except Exception as e:
            problems.append("%s: ezdxf cannot read the conversion: %r" % (flag, e))
            continue
        for label, want, got in zip(("tables", "types", "handles"), expected, actual):
            if want != got:
                problems.append("%s: %s differ" % (flag, label))
        os.remove(out)
    return name, "failed" if problems else "ok", "; ".join(problems)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--stcheck", required=True)
    parser.add_argument("--corpus", required=True)
    options = parser.parse_args()
    try:
        import ezdxf  # noqa: F401
    except ImportError:
        print("ezdxf is not installed: skipped")
        return SKIPPED
    if not os.path.isdir(options.corpus):
        print("the shared corpus is absent (%s): skipped" % options.corpus)
        return SKIPPED
    drawings = sorted(os.path.join(options.corpus, f) for f in os.listdir(options.corpus)
                      if f.lower().endswith(".dxf") and not f.startswith("bad_"))
    counts = collections.Counter()
    with tempfile.TemporaryDirectory(prefix="staudit-oracle-") as folder:
        jobs = [(options.stcheck, d, folder) for d in drawings]
        with concurrent.futures.ProcessPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
            for name, status, detail in pool.map(check, jobs):
                counts[status] += 1
                if status != "ok":
                    print("%s: %s %s" % (status, name, detail))
    print("%d drawings: %d ok, %d skipped, %d failed" %
          (len(drawings), counts["ok"], counts["skipped"], counts["failed"]))
    return 1 if counts["failed"] or counts["ok"] == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
