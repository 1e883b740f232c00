#!/usr/bin/env python3
"""Checks on the built executable as a file, without running it.

    check_image.py imports PROGRAM   it needs no DLL but those that every Windows has and loads from its own folder
    check_image.py size PROGRAM      stripped, and without its pictures, it stays within the limit
    check_image.py symbols PROGRAM   it has no code of libraries that cost more than they give here
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

# The system's known DLLs, which are never looked for beside the program, and the common controls, which the manifest
# binds to the system's side-by-side store.
ALLOWED_IMPORTS = {
    "advapi32.dll",
    "api-ms-win-core-synch-l1-2-0.dll",
    "comctl32.dll",
    "gdi32.dll",
    "kernel32.dll",
    "msvcrt.dll",
    "ole32.dll",
    "setupapi.dll",
    "shell32.dll",
    "user32.dll",
}

LIMIT = 400 * 1024
PICTURES = {"CURSOR", "BITMAP", "ICON", "GROUP_CURSOR", "GROUP_ICON", "PNG"}

UNWANTED = {
    "locales": r"\bstd::(__cxx11::)?locale::|\bstd::use_facet\b|\bstd::has_facet\b",
    "streams": r"\bstd::(__cxx11::)?basic_[io]?(stream|stringstream|fstream|streambuf|stringbuf|filebuf)<|"
    r"\bstd::(__cxx11::)?basic_ostringstream<|\bstd::ios_base::",
    "regular expressions": r"\bstd::(__cxx11::)?(basic_)?regex|\bstd::__detail::_(Scanner|Compiler|NFA)",
    "std::filesystem": r"\bstd::filesystem::",
    "fmt": r"\bfmt::v\d+::",
}


def output(*command: str) -> str:
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def check_imports(program: str) -> list[str]:
    imported = {
        name.lower()
        for name in re.findall(r"^Import \{\s+Name: (\S+)", output("llvm-readobj-19", "--coff-imports", program), re.M)
    }
    if "kernel32.dll" not in imported:
        return ["the import table cannot be read"]
    return [f"{name} is imported" for name in sorted(imported - ALLOWED_IMPORTS)]


def picture_bytes(program: str) -> int:
    """The sum of the pictures in the resource section."""
    listing = output("llvm-readobj-19", "--coff-resources", program)
    total = 0
    kind = ""
    for line in listing.splitlines():
        if found := re.match(r"\s*Type: (\S+)", line):
            kind = found.group(1)
        elif (found := re.match(r"\s*DataSize: (\d+)", line)) and kind in PICTURES:
            total += int(found.group(1))
    return total


def check_size(program: str) -> list[str]:
    with tempfile.TemporaryDirectory() as folder:
        stripped = Path(folder, "stripped.exe")
        output("llvm-strip-19", "--strip-all", "-o", str(stripped), program)
        size = stripped.stat().st_size
    pictures = picture_bytes(program)
    print(f"{size} bytes stripped, {pictures} of them pictures; limit {LIMIT} without pictures")
    return [] if size - pictures <= LIMIT else ["the program is too large"]


def check_symbols(program: str) -> list[str]:
    symbols = output("llvm-nm-19", "--demangle", program)
    if "wWinMain" not in symbols:
        return ["the program has no symbol table"]
    problems = []
    for library, pattern in UNWANTED.items():
        found = [line for line in symbols.splitlines() if re.search(pattern, line)]
        if found:
            problems.append(f"{library}: {len(found)} symbols, among them {found[0]}")
    return problems


def main() -> int:
    checks = {"imports": check_imports, "size": check_size, "symbols": check_symbols}
    name, program = sys.argv[1:]
    problems = checks[name](program)
    for problem in problems:
        print(f"{program}: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
