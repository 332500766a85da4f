// A drawing target over a pixel buffer, as CGBitmapContextCreate makes.
//
// Supported layouts (8 bits per component):
//   RGB, 32 bpp: PremultipliedLast, PremultipliedFirst, NoneSkipLast or
//                NoneSkipFirst, byte order default/32Big or 32Little
//                (e.g. RGBA premultiplied big-endian, BGRA little-endian
//                premultiplied-first);
//   Gray, 8 bpp, AlphaInfo::None;
//   alpha only, 8 bpp, AlphaInfo::Only (colour model ignored).
// Anything else (16-bit, float, non-premultiplied alpha) is refused, and so
// is a buffer beyond kMaxSurfaceSide a side or kMaxSurfaceBytes.
//
// How the pixels get into the buffer depends on the layout:
// - Direct: cairo's own layouts (ARGB32 / RGB24 in native byte order, A8)
//   with 4-byte aligned rows: cairo draws straight into the buffer.
// - Swapped: RGBA and RGBX in memory order (PremultipliedLast and
//   NoneSkipLast, default or 32Big order, on a little-endian host) are
//   cairo's layouts with red and blue exchanged: cairo draws straight into
//   the buffer and the engine swaps red and blue in what it draws.
// - Scratch: everything else. cairo draws into a scratch surface; the rows
//   each operation touches are remembered and converted into the buffer
//   once, when the caller looks: flush() (CGContextFlush,
//   CGBitmapContextGetData, CGBitmapContextCreateImage, release).
// Whatever the mode, the buffer is complete after flush(). After
// exposeMemory() (CGBitmapContextGetData and CGContextFlush hand the
// memory to the caller), the next drawing first reads the buffer back, so
// the caller's own writes are kept; writes made without either call are
// seen in the Direct and Swapped modes only.
//
// AppKit (a bitmap context wrapped in an NSGraphicsContext) draws into the
// surface beginForeignDrawing() hands out: the buffer itself in the Direct
// mode, the scratch in the Scratch mode (all rows then count as drawn), and
// for Swapped layouts an ARGB32 copy loaded once when AppKit takes the
// context and written back on flush() and by endForeignDrawing().
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
    enum class Mode { Direct, Swapped, Scratch };

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
    void didDraw(const Rect* touched) override;
    bool swapsRedBlue() const override { return mode_ == Mode::Swapped; }
    // AppKit draws through its own cairo_t on foreignSurface().
    bool ownsCairo() const override { return true; }
    void swapRedBlueInPlace() override;

    // Brings the buffer up to date with everything drawn so far.
    void flush();
    // The caller may write the buffer from now on: read it back before the
    // next drawing.
    void exposeMemory() { stale_ = true; }

    // Snapshot of the pixels in the target's own layout; retain count 1.
    Image* createImage();

    // AppKit's drawing surface (native premultiplied ARGB32, or the A8
    // buffer for alpha-only targets); begin loads it, end writes it back.
    cairo_surface_t* beginForeignDrawing();
    void endForeignDrawing();

    const PixelFormat& format() const { return format_; }
    void* data() const { return data_; }
    size_t width() const { return format_.width; }
    size_t height() const { return format_.height; }
    size_t bytesPerRow() const { return format_.bytesPerRow; }
    Mode mode() const { return mode_; }
    bool drawsDirectly() const { return mode_ != Mode::Scratch; }
    cairo_t* cairoContext() const { return cr_; }
    // Quartz device space (y up) to the buffer's rows (top row first).
    AffineTransform baseTransform() const;

    BitmapTarget(const BitmapTarget&) = delete;
    BitmapTarget& operator=(const BitmapTarget&) = delete;

private:
    enum class Kind { RGB32, Gray, Alpha };
    BitmapTarget() = default;

    // Rows [y0, y1) between `surface` (A8, RGB24 or ARGB32) and the buffer.
    void toBuffer(cairo_surface_t* surface, size_t y0, size_t y1);
    void fromBuffer(cairo_surface_t* surface, size_t y0, size_t y1);
    void markDirty(size_t y0, size_t y1);

    PixelFormat format_;
    Kind kind_ = Kind::RGB32;
    Mode mode_ = Mode::Scratch;
    void* data_ = nullptr;
    std::vector<uint8_t> owned_;
    // Memory positions of R, G, B and the alpha/skip byte in a 32-bit pixel.
    int idxR_ = 0, idxG_ = 1, idxB_ = 2, idxA_ = 3;
    bool hasAlpha_ = true;
    cairo_surface_t* surface_ = nullptr;
    cairo_t* cr_ = nullptr;
    // Scratch mode: rows drawn since the last flush, [dirtyTop_, dirtyBottom_).
    size_t dirtyTop_ = 0, dirtyBottom_ = 0;
    // The buffer may be newer than the scratch (the caller had it).
    bool stale_ = false;
    // AppKit's copy, while it draws (not in the Direct mode).
    cairo_surface_t* foreign_ = nullptr;
    int foreignDepth_ = 0;
};

// A context drawing into `target` with the bitmap's y-up base transform.
std::unique_ptr<Context> makeBitmapContext(const std::shared_ptr<BitmapTarget>& target);

}  // namespace talvo::quartz
