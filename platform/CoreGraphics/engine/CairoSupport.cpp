#include "platform/CoreGraphics/engine/CairoSupport.hpp"

namespace talvo::quartz {

void appendPathToCairo(cairo_t* cr, const Path& path) {
    Point cur{}, start{};
    path.visit([&](const PathElement& e) {
        switch (e.type) {
            case PathElementType::MoveToPoint:
                cur = start = e.points[0];
                cairo_move_to(cr, cur.x, cur.y);
                break;
            case PathElementType::AddLineToPoint:
                cur = e.points[0];
                cairo_line_to(cr, cur.x, cur.y);
                break;
            case PathElementType::AddQuadCurveToPoint: {
                Point q = e.points[0], p = e.points[1];
                cairo_curve_to(cr, cur.x + 2.0 / 3.0 * (q.x - cur.x), cur.y + 2.0 / 3.0 * (q.y - cur.y),
                               p.x + 2.0 / 3.0 * (q.x - p.x), p.y + 2.0 / 3.0 * (q.y - p.y), p.x, p.y);
                cur = p;
                break;
            }
            case PathElementType::AddCurveToPoint:
                cur = e.points[2];
                cairo_curve_to(cr, e.points[0].x, e.points[0].y, e.points[1].x, e.points[1].y, cur.x,
                               cur.y);
                break;
            case PathElementType::CloseSubpath:
                cairo_close_path(cr);
                cur = start;
                break;
        }
    });
}

cairo_operator_t cairoOperator(BlendMode mode) {
    switch (mode) {
        case BlendMode::Normal: return CAIRO_OPERATOR_OVER;
        case BlendMode::Multiply: return CAIRO_OPERATOR_MULTIPLY;
        case BlendMode::Screen: return CAIRO_OPERATOR_SCREEN;
        case BlendMode::Overlay: return CAIRO_OPERATOR_OVERLAY;
        case BlendMode::Darken: return CAIRO_OPERATOR_DARKEN;
        case BlendMode::Lighten: return CAIRO_OPERATOR_LIGHTEN;
        case BlendMode::ColorDodge: return CAIRO_OPERATOR_COLOR_DODGE;
        case BlendMode::ColorBurn: return CAIRO_OPERATOR_COLOR_BURN;
        case BlendMode::SoftLight: return CAIRO_OPERATOR_SOFT_LIGHT;
        case BlendMode::HardLight: return CAIRO_OPERATOR_HARD_LIGHT;
        case BlendMode::Difference: return CAIRO_OPERATOR_DIFFERENCE;
        case BlendMode::Exclusion: return CAIRO_OPERATOR_EXCLUSION;
        case BlendMode::Hue: return CAIRO_OPERATOR_HSL_HUE;
        case BlendMode::Saturation: return CAIRO_OPERATOR_HSL_SATURATION;
        case BlendMode::Color: return CAIRO_OPERATOR_HSL_COLOR;
        case BlendMode::Luminosity: return CAIRO_OPERATOR_HSL_LUMINOSITY;
        case BlendMode::Clear: return CAIRO_OPERATOR_CLEAR;
        case BlendMode::Copy: return CAIRO_OPERATOR_SOURCE;
        case BlendMode::SourceIn: return CAIRO_OPERATOR_IN;
        case BlendMode::SourceOut: return CAIRO_OPERATOR_OUT;
        case BlendMode::SourceAtop: return CAIRO_OPERATOR_ATOP;
        case BlendMode::DestinationOver: return CAIRO_OPERATOR_DEST_OVER;
        case BlendMode::DestinationIn: return CAIRO_OPERATOR_DEST_IN;
        case BlendMode::DestinationOut: return CAIRO_OPERATOR_DEST_OUT;
        case BlendMode::DestinationAtop: return CAIRO_OPERATOR_DEST_ATOP;
        case BlendMode::XOR: return CAIRO_OPERATOR_XOR;
        case BlendMode::PlusDarker: return CAIRO_OPERATOR_MULTIPLY;
        case BlendMode::PlusLighter: return CAIRO_OPERATOR_ADD;
    }
    return CAIRO_OPERATOR_OVER;
}

bool operatorKeepsUncoveredDestination(cairo_operator_t op) {
    switch (op) {
        case CAIRO_OPERATOR_CLEAR:
        case CAIRO_OPERATOR_SOURCE:
        case CAIRO_OPERATOR_IN:
        case CAIRO_OPERATOR_OUT:
        case CAIRO_OPERATOR_DEST_IN:
        case CAIRO_OPERATOR_DEST_ATOP: return false;
        default: return true;
    }
}

bool operatorIsUnboundedInCairo(cairo_operator_t op) {
    switch (op) {
        case CAIRO_OPERATOR_IN:
        case CAIRO_OPERATOR_OUT:
        case CAIRO_OPERATOR_DEST_IN:
        case CAIRO_OPERATOR_DEST_ATOP: return true;
        default: return false;
    }
}

}  // namespace talvo::quartz
