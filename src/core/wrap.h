// Coordinates given from outside wrap around: -1 names the last row or column.
#pragma once

namespace nequar {

// coordinate modulo size, in 0 … size-1; 0 when there is nothing to address.
inline int wrapped(int coordinate, int size) {
    if (coordinate >= 0 && coordinate < size) return coordinate;  // without the division
    if (size <= 0) return 0;
    const int remainder = coordinate % size;
    return remainder < 0 ? remainder + size : remainder;
}

}  // namespace nequar
