// Small bridges between the engine's value types and cairo, shared by the
// engine's own sources.
#pragma once

#include <cairo.h>

#include "platform/CoreGraphics/engine/Geometry.hpp"
#include "platform/CoreGraphics/engine/Path.hpp"

namespace talvo::quartz {

inline cairo_matrix_t toCairo(const AffineTransform& t) {
    cairo_matrix_t m;
    cairo_matrix_init(&m, t.a, t.b, t.c, t.d, t.tx, t.ty);
    return m;
}

// Appends in the cairo_t's current user space; quads become cubics.
void appendPathToCairo(cairo_t* cr, const Path& path);

// The cairo operator used for a blend mode (PlusDarker -> MULTIPLY).
cairo_operator_t cairoOperator(BlendMode mode);

// True when compositing a fully transparent source leaves the destination
// as it was; such operators need no coverage bound beyond the shape's own.
bool operatorKeepsUncoveredDestination(cairo_operator_t op);

// cairo applies these everywhere inside the clip, not only under the shape.
bool operatorIsUnboundedInCairo(cairo_operator_t op);

}  // namespace talvo::quartz
