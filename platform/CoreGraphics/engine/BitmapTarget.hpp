// A drawing target over a pixel buffer, as CGBitmapContextCreate makes.
//
// Supported layouts (8 bits per component):
//   RGB, 32 bpp: PremultipliedLast, PremultipliedFirst, NoneSkipLast or
//                NoneSkipFirst, byte order default/32Big or 32Little
//                (e.g. RGBA premultiplied big-endian, BGRA little-endian
//                premultiplied-first);
//   Gray, 8 bpp, AlphaInfo::None;
//   alpha only, 8 bpp, AlphaInfo::Only (colour model ignored).
// Anything else (16-bit, float, non-premultiplied alpha) is refused.
//
// When the layout is cairo's own (ARGB32 / RGB24 in native byte order, A8)
// and the rows are 4-byte aligned, cairo draws straight into the buffer.
// Otherwise cairo draws into a scratch surface, and the buffer is kept in
// step around every drawing operation of a Context on this target: the
// buffer is read into the scratch before the operation (so direct writes
// to the buffer are honoured) and written back after it. The pixels are
// therefore in the caller's buffer as soon as a drawing call returns.
// Anyone drawing into cairoContext() directly must call flush() afterwards
// (and reload() after writing the buffer by hand).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <cairo.h>

#include "platform/CoreGraphics/engine/Context.hpp"
#include "platform/CoreGraphics/engine/Image.hpp"

namespace talvo::quartz {

class BitmapTarget final : public CairoProvider {
public:
    // `data` null: the target allocates zeroed memory it owns. Otherwise the
    // caller's memory (at least bytesPerRow * height bytes) must outlive the
    // target. bytesPerRow 0 picks the smallest 4-byte-aligned row. Null on
    // an unsupported layout.
    static std::shared_ptr<BitmapTarget> create(void* data, size_t width, size_t height,
                                                size_t bitsPerComponent, size_t bytesPerRow,
                                                ColorModel model, uint32_t bitmapInfo);
    ~BitmapTarget() override;

    cairo_t* currentCairo() override { return cr_; }
    void willDraw() override;
    void didDraw() override;

    // Buffer <- cairo (no-op beyond cairo_surface_flush for direct layouts).
    void flush();
    // cairo <- buffer.
    void reload();

    // Snapshot of the pixels in the target's own layout; retain count 1.
    Image* createImage();

    const PixelFormat& format() const { return format_; }
    void* data() const { return data_; }
    size_t width() const { return format_.width; }
    size_t height() const { return format_.height; }
    size_t bytesPerRow() const { return format_.bytesPerRow; }
    bool drawsDirectly() const { return !scratch_; }
    cairo_t* cairoContext() const { return cr_; }
    cairo_surface_t* cairoSurface() const { return surface_; }
    // Quartz device space (y up) to the buffer's rows (top row first).
    AffineTransform baseTransform() const;

    BitmapTarget(const BitmapTarget&) = delete;
    BitmapTarget& operator=(const BitmapTarget&) = delete;

private:
    enum class Kind { RGB32, Gray, Alpha };
    BitmapTarget() = default;

    PixelFormat format_;
    Kind kind_ = Kind::RGB32;
    void* data_ = nullptr;
    std::vector<uint8_t> owned_;
    bool scratch_ = false;
    // Memory positions of R, G, B and the alpha/skip byte in a 32-bit pixel.
    int idxR_ = 0, idxG_ = 1, idxB_ = 2, idxA_ = 3;
    bool hasAlpha_ = true;
    cairo_surface_t* surface_ = nullptr;
    cairo_t* cr_ = nullptr;
};

// A context drawing into `target` with the bitmap's y-up base transform.
std::unique_ptr<Context> makeBitmapContext(const std::shared_ptr<BitmapTarget>& target);

}  // namespace talvo::quartz
