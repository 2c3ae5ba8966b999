"""Everything that a service or a host can use is documented: by a comment in its header, which says
how it is used, and by name in zerva(3), which says that it is there.

usage: documented.py HEADERS MANUAL LIBRARY...
"""

import pathlib
import re
import subprocess
import sys

# What leaves the libraries without being meant for anybody: what instantiations of header-only
# libraries bring along, and what only the program zerva uses, whose headers are not installed.
OWN = re.compile(r"^(zerva::|std::|asio::|__gnu_cxx::|msgpack::|spdlog::|fmt::|ProtocolRepository$)")
# What needs no comment: what is not there, what a base class tells, copies, and definitions of what
# was declared above.
NO_OPERATION = re.compile(r"= (delete|default);|\boverride\b|~\w+\(\)|^friend |^using |^static_assert"
                          r"|\boperator=|\b(\w+)\((const )?\2&&? |\w+::\w+\(.*\) *(const)? *(;|\{\})$")


def without_bodies(text):
    """The text of a header with the bodies of inline functions and initialisers taken out."""
    lines = []
    skipped = 0
    for line in text.splitlines():
        if skipped:
            skipped += line.count("{") - line.count("}")
            continue
        opens = line.count("{") - line.count("}")
        code = line.split("//")[0]
        if opens > 0 and not re.match(r"\s*(class|struct|namespace|enum)\b", code) and "(" in code:
            skipped = opens
            code = code[: code.rindex("{")] + ";"
        lines.append(code)
    return lines


def undocumented(path):
    """The public and protected operations of a header that no comment stands above."""
    found = []
    visible, documented, comment, statement = True, False, False, ""
    for line in without_bodies(path.read_text()):
        code = line.strip()
        if comment or code.startswith("/**") or code.startswith("/*"):
            comment = "*/" not in code
            documented = True
        elif not code:
            if not statement:
                documented = False
        elif re.match(r"(public|protected):", code):
            visible, documented = True, False
        elif re.match(r"private:", code):
            visible = False
        elif code.startswith("#") or code.startswith("};") or code.startswith("}"):
            # The end of a class with a private part, too.
            visible = visible or code.startswith("};")
            statement = ""
        else:
            statement = (statement + " " + code).strip()
            if statement.endswith((";", "{", "}")):
                operation = "(" in statement or re.match(r"(class|struct)\b[^;]*\{", statement)
                if visible and operation and not documented and not NO_OPERATION.search(statement):
                    found.append(statement)
                if re.match(r"(class|struct|enum)\b", statement) and statement.endswith("{"):
                    visible, documented = not statement.startswith("class"), False
                statement = ""
    return found


def exported(library):
    """The classes and functions of the global namespace that a library exports."""
    symbols = subprocess.run(["nm", "-D", "--defined-only", "-C", library],
                             check=True, capture_output=True, text=True).stdout
    names = set()
    for line in symbols.splitlines():
        kind, name = line.split(maxsplit=2)[1:]
        if kind not in "TBDR" or re.match(r"(typeinfo|vtable|non-virtual thunk)", name):
            continue
        name = re.sub(r"\[abi:\w+\]", "", name).split("(")[0]
        if not OWN.match(name) and not OWN.match(name.split("::")[0]) and " " not in name:
            names.add(name.split("::")[0])
    return names


def main():
    headers = pathlib.Path(sys.argv[1])
    manual = subprocess.run(["groff", "-mandoc", "-Tascii", "-P-cbou", sys.argv[2]],
                            check=True, capture_output=True, text=True).stdout
    words = set(re.findall(r"[\w:]+", manual))
    complaints = []
    count = 0
    files = sorted(headers.rglob("*.h"))
    for path in files:
        count += 1
        # What rmi/ has are templates, and its comments explain each as a whole.
        for what in undocumented(path) if path.parent.name != "rmi" else []:
            complaints.append(f"{path.relative_to(headers)}: no comment above: {what}")
        for name in re.findall(r"^(?:class|struct) ZERVA_EXPORT (\w+)|^class (\w+) .*\{",
                               path.read_text(), re.M):
            name = name[0] or name[1]
            if name not in words and f"zerva::rmi::{name}" not in words:
                complaints.append(f"{path.relative_to(headers)}: {name} is not in zerva(3)")
    for library in sys.argv[3:]:
        for name in sorted(exported(library) - words):
            complaints.append(f"{pathlib.Path(library).name}: {name} is not in zerva(3)")
    if count == 0:
        complaints.append("there are no headers")
    print("\n".join(complaints))
    return 1 if complaints else 0


sys.exit(main())
