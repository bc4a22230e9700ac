#!/usr/bin/python3
"""Times ezdxf's drawing add-on (matplotlib, Agg raster) on one DXF file, the peer of
view_probe:

    ezdxf_draw_probe.py FILE [REPEAT]

Prints one line of JSON: load seconds; first paint (load, drawing model space into the figure
and rendering it at 1600 x 1000 pixels); a redraw at extents and one at a hundredth of the
extents' size about the middle (each the median of REPEAT, default 3); the process's
resident-memory high-water mark. A file the add-on cannot draw gives "error" instead of figures
(exit status 0, so a run goes on).
"""
import json
import os
import resource
import statistics
import sys
import time


def peak_rss_kb():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss  # kilobytes on Linux


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit("usage: ezdxf_draw_probe.py FILE [REPEAT]")
    path = sys.argv[1]
    repeat = int(sys.argv[2]) if len(sys.argv) == 3 else 3
    import logging
    import matplotlib
    matplotlib.use("Agg")
    # A drawing's shape fonts are no system fonts: one fallback each, not a line per text.
    logging.getLogger("matplotlib.font_manager").setLevel(logging.ERROR)
    import matplotlib.pyplot as plt
    import ezdxf
    from ezdxf.addons.drawing import Frontend, RenderContext
    from ezdxf.addons.drawing.matplotlib import MatplotlibBackend

    result = {"file": os.path.basename(path), "baseline_rss_kb": peak_rss_kb()}
    try:
        start = time.perf_counter()
        doc = ezdxf.readfile(path)
        result["load_seconds"] = time.perf_counter() - start
        fig = plt.figure(figsize=(16, 10), dpi=100)
        ax = fig.add_axes([0, 0, 1, 1])
        Frontend(RenderContext(doc), MatplotlibBackend(ax)).draw_layout(
            doc.modelspace(), finalize=True)
        fig.canvas.draw()
        result["first_paint_seconds"] = time.perf_counter() - start

        def redraw_ms():
            t = time.perf_counter()
            fig.canvas.draw()
            return (time.perf_counter() - t) * 1000.0

        result["extents_ms"] = statistics.median(redraw_ms() for _ in range(repeat))
        (x0, x1), (y0, y1) = ax.get_xlim(), ax.get_ylim()
        cx, cy, w, h = (x0 + x1) / 2, (y0 + y1) / 2, (x1 - x0) / 200, (y1 - y0) / 200
        ax.set_xlim(cx - w, cx + w)
        ax.set_ylim(cy - h, cy + h)
        result["zoom_ms"] = statistics.median(redraw_ms() for _ in range(repeat))
        result["peak_rss_kb"] = peak_rss_kb()
    except Exception as e:  # any failure of the peer is a result to report, not a crash
        result["error"] = f"{type(e).__name__}: {e}"[:200]
    print(json.dumps(result))


if __name__ == "__main__":
    main()
