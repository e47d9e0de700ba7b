// Small geometry in the plane and in space: raw points of two or three coordinates.
//
//   line    a x + b y + c = 0         (a, b, c)
//   plane   a x + b y + c z + d = 0   (a, b, c, d)
//
// Normals have length one. Inputs are read before anything is written, so an output may overlap
// them. A function that answers false has still written its output: zeros where the points define
// nothing, NaN where a coordinate is NaN or infinite.
#pragma once

namespace nequar {

// a x b
template <class Real>
void cross_product(const Real* a, const Real* b, Real* out);

// (-dy, dx) / |d|, d = p1 - p0: what lies to the left of the way from p0 to p1.
template <class Real>
bool normal_of_segment(const Real* p0, const Real* p1, Real* normal);

// The line through two points; its normal is that of the segment.
template <class Real>
bool line_of_segment(const Real* p0, const Real* p1, Real* line);

// (p1 - p0) x (p2 - p0), scaled to length one.
template <class Real>
bool normal_of_triangle(const Real* p0, const Real* p1, const Real* p2, Real* normal);

// The plane through three points; its normal is that of the triangle.
template <class Real>
bool plane_of_triangle(const Real* p0, const Real* p1, const Real* p2, Real* plane);

// (a x + b y + c)^2 / (a^2 + b^2), and likewise for a plane. Without a normal (a = b = 0) it is
// infinite, or NaN when c is zero too.
template <class Real>
Real distance_squared_to_line(const Real* point, const Real* line);
template <class Real>
Real distance_squared_to_plane(const Real* point, const Real* plane);

}  // namespace nequar
