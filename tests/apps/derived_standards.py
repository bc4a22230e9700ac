#!/usr/bin/env python3
"""Standards derived from real drawings, and what a fix made of a drawing, read with ezdxf.

derive DRAWING STANDARD
    Writes STANDARD: the drawing with other colours, linetypes, lineweights, fonts, width
    factors and dimension variables, and every other record of each table renamed to a near
    miss (A-WALL -> A_WALL, CENTER2 -> CENTER-2). Exit 3, saying why, when ezdxf cannot read the
    drawing or write a standard from it.

verify ORIGINAL BACKUP FIXED STANDARD FIRST_REPORT SECOND_REPORT
    Prints "ok", or one line per fault: the backup differs from the original; something
    refers to a record that is gone; a fixed property or name differs from the standard's;
    an object the fix had no need to change is not byte for byte the same (objects paired by
    handle); the second check still reports a problem the first one fixed.
"""

import json
import logging
import re
import sys

import ezdxf

logging.disable(logging.WARNING)  # ezdxf's warnings about a drawing are not our findings
from ezdxf.lldxf.tagger import binary_tags_loader
from ezdxf.tools.codepage import toencoding

TABLES = ("LAYER", "LTYPE", "STYLE", "DIMSTYLE")
KEEP = {"0", "DEFPOINTS", "BYLAYER", "BYBLOCK", "CONTINUOUS", ""}
WEIGHTS = [0, 5, 9, 13, 15, 18, 20, 25, 30, 35, 40, 50, 53, 60, 70, 80, 90, 100, 106, 120]
DIMVARS = {"dimscale": 2.0, "dimtxt": 3.5, "dimasz": 2.5, "dimexe": 1.25}


def near_miss(name):
    """A name a drafter could have typed for `name`: separators swapped, or a separator put
    before a trailing number (CENTER2 -> CENTER-2). Names that differ only in case are the same
    name to every reader, so a change of case is no near miss."""
    if "-" in name:
        return name.replace("-", "_")
    if "_" in name:
        return name.replace("_", "-")
    if " " in name:
        return name.replace(" ", "_")
    m = re.fullmatch(r"(.*[^0-9])([0-9]+)", name)
    return f"{m.group(1)}-{m.group(2)}" if m else None


def loose(name):
    return re.sub(r"[-_ .]", "", name.casefold())


def table(doc, kind):
    return {"LAYER": doc.layers, "LTYPE": doc.linetypes, "STYLE": doc.styles,
            "DIMSTYLE": doc.dimstyles}[kind]


def derive(drawing, standard):
    try:
        doc = ezdxf.readfile(drawing)
    except Exception as e:  # noqa: BLE001 - any refusal is a reason to skip
        print(f"ezdxf cannot read it: {e}")
        return 3
    # A standard needs only the tables; dropping the geometry also drops text ezdxf cannot write.
    for layout in doc.layouts:
        layout.delete_all_entities()
    for block in doc.blocks:
        if not block.is_any_layout:
            block.delete_all_entities()
    linetypes = [lt.dxf.name for lt in doc.linetypes if lt.dxf.name.upper() not in KEEP]
    renamed_ltypes = {}
    for kind in TABLES:
        records = [r for r in table(doc, kind)]
        # A name whose near miss the table already has would make two candidates.
        looseCount = {}
        for r in records:
            looseCount[loose(r.dxf.name)] = looseCount.get(loose(r.dxf.name), 0) + 1
        for i, record in enumerate(records):
            name = record.dxf.name
            if kind == "LAYER":
                color = record.dxf.get("color", 7)
                record.dxf.color = (abs(color) % 7 + 1) * (-1 if color < 0 else 1)
                record.dxf.discard("true_color")  # or it would stand for the old colour
                if linetypes:
                    now = record.dxf.get("linetype", "Continuous")
                    record.dxf.linetype = linetypes[(i + len(now)) % len(linetypes)]
                if doc.loaded_dxfversion >= "AC1015":
                    lw = record.dxf.get("lineweight", -3)
                    record.dxf.lineweight = WEIGHTS[(WEIGHTS.index(lw) + 1) % len(WEIGHTS)] \
                        if lw in WEIGHTS else 25
            elif kind == "STYLE":
                if record.dxf.get("flags", 0) & 1 or not name:
                    continue
                font = record.dxf.get("font", "")
                record.dxf.font = "txt" if font.lower().startswith("romans") else "romans.shx"
                width = record.dxf.get("width", 1.0)
                record.dxf.width = 0.8 if abs(width - 0.8) > 1e-9 else 1.0
            elif kind == "DIMSTYLE":
                for var, value in DIMVARS.items():
                    old = record.dxf.get(var, 0.0)
                    record.dxf.set(var, value if abs(old - value) > 1e-9 else value * 2)
            if i % 2 == 1 and name.upper() not in KEEP and not name.startswith("*"):
                new = near_miss(name)
                if new and new != name and looseCount[loose(name)] == 1:
                    record.dxf.name = new
                    if kind == "LTYPE":
                        renamed_ltypes[name.upper()] = new
    for layer in doc.layers:
        lt = layer.dxf.get("linetype", "").upper()
        if lt in renamed_ltypes:
            layer.dxf.linetype = renamed_ltypes[lt]
    try:
        doc.saveas(standard)
    except Exception as e:  # noqa: BLE001
        print(f"ezdxf cannot write a standard for it: {e}")
        return 3
    return 0


# --- The objects of a file, as read -------------------------------------------------------

UNICODE = re.compile(r"\\U\+([0-9A-Fa-f]{4})")


class Drawing:
    """Objects of a file as lists of (code, value, text): value decoded, text the tag's
    bytes as stored (both lines in an ASCII file) so that padding and line ends count."""

    def __init__(self, path):
        data = open(path, "rb").read()
        self.objects = []
        if data.startswith(b"AutoCAD Binary DXF"):
            tags = [(t.code, str(t.value), repr(t.value)) for t in binary_tags_loader(data)]
        else:
            enc = self.sniff_encoding(data)
            if data.startswith(b"\xef\xbb\xbf"):
                data = data[3:]
            lines = data.split(b"\n")
            tags = []
            for i in range(0, len(lines) - 1, 2):
                code = lines[i].strip()
                if not code.lstrip(b"-").isdigit():
                    break
                value = lines[i + 1].rstrip(b"\r").decode(enc, "replace")
                value = UNICODE.sub(lambda m: chr(int(m.group(1), 16)), value)
                tags.append((int(code), value.strip(), lines[i] + b"\n" + lines[i + 1]))
        for tag in tags:
            if tag[0] == 0 or not self.objects:
                self.objects.append([])
            self.objects[-1].append(tag)
        self.index()

    @staticmethod
    def sniff_encoding(data):
        if b"AC1021" in data[:4096] or b"AC1024" in data[:4096] or b"AC1027" in data[:4096] \
                or b"AC1032" in data[:4096]:
            return "utf-8"
        m = re.search(rb"\$DWGCODEPAGE\s*\r?\n\s*3\r?\n([^\r\n]*)", data[:20000])
        page = m.group(1).decode("ascii", "replace").strip().upper() if m else "ANSI_1252"
        return toencoding(page)

    def index(self):
        self.by_key = {}
        self.names = {kind: {} for kind in TABLES}  # casefolded name -> handle
        self.handles = set()
        section, counts = "", {}
        for obj in self.objects:
            kind = obj[0][1] if obj[0][0] == 0 else ""
            if kind == "SECTION":
                section = next((v for c, v, _ in obj if c == 2), "")
            # The header holds $HANDSEED under group 5: it is no object of its own.
            handle = None if kind == "SECTION" else \
                next((v.upper() for c, v, _ in obj[1:] if c in (5, 105)), None)
            if kind in TABLES and section == "TABLES":
                name = next((v for c, v, _ in obj if c == 2), "")
                self.names[kind][name.casefold()] = handle or name
                key = handle or (kind, name.casefold())
            elif handle:
                key = handle
            else:
                n = counts.get((section, kind), 0)
                counts[(section, kind)] = n + 1
                key = (section, kind, n)
            if handle:
                self.handles.add(handle)
            self.by_key[key] = obj


REFERENCE_CODES = set(range(320, 370)) | {390}
NAME_REFS = {8: "LAYER", 6: "LTYPE"}
STYLE_USERS = {"TEXT", "MTEXT", "ATTRIB", "ATTDEF"}


def name_refs(obj):
    """(code, table, name) of the names an entity or record refers to."""
    kind = obj[0][1] if obj[0][0] == 0 else ""
    for code, value, _ in obj[1:]:
        if code in NAME_REFS and kind not in TABLES:
            yield code, NAME_REFS[code], value
        elif code == 6 and kind == "LAYER":
            yield code, "LTYPE", value
        elif code == 7 and kind in STYLE_USERS:
            yield code, "STYLE", value
        elif code == 3 and kind == "DIMENSION":
            yield code, "DIMSTYLE", value


def dangling(drawing):
    found = set()
    for key, obj in drawing.by_key.items():
        for code, value, _ in obj[1:]:
            if code in REFERENCE_CODES and value not in ("0", "") and \
                    value.upper() not in drawing.handles:
                found.add((str(key), obj[0][1], code, value.upper()))
        for code, kind, name in name_refs(obj):
            if name.upper() not in KEEP and name.casefold() not in drawing.names[kind]:
                found.add((str(key), obj[0][1], code, name))
    return found


def verify(original, backup, fixed, standard, first, second):
    faults = []
    if open(original, "rb").read() != open(backup, "rb").read():
        faults.append("the backup is not the original")
    before, after = Drawing(backup), Drawing(fixed)
    try:
        std, fixed_doc = ezdxf.readfile(standard), ezdxf.readfile(fixed)
    except Exception as e:  # noqa: BLE001
        return [f"ezdxf cannot read the fixed drawing: {e}"]

    # One line a missing record, naming the first object that refers to it.
    missing = {}
    for key, kind, code, value in sorted(dangling(after) - dangling(before)):
        missing.setdefault((code, value), []).append(f"{kind} {key}")
    for (code, value), users in missing.items():
        more = f" and {len(users) - 1} more" if len(users) > 1 else ""
        faults.append(f"{users[0]}{more} refer by group {code} to {value}, which is gone")

    # Names and properties of records the standard defines.
    std_names = {kind: {plain(r).casefold(): r for r in table(std, kind)} for kind in TABLES}
    std_loose = {kind: {loose(n): plain(r) for n, r in std_names[kind].items()}
                 for kind in TABLES}
    for kind in TABLES:
        for record in table(fixed_doc, kind):
            name = plain(record)
            if name.casefold() not in after.names[kind]:
                continue  # made up by ezdxf, which completes what a drawing leaves out
            want = std_names[kind].get(name.casefold())
            if want is None:
                if loose(name) in std_loose[kind]:
                    faults.append(f"{kind} {name} is still not named "
                                  f"{std_loose[kind][loose(name)]}")
                continue
            if plain(want) != name and name.upper() not in KEEP:
                faults.append(f"{kind} {name} is spelled {plain(want)} in the standard")
            for attr, have, should in compared(kind, record, want, fixed_doc, std):
                if have != should:
                    faults.append(f"{kind} {name} {attr} is {have}, the standard's {should}")

    # Objects the fix had no reason to change.
    loose_count = {kind: {} for kind in TABLES}
    for kind in TABLES:
        for n in before.names[kind]:
            loose_count[kind][loose(n)] = loose_count[kind].get(loose(n), 0) + 1
    gone = {kind: set(before.names[kind]) - set(after.names[kind]) for kind in TABLES}
    gone_names = {n for kind in TABLES for n in gone[kind]}
    gone_handles = {str(before.names[k][n]).upper() for k in TABLES for n in gone[k]}
    for key, old in before.by_key.items():
        new = after.by_key.get(key)
        kind = old[0][1] if old[0][0] == 0 else ""
        if new is None:
            name = next((v for c, v, _ in old if c == 2), "")
            if kind not in TABLES:
                faults.append(f"{kind} {key} was removed")
            elif isinstance(key, str) and loose_count[kind].get(loose(name)) == 1:
                faults.append(f"{kind} {name} ({key}) was replaced, not renamed in place")
            continue
        if [t[2] for t in old] == [t[2] for t in new]:
            continue
        if kind in TABLES:
            name = next((v for c, v, _ in new if c == 2), "")
            if name.casefold() in std_names[kind] or loose(name) in std_loose[kind]:
                continue
            faults.append(f"{kind} {name} ({key}) changed, though the standard has no such record")
            continue
        if not allowed_change(kind, old, new, gone_names, gone_handles):
            faults.append(f"{kind or 'object'} {key} changed though it refers to nothing the fix "
                          f"changed: {first_difference(old, new)}")
    for key, new in after.by_key.items():
        kind = new[0][1] if new[0][0] == 0 else ""
        if key not in before.by_key and kind not in TABLES:
            faults.append(f"{kind} {key} was added")

    # The second check reports none of the problems the first one fixed.
    fixed_problems = [p for p in problems(first) if p.get("fixed")]
    for p in problems(second):
        for f in fixed_problems:
            same_props = {x["name"] for x in p.get("properties") or []} & \
                {x["name"] for x in f.get("properties") or []}
            if p["plugin"] == f["plugin"] and p.get("handle") == f.get("handle") and \
                    (p["title"] == f["title"] or same_props):
                faults.append(f"still reported after the fix: {p['title']}")
                break
    return faults


def plain(record):
    """A record's name with the escapes of its file undone, as the kernel reads it."""
    return UNICODE.sub(lambda m: chr(int(m.group(1), 16)), record.dxf.name)


def compared(kind, record, want, doc, std):
    get = lambda r, a, d=None: r.dxf.get(a, d)  # noqa: E731
    if kind == "LAYER":
        yield "colour", abs(get(record, "color", 7)), abs(get(want, "color", 7))
        yield "linetype", get(record, "linetype", "").casefold(), get(want, "linetype", "").casefold()
        if doc.loaded_dxfversion >= "AC1015" and std.loaded_dxfversion >= "AC1015":
            yield "lineweight", get(record, "lineweight", -3), get(want, "lineweight", -3)
    elif kind == "STYLE":
        yield "font", get(record, "font", "").casefold(), get(want, "font", "").casefold()
        yield "width", round(get(record, "width", 1.0), 6), round(get(want, "width", 1.0), 6)
    elif kind == "DIMSTYLE":
        for var in DIMVARS:
            yield var, round(get(record, var, 0.0), 6), round(get(want, var, 0.0), 6)


def allowed_change(kind, old, new, gone_names, gone_handles):
    """An object may change only where it named a record the fix took away."""
    if kind == "TABLE":
        return all(a[2] == b[2] or a[0] == 70 for a, b in zip(old, new)) and len(old) == len(new)
    if kind == "SECTION":  # the header: $HANDSEED, and variables naming a replaced record
        before, after = header_variables(old), header_variables(new)
        for var in set(before) | set(after):
            a, b = before.get(var), after.get(var)
            if var == "$HANDSEED" or a == b:
                continue
            if a is None or b is None or len(a) != len(b):
                return False
            for x, y in zip(a, b):
                if x[2] != y[2] and not (x[1].casefold() in gone_names or
                                         x[1].upper() in gone_handles or
                                         loose(x[1]) == loose(y[1])):
                    return False
        return True
    if len(old) != len(new):
        return False
    for a, b in zip(old, new):
        if a[2] == b[2]:
            continue
        if a[0] != b[0]:
            return False
        # Retargeted from a record that went, or to the standard's spelling of its name.
        if not (a[1].casefold() in gone_names or a[1].upper() in gone_handles
                or (a[0] not in REFERENCE_CODES and loose(a[1]) == loose(b[1]))):
            return False
    return True


def header_variables(section):
    variables, name = {}, None
    for tag in section:
        if tag[0] == 9:
            name = tag[1]
            variables[name] = []
        elif name:
            variables[name].append(tag)
    return variables


def first_difference(old, new):
    for a, b in zip(old, new):
        if a[2] != b[2]:
            return f"group {a[0]} {a[1]!r} -> group {b[0]} {b[1]!r}" + \
                (" (same value, other bytes)" if a[:2] == b[:2] else "")
    return f"{len(old)} tags -> {len(new)} tags"


def problems(report):
    drawings = json.load(open(report))["drawings"]
    return [p for d in drawings for p in d.get("problems") or []]


def main(argv):
    if len(argv) == 4 and argv[1] == "derive":
        return derive(argv[2], argv[3])
    if len(argv) == 8 and argv[1] == "verify":
        faults = verify(*argv[2:])
        if len(faults) > 40:  # a fault repeated over thousands of objects says it in forty
            faults = faults[:40] + [f"... and {len(faults) - 40} more"]
        print("\n".join(faults) if faults else "ok")
        return 0
    print(__doc__)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv))
