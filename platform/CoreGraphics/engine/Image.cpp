#include "platform/CoreGraphics/engine/Image.hpp"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/CoreGraphics/engine/Checked.hpp"

namespace talvo::quartz {

size_t PixelFormat::colorComponents() const {
    if (alphaInfo() == AlphaInfo::Only) return 0;
    return model == ColorModel::RGB ? 3 : 1;
}

size_t PixelFormat::slots() const {
    return colorComponents() + (alphaInfo() == AlphaInfo::None ? 0 : 1);
}

bool PixelFormat::hasAlpha() const {
    switch (alphaInfo()) {
        case AlphaInfo::PremultipliedLast:
        case AlphaInfo::PremultipliedFirst:
        case AlphaInfo::Last:
        case AlphaInfo::First:
        case AlphaInfo::Only: return true;
        default: return false;
    }
}

bool PixelFormat::alphaIsPremultiplied() const {
    return alphaInfo() == AlphaInfo::PremultipliedLast || alphaInfo() == AlphaInfo::PremultipliedFirst;
}

size_t PixelFormat::minimumLength() const {
    if (width == 0 || height == 0) return 0;
    size_t bits, total;
    if (!checkedMul(width, bitsPerPixel, &bits) || !checkedAdd(bits, 7, &bits) ||
        !checkedMulAdd(height - 1, bytesPerRow, bits / 8, &total))
        return SIZE_MAX;  // no buffer is that long: every length check fails
    return total;
}

size_t PixelFormat::fullLength() const {
    size_t total;
    return checkedMul(bytesPerRow, height, &total) ? total : SIZE_MAX;
}

namespace {

// A new image surface ready for its pixels to be written directly; null when
// cairo cannot make it.
cairo_surface_t* newWritableSurface(cairo_format_t format, int w, int h) {
    cairo_surface_t* s = cairo_image_surface_create(format, w, h);
    if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(s);
        return nullptr;
    }
    cairo_surface_flush(s);
    return s;
}

// Where the alpha (or skipped) slot sits and where colour component i is.
size_t alphaSlot(const PixelFormat& f) {
    switch (f.alphaInfo()) {
        case AlphaInfo::PremultipliedFirst:
        case AlphaInfo::First:
        case AlphaInfo::NoneSkipFirst:
        case AlphaInfo::Only: return 0;
        default: return f.colorComponents();
    }
}

size_t colorSlot(const PixelFormat& f, size_t i) {
    switch (f.alphaInfo()) {
        case AlphaInfo::PremultipliedFirst:
        case AlphaInfo::First:
        case AlphaInfo::NoneSkipFirst: return i + 1;
        default: return i;
    }
}

unsigned premultiply(unsigned c, unsigned a) { return (c * a + 127) / 255; }

}  // namespace

bool Image::validate(const PixelFormat& f, bool mask) {
    if (f.width == 0 || f.height == 0 || f.bytesPerRow == 0) return false;
    if (f.width > (1u << 24) || f.height > (1u << 24)) return false;
    if (f.bitmapInfo & kFloatComponents) return false;
    if (f.bitmapInfo & ~(kAlphaInfoMask | kByteOrderMask)) return false;
    size_t bpc = f.bitsPerComponent, bpp = f.bitsPerPixel;
    if (bpc != 1 && bpc != 2 && bpc != 4 && bpc != 8 && bpc != 16) return false;
    if (static_cast<uint32_t>(f.alphaInfo()) > 7) return false;
    if (mask) {
        if (bpc > 8 || bpp != bpc) return false;
    } else {
        if (f.alphaInfo() == AlphaInfo::Only) {
            if (bpc != 8) return false;
        } else if (f.model == ColorModel::RGB || f.slots() > 1) {
            if (bpc != 8 && bpc != 16) return false;
        }
    }
    size_t slots = mask ? 1 : f.slots();
    if (bpp < slots * bpc) return false;
    bool subByte = bpc < 8;
    if (subByte ? (slots != 1 || bpp != bpc) : (bpp % 8 != 0)) return false;
    switch (f.byteOrder()) {
        case kByteOrderDefault: break;
        case kByteOrder32Little:
        case kByteOrder32Big:
            if (bpp != 32 || bpc != 8) return false;
            break;
        case kByteOrder16Little:
        case kByteOrder16Big:
            if (!(bpc == 16 || (bpp == 16 && bpc == 8))) return false;
            break;
        default: return false;
    }
    // Row length and the whole layout, without wrapping around 2^64.
    size_t rowBits, usedBits;
    if (!checkedMul(f.bytesPerRow, 8, &rowBits) || !checkedMul(f.width, bpp, &usedBits)) return false;
    if (rowBits < usedBits) return false;
    return f.minimumLength() != SIZE_MAX;
}

Image::Image(const PixelFormat& f, std::vector<uint8_t>&& bytes, bool mask, bool interpolate)
    : format_(f), bytes_(std::move(bytes)), isMask_(mask), shouldInterpolate_(interpolate) {}

Image::~Image() {
    if (argb_) cairo_surface_destroy(argb_);
    if (argbSwapped_) cairo_surface_destroy(argbSwapped_);
    if (mask_) cairo_surface_destroy(mask_);
}

Image* Image::create(const PixelFormat& format, const void* bytes, size_t length,
                     bool shouldInterpolate) {
    if (!bytes || !validate(format, false) || length < format.minimumLength()) return nullptr;
    try {
        size_t keep = std::min(length, format.fullLength());
        const uint8_t* p = static_cast<const uint8_t*>(bytes);
        std::vector<uint8_t> copy(p, p + keep);
        return new Image(format, std::move(copy), false, shouldInterpolate);
    } catch (...) {
        return nullptr;
    }
}

Image* Image::create(const PixelFormat& format, std::vector<uint8_t>&& bytes,
                     bool shouldInterpolate) {
    if (!validate(format, false) || bytes.size() < format.minimumLength()) return nullptr;
    return new (std::nothrow) Image(format, std::move(bytes), false, shouldInterpolate);
}

// A mask over whole pixels of a bitmap (grey + alpha, RGB, or RGBA/RGBX
// with the colour in the first three bytes, as bitmap contexts lay them
// out): each pixel's grey level becomes its one 8-bit sample.
Image* Image::createMaskFromPixels(const PixelFormat& source, const uint8_t* bytes, size_t length,
                                   bool shouldInterpolate) {
    size_t bpp = source.bitsPerPixel / 8, w = source.width, h = source.height;
    size_t rowBytes;
    if (w == 0 || h == 0 || w > (1u << 24) || h > (1u << 24)) return nullptr;
    if (!checkedMul(w, bpp, &rowBytes) || source.bytesPerRow < rowBytes) return nullptr;
    size_t needed;
    if (!checkedMul(h - 1, source.bytesPerRow, &needed) || needed > SIZE_MAX - rowBytes) {
        return nullptr;
    }
    if (length < needed + rowBytes) return nullptr;
    PixelFormat f = source;
    f.bitsPerPixel = 8;
    f.bytesPerRow = w;
    try {
        std::vector<uint8_t> grey(w * h);
        for (size_t y = 0; y < h; ++y) {
            const uint8_t* in = bytes + y * source.bytesPerRow;
            uint8_t* out = grey.data() + y * w;
            for (size_t x = 0; x < w; ++x, in += bpp) {
                if (bpp == 2) {
                    out[x] = in[0];
                } else {
                    unsigned v = (299u * in[0] + 587u * in[1] + 114u * in[2] + 500u) / 1000u;
                    out[x] = static_cast<uint8_t>(v);
                }
            }
        }
        return new Image(f, std::move(grey), true, shouldInterpolate);
    } catch (...) {
        return nullptr;
    }
}

Image* Image::createMask(size_t width, size_t height, size_t bpc, size_t bpp, size_t bytesPerRow,
                         const void* bytes, size_t length, bool shouldInterpolate) {
    PixelFormat f;
    f.width = width;
    f.height = height;
    f.bitsPerComponent = bpc;
    f.bitsPerPixel = bpp;
    f.bytesPerRow = bytesPerRow;
    f.model = ColorModel::Gray;
    f.bitmapInfo = static_cast<uint32_t>(AlphaInfo::None);
    if (bytes && bpc == 8 && (bpp == 16 || bpp == 24 || bpp == 32)) {
        return createMaskFromPixels(f, static_cast<const uint8_t*>(bytes), length,
                                    shouldInterpolate);
    }
    if (!bytes || !validate(f, true) || length < f.minimumLength()) return nullptr;
    try {
        size_t keep = std::min(length, f.fullLength());
        const uint8_t* p = static_cast<const uint8_t*>(bytes);
        std::vector<uint8_t> copy(p, p + keep);
        return new Image(f, std::move(copy), true, shouldInterpolate);
    } catch (...) {
        return nullptr;
    }
}

Image* Image::createWithImageInRect(const Rect& rect) const {
    // Non-finite rectangles are empty (Rect::integral/intersection), so the
    // edges below are whole numbers inside the image.
    Rect r = rect.standardized().integral().intersection(
        Rect::make(0, 0, static_cast<double>(width()), static_cast<double>(height())));
    if (r.isEmpty() || !(r.minX() >= 0) || !(r.minY() >= 0)) return nullptr;
    size_t x0 = static_cast<size_t>(r.minX()), y0 = static_cast<size_t>(r.minY());
    size_t w = static_cast<size_t>(r.width()), h = static_cast<size_t>(r.height());
    size_t bpp = format_.bitsPerPixel;
    PixelFormat f = format_;
    f.width = w;
    f.height = h;
    size_t rowBits, total;
    if (!checkedMul(w, bpp, &rowBits) || !checkedAdd(rowBits, 7, &rowBits)) return nullptr;
    f.bytesPerRow = rowBits / 8;
    if (!checkedMul(f.bytesPerRow, h, &total)) return nullptr;
    try {
        std::vector<uint8_t> out(total, 0);
        for (size_t y = 0; y < h; ++y) {
            const uint8_t* src = bytes_.data() + (y0 + y) * format_.bytesPerRow;
            uint8_t* dst = out.data() + y * f.bytesPerRow;
            if (bpp % 8 == 0) {
                std::memcpy(dst, src + x0 * bpp / 8, w * bpp / 8);
                continue;
            }
            for (size_t i = 0; i < w * bpp; ++i) {
                size_t sb = x0 * bpp + i;
                if ((src[sb / 8] >> (7 - sb % 8)) & 1) dst[i / 8] |= static_cast<uint8_t>(0x80 >> (i % 8));
            }
        }
        return new Image(f, std::move(out), isMask_, shouldInterpolate_);
    } catch (...) {
        return nullptr;
    }
}

Image* Image::retain() {
    refs_.fetch_add(1, std::memory_order_relaxed);
    return this;
}

void Image::release() {
    if (refs_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

unsigned Image::sample(size_t x, size_t y, size_t slot) const {
    const uint8_t* row = bytes_.data() + y * format_.bytesPerRow;
    size_t bpc = format_.bitsPerComponent, bpp = format_.bitsPerPixel;
    uint32_t order = format_.byteOrder();
    if (bpc == 8) {
        size_t idx = slot;
        if (order == kByteOrder32Little && bpp == 32)
            idx = 3 - slot;
        else if (order == kByteOrder16Little && bpp == 16)
            idx = 1 - slot;
        return row[x * (bpp / 8) + idx];
    }
    if (bpc == 16) {
        const uint8_t* p = row + x * (bpp / 8) + 2 * slot;
        unsigned v = order == kByteOrder16Little ? (p[0] | (p[1] << 8)) : ((p[0] << 8) | p[1]);
        return (v * 255 + 32767) / 65535;
    }
    size_t bit = x * bpp + slot * bpc;
    unsigned maxv = (1u << bpc) - 1;
    unsigned v = (row[bit / 8] >> (8 - bpc - bit % 8)) & maxv;
    return v * 255 / maxv;
}

namespace {

// One pixel in cairo's ARGB32: premultiplied (clamped to alpha when it
// already is), red and blue swapped when asked.
inline uint32_t PackARGB(unsigned a, unsigned r, unsigned g, unsigned b, bool premultiplied,
                         bool swapRedBlue) {
    if (premultiplied) {
        r = std::min(r, a), g = std::min(g, a), b = std::min(b, a);
    } else if (a != 255) {
        r = premultiply(r, a), g = premultiply(g, a), b = premultiply(b, a);
    }
    if (swapRedBlue) std::swap(r, b);
    return (a << 24) | (r << 16) | (g << 8) | b;
}

}  // namespace

cairo_surface_t* Image::cairoSurface(bool swapRedBlue) const {
    std::lock_guard<std::mutex> lock(cacheLock_);
    cairo_surface_t*& cache = swapRedBlue ? argbSwapped_ : argb_;
    if (cache) return cache;
    if (!surfaceSizeAllowed(width(), height(), 4)) return nullptr;
    int w = static_cast<int>(width()), h = static_cast<int>(height());
    cairo_surface_t* s = newWritableSurface(CAIRO_FORMAT_ARGB32, w, h);
    if (!s) return nullptr;
    uint8_t* out = cairo_image_surface_get_data(s);
    int stride = cairo_image_surface_get_stride(s);
    const PixelFormat& f = format_;
    size_t nc = f.colorComponents();
    bool alpha = f.hasAlpha(), premul = f.alphaIsPremultiplied();
    size_t aSlot = alphaSlot(f);
    if (!isMask_ && nc == 3 && f.bitsPerComponent == 8 && f.bitsPerPixel == 32) {
        // The usual bitmaps: the arithmetic below, with the byte offsets
        // worked out once instead of per sample.
        bool little = f.byteOrder() == kByteOrder32Little;
        auto at = [little](size_t slot) { return little ? 3 - slot : slot; };
        size_t ia = at(aSlot), ir = at(colorSlot(f, 0)), ig = at(colorSlot(f, 1)), ib = at(colorSlot(f, 2));
        for (int y = 0; y < h; ++y) {
            const uint8_t* in = bytes_.data() + static_cast<size_t>(y) * f.bytesPerRow;
            uint32_t* px = reinterpret_cast<uint32_t*>(out + y * stride);
            for (int x = 0; x < w; ++x, in += 4) {
                px[x] = PackARGB(alpha ? in[ia] : 255, in[ir], in[ig], in[ib], premul, swapRedBlue);
            }
        }
        cairo_surface_mark_dirty(s);
        cache = s;
        return cache;
    }
    for (int y = 0; y < h; ++y) {
        uint32_t* px = reinterpret_cast<uint32_t*>(out + y * stride);
        for (int x = 0; x < w; ++x) {
            if (isMask_) {
                px[x] = (255u - sample(x, y, 0)) << 24;  // black, the mask's coverage as alpha
                continue;
            }
            unsigned a = alpha ? sample(x, y, aSlot) : 255, r = 0, g = 0, b = 0;
            if (nc == 3) {
                r = sample(x, y, colorSlot(f, 0));
                g = sample(x, y, colorSlot(f, 1));
                b = sample(x, y, colorSlot(f, 2));
            } else if (nc == 1) {
                r = g = b = sample(x, y, colorSlot(f, 0));
            }
            px[x] = PackARGB(a, r, g, b, premul, swapRedBlue);
        }
    }
    cairo_surface_mark_dirty(s);
    cache = s;
    return cache;
}

cairo_surface_t* Image::maskSurface() const {
    std::lock_guard<std::mutex> lock(cacheLock_);
    if (mask_) return mask_;
    if (!surfaceSizeAllowed(width(), height(), 1)) return nullptr;
    int w = static_cast<int>(width()), h = static_cast<int>(height());
    cairo_surface_t* s = newWritableSurface(CAIRO_FORMAT_A8, w, h);
    if (!s) return nullptr;
    uint8_t* out = cairo_image_surface_get_data(s);
    int stride = cairo_image_surface_get_stride(s);
    const PixelFormat& f = format_;
    size_t nc = f.colorComponents();
    for (int y = 0; y < h; ++y) {
        uint8_t* row = out + y * stride;
        for (int x = 0; x < w; ++x) {
            unsigned v;
            if (isMask_) {
                v = 255 - sample(x, y, 0);
            } else if (f.hasAlpha()) {
                v = sample(x, y, alphaSlot(f));
            } else if (nc == 1) {
                v = sample(x, y, colorSlot(f, 0));
            } else {
                unsigned r = sample(x, y, colorSlot(f, 0)), g = sample(x, y, colorSlot(f, 1)),
                         b = sample(x, y, colorSlot(f, 2));
                v = (299 * r + 587 * g + 114 * b + 500) / 1000;
            }
            row[x] = static_cast<uint8_t>(v);
        }
    }
    cairo_surface_mark_dirty(s);
    mask_ = s;
    return mask_;
}

}  // namespace talvo::quartz
