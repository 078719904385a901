#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_binaries.py DIRECTORY: proves of the universal binaries in the directory all that can be
proved without a Mac. Prints one line for each fault, and one summary for each slice."""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import macho

SYSTEM = "/usr/lib/libSystem.B.dylib"
ICONV = "/usr/lib/libiconv.2.dylib"
PADDING = 64
OLDEST = [(macho.PLATFORM_MACOS, "11.0")]

ISP_EXPORTS = {
    "IspFlash", "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash", "SetUIFunction",
    "DumpFlash", "GetUserDefinedInfoFromDDCCI", "IspEeprom", "EnterISPModeExport",
    "ResetMCUExport", "GetScalerType"}
SIGN_EXPORTS = {"SignFwExport", "VerifySignatureExport"}

# The names that the linker itself defines in every library and program; they bind to nothing.
LINKER_EXPORTS = {"__mh_dylib_header", "__mh_execute_header", "___dso_handle"}

# Type information of function types, which no flag hides: nothing looks it up by name.
FUNCTION_TYPES = re.compile(r"__ZT[IS]P?F")

# file, whether it must be there, libraries it may use, exports
FILES = (
    ("zvisp", True, {SYSTEM, ICONV}, set()),
    ("zvisp-line", False, {SYSTEM, ICONV}, set()),
    ("PlugIn/libIsp.dylib", True, {SYSTEM}, {"_" + name for name in ISP_EXPORTS}),
    ("libSignVerify.dylib", False, {SYSTEM}, {"_" + name for name in SIGN_EXPORTS}),
)


def tool(name):
    """Debian gives the tools their names with and without the version."""
    found = shutil.which(name) or shutil.which(name + "-14")
    if not found:
        sys.exit(f"{name} is not installed")
    return found


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def exports_of(path):
    trie = output_of(tool("llvm-objdump"), "--macho", "--exports-trie", str(path))
    names = set(re.findall(r"^0x[0-9A-Fa-f]+\s+(\S+)", trie, re.M)) - LINKER_EXPORTS
    return {name for name in names if not FUNCTION_TYPES.match(name)}


def slice_faults(path, cpu, libraries, exports):
    data = path.read_bytes()
    part = macho.Slice(data)
    used = part.texts(*macho.LC_LOAD_DYLIBS)
    if part.oldest_system() != OLDEST:
        yield f"runs from {part.oldest_system()} on, not from macOS 11.0"
    if SYSTEM not in used or not set(used) <= libraries:
        yield f"uses {', '.join(used)}"
    if part.header_padding() < PADDING:
        yield f"has {part.header_padding()} bytes of header padding"
    if part.texts(macho.LC_RPATH):
        yield f"has the run path {part.texts(macho.LC_RPATH)}"
    yield from build_path_faults(part, data)
    if exports_of(path) != exports:
        yield f"exports differ: {sorted(exports_of(path) ^ exports)}"
    if cpu == "arm64":
        yield from part.signature_faults()


def build_path_faults(part, data):
    for name in part.texts(macho.LC_ID_DYLIB):
        if not name.startswith("@rpath/"):
            yield f"names itself {name}"
    root = str(pathlib.Path(__file__).resolve().parents[2])
    for folder in (root, str(pathlib.Path.home() / ".cache")):
        if folder.encode() in data:
            yield f"names the build machine's {folder}"


def file_faults(path, name, libraries, exports, scratch):
    archs = output_of(tool("llvm-lipo"), "-archs", str(path)).split()
    if sorted(archs) != ["arm64", "x86_64"]:
        yield f"{name} holds {archs}"
    for cpu in archs:
        thin = pathlib.Path(scratch, f"{path.name}.{cpu}")
        if len(archs) > 1:
            output_of(tool("llvm-lipo"), "-thin", cpu, str(path), "-output", str(thin))
        else:
            shutil.copy(path, thin)
        faults = list(slice_faults(thin, cpu, libraries, exports))
        yield from (f"{name} ({cpu}) {fault}" for fault in faults)
        part = macho.Slice(thin.read_bytes())
        print(f"{name} ({cpu}): {len(part.data)} bytes, "
              f"uses {', '.join(part.texts(*macho.LC_LOAD_DYLIBS))}")


def directory_faults(directory):
    with tempfile.TemporaryDirectory() as scratch:
        for name, required, libraries, exports in FILES:
            path = pathlib.Path(directory, name)
            if path.exists():
                try:
                    yield from file_faults(path, name, libraries, exports, scratch)
                except subprocess.CalledProcessError as refusal:
                    yield f"{name} is refused: {refusal.stderr.strip()}"
            elif required:
                yield f"{name} is missing"


if __name__ == "__main__":
    found = list(directory_faults(sys.argv[1]))
    print("\n".join(found))
    sys.exit(bool(found))
