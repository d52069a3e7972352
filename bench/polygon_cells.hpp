// Marking the cells of a map inside a polygon: by spans, as the library does, against asking for every cell.
#pragma once

namespace nadir::bench {

void printPolygonCells();

}  // namespace nadir::bench
