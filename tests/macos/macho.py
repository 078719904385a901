# SPDX-License-Identifier: MIT
"""What the checks need to know of one Mach-O slice, read from its bytes."""
import hashlib
import struct

LC_ID_DYLIB = 0xD
LC_LOAD_DYLIBS = (0xC, 0x80000018, 0x8000001F, 0x20, 0x80000023)
LC_SEGMENT_64 = 0x19
LC_CODE_SIGNATURE = 0x1D
LC_RPATH = 0x8000001C
LC_BUILD_VERSION = 0x32

PLATFORM_MACOS = 1
HEADER_SIZE = 32


class Slice:
    def __init__(self, data):
        self.data = data
        magic, _, _, _, count, self.commands_size, _, _ = struct.unpack_from("<8I", data)
        if magic != 0xFEEDFACF:
            raise ValueError("not a 64-bit Mach-O file")
        self.commands, offset = [], HEADER_SIZE
        for _ in range(count):
            kind, size = struct.unpack_from("<2I", data, offset)
            self.commands.append((kind, data[offset:offset + size]))
            offset += size

    def _text(self, command, at=8):
        start = struct.unpack_from("<I", command, at)[0]
        return command[start:].split(b"\0")[0].decode()

    def texts(self, *kinds):
        """The names that commands such as LC_RPATH and LC_LOAD_DYLIB carry."""
        return [self._text(command) for kind, command in self.commands if kind in kinds]

    def oldest_system(self):
        """(platform, "major.minor") of each LC_BUILD_VERSION."""
        found = []
        for kind, command in self.commands:
            if kind == LC_BUILD_VERSION:
                platform, oldest = struct.unpack_from("<2I", command, 8)
                found.append((platform, f"{oldest >> 16}.{oldest >> 8 & 0xFF}"))
        return found

    def header_padding(self):
        """Bytes between the last load command and the first section's contents."""
        first = len(self.data)
        for kind, command in self.commands:
            if kind == LC_SEGMENT_64:
                for index in range(struct.unpack_from("<I", command, 64)[0]):
                    offset = struct.unpack_from("<I", command, 72 + 80 * index + 48)[0]
                    if offset:
                        first = min(first, offset)
        return first - HEADER_SIZE - self.commands_size

    def signature_faults(self):
        """What is wrong with the ad-hoc signature; empty when it is sound."""
        place = [struct.unpack_from("<2I", command, 8)
                 for kind, command in self.commands if kind == LC_CODE_SIGNATURE]
        if not place:
            return ["has no signature"]
        offset, size = place[0]
        if offset + size != len(self.data):
            return ["signature is not last in the file"]
        magic, _, count = struct.unpack_from(">3I", self.data, offset)
        if magic != 0xFADE0CC0:
            return ["signature has no super blob"]
        for index in range(count):
            slot, at = struct.unpack_from(">2I", self.data, offset + 12 + 8 * index)
            if slot == 0:
                return self._directory_faults(offset + at)
        return ["signature has no code directory"]

    def _directory_faults(self, at):
        (_, _, _, flags, hashes, _, _, slots, limit, hash_size, _, _, page_bits) = \
            struct.unpack_from(">9I4B", self.data, at)
        faults = [] if flags & 2 else ["signature is not ad-hoc"]
        page = 1 << page_bits
        if slots != (limit + page - 1) // page:
            faults.append("signature does not cover every page")
        for slot in range(slots):
            contents = self.data[slot * page:min((slot + 1) * page, limit)]
            stored = self.data[at + hashes + slot * hash_size:][:hash_size]
            if hashlib.sha256(contents).digest()[:hash_size] != stored:
                faults.append(f"signature does not fit page {slot}")
        return faults
