// Checked size arithmetic and the cap on pixel buffers the engine allocates.
//
// Every size the engine derives from caller input (row lengths, buffer
// lengths, offsets of the last row) goes through these: a product or sum
// that would wrap around 2^64 is reported instead of silently becoming a
// small number that later checks accept.
#pragma once

#include <cstddef>
#include <cstdint>

namespace talvo::quartz {

// The largest pixel buffer the engine makes for drawing (bitmap contexts,
// offscreen layers, image surfaces): cairo's own limit of 32767 pixels a
// side, and at most 2^31 bytes in all. Beyond it creation fails and returns
// null; nothing raises.
constexpr size_t kMaxSurfaceSide = 32767;
constexpr size_t kMaxSurfaceBytes = size_t(1) << 31;

// False (and *out untouched) when a * b does not fit in size_t.
inline bool checkedMul(size_t a, size_t b, size_t* out) {
    size_t r;
    if (__builtin_mul_overflow(a, b, &r)) return false;
    *out = r;
    return true;
}

inline bool checkedAdd(size_t a, size_t b, size_t* out) {
    size_t r;
    if (__builtin_add_overflow(a, b, &r)) return false;
    *out = r;
    return true;
}

// a * b + c, or false on overflow.
inline bool checkedMulAdd(size_t a, size_t b, size_t c, size_t* out) {
    size_t r;
    return checkedMul(a, b, &r) && checkedAdd(r, c, out);
}

// Whether a surface of width x height pixels of `bytesPerPixel` bytes is
// within kMaxSurfaceSide and kMaxSurfaceBytes.
inline bool surfaceSizeAllowed(size_t width, size_t height, size_t bytesPerPixel) {
    size_t row, total;
    return width > 0 && height > 0 && width <= kMaxSurfaceSide && height <= kMaxSurfaceSide &&
           checkedMul(width, bytesPerPixel, &row) && checkedMul(row, height, &total) &&
           total <= kMaxSurfaceBytes;
}

// Whether `v` can be converted to an int pixel coordinate without undefined
// behaviour (finite and within +-2^30).
inline bool fitsPixelCoordinate(double v) { return v == v && v > -1073741824.0 && v < 1073741824.0; }

}  // namespace talvo::quartz
