#!/usr/bin/python3
"""Times ezdxf loading and saving one DXF file, for comparison with our own load and save.

    ezdxf_probe.py FILE OUTPUT_FOLDER

Prints one line of JSON: load and save seconds and the process's resident-memory high-water
mark before loading, after loading and after saving. Run one process per file so that the
memory figures belong to that file alone. A binary file is saved as binary. A file ezdxf
cannot read gives "error" instead of figures (exit status 0, so a run goes on).
"""
import json
import os
import resource
import sys
import time


def peak_rss_kb():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss  # kilobytes on Linux


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: ezdxf_probe.py FILE OUTPUT_FOLDER")
    path, out_dir = sys.argv[1], sys.argv[2]
    import ezdxf  # after the usage check, and counted in the baseline

    result = {"file": os.path.basename(path), "bytes": os.path.getsize(path),
              "baseline_rss_kb": peak_rss_kb()}
    with open(path, "rb") as f:
        binary = f.read(22) == b"AutoCAD Binary DXF\r\n\x1a\x00"
    try:
        start = time.perf_counter()
        doc = ezdxf.readfile(path)
        result["load_seconds"] = time.perf_counter() - start
        result["load_peak_rss_kb"] = peak_rss_kb()
        saved = os.path.join(out_dir, "ezdxf_probe_save.dxf")
        start = time.perf_counter()
        doc.saveas(saved, fmt="bin" if binary else "asc")
        result["save_seconds"] = time.perf_counter() - start
        result["save_peak_rss_kb"] = peak_rss_kb()
        os.remove(saved)
    except Exception as e:  # any failure of the peer is a result to report, not a crash
        result["error"] = f"{type(e).__name__}: {e}"[:200]
    print(json.dumps(result))


if __name__ == "__main__":
    main()
