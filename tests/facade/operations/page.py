"""What the page of operations says, row by row."""

import pathlib


class Row:
    def __init__(self, class_name, cells):
        self.class_name = class_name
        self.name, self.kind, self.arguments, self.result, self.errors, self.tests = cells
        self.name = self.name.strip("`")
        self.tests = self.tests.replace("`", "").split(", ")


def rows(page):
    """The rows of all classes in the file `page`."""
    found, class_name = [], None
    for line in pathlib.Path(page).read_text(encoding="utf-8").splitlines():
        if line.startswith("## "):
            class_name = line[3:]
        elif line.startswith("| `"):
            found.append(Row(class_name, [cell.strip() for cell in line.strip("|").split(" | ")]))
    return found
