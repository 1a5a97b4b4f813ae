"""Shows arrays in gdb by their elements.

    (gdb) source tools/gdb/zel_printers.py
    (gdb) print columns
    $1 = TDynArray of 2 x 3 = {{1, 2, 3}, {4, 5, 6}}
"""

import gdb
import gdb.printing


class DynArrayPrinter:
    """TDynArray<T, Rank>: the outer index first, as an array of arrays."""

    def __init__(self, value):
        self.cells = value["FData"]
        extents = value["FShape"]["_M_elems"]
        rank = int(value.type.strip_typedefs().template_argument(1))
        self.shape = [int(extents[i]) for i in range(rank)]

    def to_string(self):
        return "TDynArray of " + " x ".join(map(str, self.shape))

    def display_hint(self):
        return "array"

    def children(self):
        if 0 in self.shape:
            return
        part = self.cells.type.target()
        cells_per_part = 1
        for extent in reversed(self.shape[1:]):
            part = part.array(extent - 1)
            cells_per_part *= extent
        for i in range(self.shape[0]):
            at = (self.cells + i * cells_per_part).cast(part.pointer())
            yield "[%d]" % i, at.dereference()


printers = gdb.printing.RegexpCollectionPrettyPrinter("zel")
printers.add_printer("TDynArray", "^zel::TDynArray<.*>$", DynArrayPrinter)
gdb.printing.register_pretty_printer(None, printers, replace=True)
