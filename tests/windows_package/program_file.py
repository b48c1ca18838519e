"""Reads what a Windows program or library says about itself: kind, needs, entries, resources."""

import struct

RESOURCES, IMPORTS, EXPORTS = 2, 1, 0


class ProgramFile:
    """One program file. The attributes say what is in it; a damaged file raises struct.error or ValueError."""

    def __init__(self, path):
        self.bytes = path.read_bytes()
        header = self._number("<I", 0x3C)
        if self.bytes[header:header + 4] != b"PE\0\0":
            raise ValueError(f"{path} is no Windows program")
        self.machine, sections, _, _, _, optional_size, self.flags = struct.unpack_from("<HHIIIHH", self.bytes, header + 4)
        optional = header + 24
        self.is_wide = self._number("<H", optional) == 0x20B
        self.system_version = struct.unpack_from("<HH", self.bytes, optional + 40)
        self.subsystem_version = struct.unpack_from("<HH", self.bytes, optional + 48)
        self.subsystem = self._number("<H", optional + 68)
        self.protections = self._number("<H", optional + 70)
        directories = optional + (112 if self.is_wide else 96)
        self._directories = [struct.unpack_from("<II", self.bytes, directories + 8 * i) for i in range(16)]
        table = optional + optional_size
        self._sections = [struct.unpack_from("<8sIIII", self.bytes, table + 40 * i) for i in range(sections)]

    def exports(self):
        """The names that others can look up."""
        place = self._directory(EXPORTS)
        if place is None:
            return set()
        count, _, names = struct.unpack_from("<III", self.bytes, place + 24)
        first = self._offset(names)
        return {self._text(self._offset(self._number("<I", first + 4 * i))) for i in range(count)}

    def imports(self):
        """The functions that are needed, by the library's name in lower case."""
        place = self._directory(IMPORTS)
        needed = {}
        while place is not None:
            lookup, _, _, name, _ = struct.unpack_from("<IIIII", self.bytes, place)
            if name == 0:
                break
            needed[self._text(self._offset(name)).lower()] = self._imported(self._offset(lookup))
            place += 20
        return needed

    def resources(self, kind):
        """The contents of the resources of a kind, which is a number or a name."""
        place = self._directory(RESOURCES)
        return [] if place is None else list(self._leaves(place, place, kind))

    def version(self):
        """The texts of the version resource."""
        texts = {}
        for content in self.resources(16):
            wide = content.decode("utf-16-le", errors="replace")
            for name in ("FileVersion", "ProductVersion", "ProductName", "OriginalFilename", "FileDescription"):
                found = wide.find(name + "\0")
                if found >= 0:
                    texts[name] = wide[found + len(name):].lstrip("\0").split("\0")[0]
        return texts

    def _imported(self, place):
        form, size, ordinal = ("<Q", 8, 1 << 63) if self.is_wide else ("<I", 4, 1 << 31)
        names = set()
        while (entry := self._number(form, place)) != 0:
            names.add(f"#{entry & 0xFFFF}" if entry & ordinal else self._text(self._offset(entry) + 2))
            place += size
        return names

    def _leaves(self, root, place, kind=None):
        names, numbers = struct.unpack_from("<HH", self.bytes, place + 12)
        for i in range(names + numbers):
            name, target = struct.unpack_from("<II", self.bytes, place + 16 + 8 * i)
            if kind is not None and self._resource_name(root, name) != kind:
                continue
            if target & 0x80000000:
                yield from self._leaves(root, root + (target & 0x7FFFFFFF))
            else:
                address, size = struct.unpack_from("<II", self.bytes, root + target)
                offset = self._offset(address)
                yield self.bytes[offset:offset + size]

    def _resource_name(self, root, name):
        if not name & 0x80000000:
            return name
        place = root + (name & 0x7FFFFFFF)
        length = self._number("<H", place)
        return self.bytes[place + 2:place + 2 + 2 * length].decode("utf-16-le")

    def _directory(self, number):
        address, size = self._directories[number]
        return self._offset(address) if size else None

    def _offset(self, address):
        for _, size, start, raw_size, raw in self._sections:
            if start <= address < start + max(size, raw_size):
                return raw + address - start
        raise ValueError(f"address {address:x} is in no section")

    def _number(self, form, offset):
        return struct.unpack_from(form, self.bytes, offset)[0]

    def _text(self, offset):
        return self.bytes[offset:self.bytes.index(b"\0", offset)].decode("latin-1")
