"""Checks `stcheck info --format json FILE` against ezdxf's reading of FILE.

Usage: DbInfoOracle.py STCHECK FILE...

ezdxf's document loader repairs what it reads (it adds layers, linetypes, dictionaries and
objects a drawing lacks), so this script reads one level below it: ezdxf's own tag loaders
and section structure, which give the file as it is. Names are decoded as ezdxf decodes
them, \\U+XXXX escapes included; encodings are compared as Python codecs.

Prints one line a file: a status, a tab, the file, a tab and what was found. Status 0 when
stcheck agrees with ezdxf, 1 when they differ (the differences follow), 2 when only one of
them rejects the file, 3 when both reject it.
"""
import codecs
import json
import re
import subprocess
import sys

import ezdxf
from ezdxf.lldxf.loader import load_dxf_structure
from ezdxf.lldxf.tagger import ascii_tags_loader, binary_tags_loader, tag_compiler
from ezdxf.lldxf.validator import is_binary_dxf_file, is_dxf_file
from ezdxf.tools.codepage import toencoding

SUB_ENTITIES = {"ATTRIB", "VERTEX", "SEQEND"}


# ezdxf's pattern takes upper-case hex digits only; files written by some programs use
# lower case ("Verma\U+00dfung"), which the file layer decodes as well.
ESCAPE = re.compile(r"\\U\+([0-9A-Fa-f]{4})")


def text(value):
    return ESCAPE.sub(lambda m: chr(int(m.group(1), 16)), value)


def ezdxf_encoding(version, codepage):
    # As ezdxf decides, but comparing release numbers as numbers: ezdxf compares the text,
    # which puts "AC2.10" after "AC1021".
    modern = re.fullmatch(r"AC(\d{4})", version or "") and version >= "AC1021"
    return "utf-8" if modern else toencoding(codepage or "")


def first(entity, code, default=None):
    for tag in entity:
        if tag.code == code:
            return tag.value
    return default


def header_var(sections, name):
    header = sections.get("HEADER")
    if not header:
        return None
    tags = list(header[0])
    for i, tag in enumerate(tags):
        if tag.code == 9 and tag.value == name and i + 1 < len(tags):
            return tags[i + 1].value
    return None


def table_names(sections, table):
    names, inside = [], False
    for entity in sections.get("TABLES", [])[1:]:
        kind = entity[0].value
        if kind == "TABLE":
            inside = first(entity, 2) == table
        elif kind == "ENDTAB":
            inside = False
        elif inside:
            names.append(text(str(first(entity, 2, ""))))
    return names


def ezdxf_info(path):
    binary = is_binary_dxf_file(path)
    if binary:
        with open(path, "rb") as fp:
            sections = load_dxf_structure(tag_compiler(binary_tags_loader(fp.read())))
        version = header_var(sections, "$ACADVER") or ""
        codepage = header_var(sections, "$DWGCODEPAGE") or ""
        encoding = ezdxf_encoding(version, codepage)
    else:
        if not is_dxf_file(path):
            raise IOError("not a dxf file")
        encoding = ezdxf.filemanagement.dxf_file_info(path).encoding
        with open(path, "rt", encoding=encoding, errors="surrogateescape") as fp:
            sections = load_dxf_structure(tag_compiler(ascii_tags_loader(fp)))
        version = header_var(sections, "$ACADVER") or ""
        encoding = ezdxf_encoding(version, header_var(sections, "$DWGCODEPAGE"))
    has_block_table = any(e[0].value == "TABLE" and first(e, 2) == "BLOCK_RECORD"
                          for e in sections.get("TABLES", [])[1:])
    if has_block_table:
        blocks = table_names(sections, "BLOCK_RECORD")
    else:
        blocks = [text(str(first(e, 2, ""))) for e in sections.get("BLOCKS", [])[1:]
                  if e[0].value == "BLOCK"]
    entities = [e for e in sections.get("ENTITIES", [])[1:] if e[0].value not in SUB_ENTITIES]
    return {
        "version": version,
        "binary": binary,
        "encoding": codecs.lookup(encoding).name,
        "layers": table_names(sections, "LAYER"),
        "linetypes": table_names(sections, "LTYPE"),
        "textStyles": table_names(sections, "STYLE"),
        "dimStyles": table_names(sections, "DIMSTYLE"),
        "blocks": blocks,
        "entities": len(entities),
        "objects": len(sections.get("OBJECTS", [])[1:]),
    }


def normalise_encoding(name):
    try:
        return codecs.lookup(name).name
    except LookupError:
        # ICU names Python does not know, spelled as Python spells them
        aliases = {"windows-932": "cp932", "ibm-943_p15a-2003": "cp932",
                   "windows-949-2000": "cp949", "windows-936-2000": "gbk",
                   "windows-950-2000": "cp950"}
        return codecs.lookup(aliases.get(name.lower(), "utf-8")).name


def check(stcheck, path):
    run = subprocess.run([stcheck, "info", "--format", "json", path], capture_output=True)
    try:
        expected = ezdxf_info(path)
    except Exception as error:
        if run.returncode != 0:
            return 3, f"both reject the file; ezdxf: {error}; {run.stderr.decode().strip()}"
        return 2, f"ezdxf rejects the file ({type(error).__name__}: {error}), stcheck reads it"
    if run.returncode != 0:
        return 2, f"stcheck rejects the file: {run.stderr.decode(errors='replace').strip()}"
    actual = json.loads(run.stdout.decode("utf-8"))
    actual["encoding"] = normalise_encoding(actual["encoding"])
    differences = [f"{key}: stcheck {actual.get(key)!r}, ezdxf {value!r}"
                   for key, value in expected.items() if actual.get(key) != value]
    return (1 if differences else 0), "; ".join(differences)


def main():
    stcheck = sys.argv[1]
    for path in sys.argv[2:]:
        status, message = check(stcheck, path)
        print(f"{status}\t{path}\t{' '.join(message.split())}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
