#include "platform/CoreGraphics/engine/BitmapTarget.hpp"

#include <algorithm>
#include <cstring>
#include <cmath>
#include <new>

#include "platform/CoreGraphics/engine/Checked.hpp"

namespace talvo::quartz {

namespace {

bool hostIsLittleEndian() {
    uint32_t one = 1;
    uint8_t first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

uint32_t loadNative(const uint8_t* p) {
    uint32_t v;
    std::memcpy(&v, p, 4);
    return v;
}

void storeNative(uint8_t* p, uint32_t v) { std::memcpy(p, &v, 4); }

}  // namespace

std::shared_ptr<BitmapTarget> BitmapTarget::create(void* data, size_t width, size_t height,
                                                   size_t bpc, size_t bytesPerRow, ColorModel model,
                                                   uint32_t bitmapInfo) {
    if (width == 0 || height == 0 || width > kMaxSurfaceSide || height > kMaxSurfaceSide || bpc != 8)
        return nullptr;
    if (bitmapInfo & ~(kAlphaInfoMask | kByteOrderMask)) return nullptr;
    PixelFormat f;
    f.width = width;
    f.height = height;
    f.bitsPerComponent = 8;
    f.model = model;
    f.bitmapInfo = bitmapInfo;
    AlphaInfo ai = f.alphaInfo();
    uint32_t order = f.byteOrder();
    Kind kind;
    if (ai == AlphaInfo::Only) {
        kind = Kind::Alpha;
        f.bitsPerPixel = 8;
        if (order != kByteOrderDefault) return nullptr;
    } else if (model == ColorModel::Gray) {
        if (ai != AlphaInfo::None || order != kByteOrderDefault) return nullptr;
        kind = Kind::Gray;
        f.bitsPerPixel = 8;
    } else {
        if (ai != AlphaInfo::PremultipliedLast && ai != AlphaInfo::PremultipliedFirst &&
            ai != AlphaInfo::NoneSkipLast && ai != AlphaInfo::NoneSkipFirst)
            return nullptr;
        if (order != kByteOrderDefault && order != kByteOrder32Big && order != kByteOrder32Little)
            return nullptr;
        kind = Kind::RGB32;
        f.bitsPerPixel = 32;
    }
    size_t minRow = width * f.bitsPerPixel / 8;  // width <= kMaxSurfaceSide: no overflow
    if (bytesPerRow == 0) bytesPerRow = (minRow + 3) & ~size_t(3);
    size_t total;
    if (bytesPerRow < minRow || bytesPerRow > kMaxSurfaceBytes || !checkedMul(bytesPerRow, height, &total) ||
        total > kMaxSurfaceBytes || !surfaceSizeAllowed(width, height, 4))
        return nullptr;
    f.bytesPerRow = bytesPerRow;

    std::shared_ptr<BitmapTarget> t;
    try {
        t.reset(new BitmapTarget());
        if (!data) {
            t->owned_.assign(total, 0);
            data = t->owned_.data();
        }
    } catch (...) {
        return nullptr;
    }
    t->format_ = f;
    t->kind_ = kind;
    t->data_ = data;

    bool little = hostIsLittleEndian();
    bool aligned = bytesPerRow % 4 == 0 && reinterpret_cast<uintptr_t>(data) % 4 == 0;
    cairo_format_t cf = CAIRO_FORMAT_ARGB32;
    Mode mode = Mode::Scratch;
    if (kind == Kind::RGB32) {
        bool first = ai == AlphaInfo::PremultipliedFirst || ai == AlphaInfo::NoneSkipFirst;
        bool swapped = order == kByteOrder32Little;
        int slotA = first ? 0 : 3, slotR = first ? 1 : 0;
        auto at = [&](int slot) { return swapped ? 3 - slot : slot; };
        t->idxA_ = at(slotA);
        t->idxR_ = at(slotR);
        t->idxG_ = at(slotR + 1);
        t->idxB_ = at(slotR + 2);
        t->hasAlpha_ = ai == AlphaInfo::PremultipliedFirst || ai == AlphaInfo::PremultipliedLast;
        cf = t->hasAlpha_ ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24;
        // cairo's pixel is a native 32-bit word A R G B: in memory B G R A on
        // a little-endian host. R G B A is the same with red and blue swapped.
        int memA = little ? 3 : 0, memR = little ? 2 : 1, memB = little ? 0 : 3;
        if (aligned && t->idxA_ == memA && t->idxG_ == (little ? 1 : 2)) {
            if (t->idxR_ == memR && t->idxB_ == memB)
                mode = Mode::Direct;
            else if (t->idxR_ == memB && t->idxB_ == memR)
                mode = Mode::Swapped;
        }
    } else if (kind == Kind::Alpha) {
        cf = CAIRO_FORMAT_A8;
        if (aligned) mode = Mode::Direct;
    } else {
        cf = CAIRO_FORMAT_RGB24;
    }
    t->mode_ = mode;

    int w = static_cast<int>(width), h = static_cast<int>(height);
    if (mode != Mode::Scratch) {
        t->surface_ = cairo_image_surface_create_for_data(static_cast<unsigned char*>(data), cf, w, h,
                                                          static_cast<int>(bytesPerRow));
    } else {
        t->surface_ = cairo_image_surface_create(cf, w, h);
    }
    if (cairo_surface_status(t->surface_) != CAIRO_STATUS_SUCCESS) return nullptr;
    t->cr_ = cairo_create(t->surface_);
    if (cairo_status(t->cr_) != CAIRO_STATUS_SUCCESS) return nullptr;
    if (mode == Mode::Scratch) t->fromBuffer(t->surface_, 0, height);
    return t;
}

BitmapTarget::~BitmapTarget() {
    if (foreign_) cairo_surface_destroy(foreign_);
    if (cr_) cairo_destroy(cr_);
    if (surface_) cairo_surface_destroy(surface_);
}

AffineTransform BitmapTarget::baseTransform() const {
    return AffineTransform::make(1, 0, 0, -1, 0, static_cast<double>(format_.height));
}

void BitmapTarget::willDraw() {
    if (!stale_) return;
    stale_ = false;
    if (mode_ == Mode::Scratch) {
        flush();  // what was drawn but not yet written must not be lost
        fromBuffer(surface_, 0, format_.height);
    } else {
        cairo_surface_mark_dirty(surface_);
    }
}

void BitmapTarget::didDraw(const Rect* touched) {
    if (mode_ != Mode::Scratch) return;
    if (!touched) {
        markDirty(0, format_.height);
        return;
    }
    double top = std::max(0.0, std::floor(touched->minY()));
    double bottom = std::min(static_cast<double>(format_.height), std::ceil(touched->maxY()));
    if (!(bottom > top)) return;
    markDirty(static_cast<size_t>(top), static_cast<size_t>(bottom));
}

void BitmapTarget::markDirty(size_t y0, size_t y1) {
    if (dirtyBottom_ <= dirtyTop_) {
        dirtyTop_ = y0;
        dirtyBottom_ = y1;
    } else {
        dirtyTop_ = std::min(dirtyTop_, y0);
        dirtyBottom_ = std::max(dirtyBottom_, y1);
    }
}

void BitmapTarget::swapRedBlueInPlace() {
    if (mode_ != Mode::Swapped) return;
    cairo_surface_flush(surface_);
    uint8_t* base = static_cast<uint8_t*>(data_);
    for (size_t y = 0; y < format_.height; ++y) {
        uint32_t* row = reinterpret_cast<uint32_t*>(base + y * format_.bytesPerRow);
        for (size_t x = 0; x < format_.width; ++x) {
            uint32_t v = row[x];
            row[x] = (v & 0xFF00FF00u) | ((v >> 16) & 0xFFu) | ((v & 0xFFu) << 16);
        }
    }
    cairo_surface_mark_dirty(surface_);
}

void BitmapTarget::fromBuffer(cairo_surface_t* surface, size_t y0, size_t y1) {
    cairo_surface_flush(surface);
    uint8_t* dst = cairo_image_surface_get_data(surface);
    size_t stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    bool a8 = cairo_image_surface_get_format(surface) == CAIRO_FORMAT_A8;
    const uint8_t* src = static_cast<const uint8_t*>(data_);
    size_t w = format_.width;
    for (size_t y = y0; y < y1; ++y) {
        const uint8_t* s = src + y * format_.bytesPerRow;
        uint8_t* d = dst + y * stride;
        switch (kind_) {
            case Kind::Alpha:
                if (a8) {
                    std::memcpy(d, s, w);
                } else {
                    for (size_t x = 0; x < w; ++x) storeNative(d + 4 * x, uint32_t(s[x]) << 24);
                }
                break;
            case Kind::Gray:
                for (size_t x = 0; x < w; ++x) {
                    uint32_t v = s[x];
                    storeNative(d + 4 * x, 0xFF000000u | (v << 16) | (v << 8) | v);
                }
                break;
            case Kind::RGB32:
                for (size_t x = 0; x < w; ++x) {
                    const uint8_t* p = s + 4 * x;
                    uint32_t a = hasAlpha_ ? p[idxA_] : 255;
                    uint32_t r = std::min<uint32_t>(p[idxR_], a), g = std::min<uint32_t>(p[idxG_], a),
                             b = std::min<uint32_t>(p[idxB_], a);
                    storeNative(d + 4 * x, (a << 24) | (r << 16) | (g << 8) | b);
                }
                break;
        }
    }
    cairo_surface_mark_dirty(surface);
}

void BitmapTarget::toBuffer(cairo_surface_t* surface, size_t y0, size_t y1) {
    cairo_surface_flush(surface);
    const uint8_t* src = cairo_image_surface_get_data(surface);
    size_t stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    bool a8 = cairo_image_surface_get_format(surface) == CAIRO_FORMAT_A8;
    uint8_t* dst = static_cast<uint8_t*>(data_);
    size_t w = format_.width;
    for (size_t y = y0; y < y1; ++y) {
        const uint8_t* s = src + y * stride;
        uint8_t* d = dst + y * format_.bytesPerRow;
        switch (kind_) {
            case Kind::Alpha:
                if (a8) {
                    std::memcpy(d, s, w);
                } else {
                    for (size_t x = 0; x < w; ++x) d[x] = static_cast<uint8_t>(loadNative(s + 4 * x) >> 24);
                }
                break;
            case Kind::Gray:
                for (size_t x = 0; x < w; ++x) {
                    uint32_t v = loadNative(s + 4 * x);
                    uint32_t r = (v >> 16) & 0xFF, g = (v >> 8) & 0xFF, b = v & 0xFF;
                    d[x] = static_cast<uint8_t>((299 * r + 587 * g + 114 * b + 500) / 1000);
                }
                break;
            case Kind::RGB32:
                for (size_t x = 0; x < w; ++x) {
                    uint32_t v = loadNative(s + 4 * x);
                    uint8_t* p = d + 4 * x;
                    p[idxA_] = hasAlpha_ ? static_cast<uint8_t>(v >> 24) : 0xFF;
                    p[idxR_] = static_cast<uint8_t>(v >> 16);
                    p[idxG_] = static_cast<uint8_t>(v >> 8);
                    p[idxB_] = static_cast<uint8_t>(v);
                }
                break;
        }
    }
}

void BitmapTarget::flush() {
    cairo_surface_flush(surface_);
    if (foreign_) {
        toBuffer(foreign_, 0, format_.height);
        return;
    }
    if (mode_ != Mode::Scratch) return;
    if (foreignDepth_ > 0) markDirty(0, format_.height);  // AppKit draws anywhere
    if (dirtyBottom_ > dirtyTop_) toBuffer(surface_, dirtyTop_, dirtyBottom_);
    dirtyTop_ = dirtyBottom_ = 0;
}

cairo_surface_t* BitmapTarget::beginForeignDrawing() {
    if (foreignDepth_++ > 0) return foreign_ ? foreign_ : surface_;
    willDraw();
    if (mode_ != Mode::Swapped) return surface_;
    cairo_surface_flush(surface_);
    foreign_ = cairo_image_surface_create(hasAlpha_ ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24,
                                          static_cast<int>(format_.width), static_cast<int>(format_.height));
    if (cairo_surface_status(foreign_) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(foreign_);
        foreign_ = nullptr;
        --foreignDepth_;
        return nullptr;
    }
    fromBuffer(foreign_, 0, format_.height);
    return foreign_;
}

void BitmapTarget::endForeignDrawing() {
    if (foreignDepth_ == 0 || --foreignDepth_ > 0) return;
    if (foreign_) {
        toBuffer(foreign_, 0, format_.height);
        cairo_surface_destroy(foreign_);
        foreign_ = nullptr;
        cairo_surface_mark_dirty(surface_);
        return;
    }
    if (mode_ == Mode::Scratch) markDirty(0, format_.height);
    flush();
}

Image* BitmapTarget::createImage() {
    flush();
    return Image::create(format_, data_, format_.fullLength());
}

std::unique_ptr<Context> makeBitmapContext(const std::shared_ptr<BitmapTarget>& target) {
    if (!target) return nullptr;
    return std::unique_ptr<Context>(new (std::nothrow) Context(target, target->baseTransform()));
}

}  // namespace talvo::quartz
