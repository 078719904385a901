#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""check_binaries_test.py DIRECTORY: each check of check_binaries.py finds its fault in a copy of
the good binaries that was spoilt in one way."""
import contextlib
import io
import pathlib
import shutil
import struct
import sys
import tempfile

import check_binaries
import macho

PLUGIN = "PlugIn/libIsp.dylib"


def in_slice(change):
    """Spoils the arm64 slice of a universal file with change(slice bytes)."""
    def spoil(path):
        thin = path.with_suffix(".arm64")
        check_binaries.output_of(check_binaries.tool("llvm-lipo"), "-thin", "arm64", str(path),
                                 "-output", str(thin))
        data = bytearray(thin.read_bytes())
        change(data)
        whole, start = path.read_bytes(), path.read_bytes().index(thin.read_bytes())
        path.write_bytes(whole[:start] + data + whole[start + len(data):])
        thin.unlink()
    return spoil


def command_offset(data, wanted):
    offset = macho.HEADER_SIZE
    for _ in range(struct.unpack_from("<I", data, 16)[0]):
        kind, size = struct.unpack_from("<2I", data, offset)
        if kind == wanted:
            return offset
        offset += size
    raise LookupError(hex(wanted))


def ask_for_newer_system(data):
    struct.pack_into("<I", data, command_offset(data, macho.LC_BUILD_VERSION) + 12, 14 << 16)


def rename_library(data):
    data[:] = data.replace(b"/usr/lib/libSystem.B.dylib", b"/opt/lib/libSystem.B.dylib")


def rename_export(data):
    data[:] = data.replace(b"Flash\0", b"Flasx\0")


def break_code(data):
    data[0x3000] ^= 1


def move_signature(data):
    at = command_offset(data, macho.LC_CODE_SIGNATURE) + 12
    struct.pack_into("<I", data, at, struct.unpack_from("<I", data, at)[0] - 16)


def drop_signature(data):
    struct.pack_into("<I", data, command_offset(data, macho.LC_CODE_SIGNATURE), 0x2B)


def leave_build_path(data):
    root = str(pathlib.Path(__file__).resolve().parents[2]).encode()
    at = macho.HEADER_SIZE + macho.Slice(bytes(data)).commands_size + 16
    data[at:at + len(root)] = root


def claim_other_cpu(data):
    struct.pack_into("<I", data, 4, 0x01000007)


def install_name_tool(*arguments):
    def spoil(path):
        check_binaries.output_of(check_binaries.tool("llvm-install-name-tool"), *arguments,
                                 str(path))
    return spoil


def one_slice_only(path):
    thin = path.with_suffix(".arm64")
    check_binaries.output_of(check_binaries.tool("llvm-lipo"), "-thin", "arm64", str(path),
                             "-output", str(thin))
    thin.rename(path)


# how the file is spoilt, the file, what must be said of it
CASES = (
    (pathlib.Path.unlink, "zvisp", "zvisp is missing"),
    (one_slice_only, "zvisp", "zvisp holds ['arm64']"),
    (in_slice(claim_other_cpu), "zvisp", "zvisp is refused: "),
    (in_slice(ask_for_newer_system), "zvisp", "not from macOS 11.0"),
    (in_slice(rename_library), PLUGIN, "uses /opt/lib/libSystem.B.dylib"),
    (install_name_tool("-add_rpath", "/opt"), "zvisp", "has the run path ['/opt']"),
    (install_name_tool("-add_rpath", "/" + "x" * 4080), "zvisp", "bytes of header padding"),
    (install_name_tool("-id", "/opt/libIsp.dylib"), PLUGIN, "names itself /opt/libIsp.dylib"),
    (in_slice(leave_build_path), "zvisp", "names the build machine's"),
    (in_slice(rename_export), PLUGIN, "'_IspFlasx'"),
    (in_slice(break_code), "zvisp", "signature does not fit page"),
    (in_slice(move_signature), "zvisp", "signature is not last in the file"),
    (in_slice(drop_signature), "zvisp", "has no signature"),
)


def main(directory):
    failures = 0
    for spoil, name, expected in CASES:
        with tempfile.TemporaryDirectory() as scratch:
            copy = shutil.copytree(directory, pathlib.Path(scratch, "copy"))
            spoil(pathlib.Path(copy, name))
            with contextlib.redirect_stdout(io.StringIO()):
                found = list(check_binaries.directory_faults(copy))
        if not any(expected in fault for fault in found):
            print(f"{name}: expected {expected!r}, found {found}")
            failures += 1
    print(f"{len(CASES) - failures} of {len(CASES)} faults were found")
    sys.exit(failures != 0)


main(sys.argv[1])
