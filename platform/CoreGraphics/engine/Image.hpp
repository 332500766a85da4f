// Immutable, reference-counted pixel images with CGImage's descriptors.
//
// Supported sample layouts:
//   RGB:  8 or 16 bits per component, any CGImageAlphaInfo except Only,
//         24/32 bpp (8-bit) or 48/64 bpp (16-bit).
//   Gray: 1, 2, 4, 8 or 16 bits per component without alpha; 8 or 16 bits
//         with an alpha (or skipped) slot.
//   Alpha only (AlphaInfo::Only): 8 bits, drawn as black with that alpha.
//   Image masks: 1, 2, 4 or 8 bits per sample; 8-bit pixels of 16, 24 or
//   32 bits are reduced to their grey level.
// 16-bit samples are converted to 8 bits when the image is first drawn.
// Byte orders: default and 32Big/16Big read components in memory order;
// 32Little (32 bpp, 8-bit) reverses each pixel's four bytes; 16Little reads
// 16-bit samples little-endian (or swaps the two bytes of a 16 bpp, 8-bit
// pixel). Not covered: float components, packed 5-5-5 / 10-bit formats,
// indexed, CMYK and Lab colour spaces, decode arrays, colour management
// (everything is device RGB or device gray), masking colours and
// CGImageCreateWithMask.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include <cairo.h>

#include "platform/CoreGraphics/engine/Geometry.hpp"

namespace talvo::quartz {

// CGImageAlphaInfo numbering.
enum class AlphaInfo : uint32_t {
    None = 0,
    PremultipliedLast = 1,
    PremultipliedFirst = 2,
    Last = 3,
    First = 4,
    NoneSkipLast = 5,
    NoneSkipFirst = 6,
    Only = 7,
};

// CGBitmapInfo bits: bitmapInfo = alphaInfo | byteOrder.
constexpr uint32_t kAlphaInfoMask = 0x1F;
constexpr uint32_t kFloatComponents = 1u << 8;
constexpr uint32_t kByteOrderMask = 0x7000;
constexpr uint32_t kByteOrderDefault = 0;
constexpr uint32_t kByteOrder16Little = 1u << 12;
constexpr uint32_t kByteOrder32Little = 2u << 12;
constexpr uint32_t kByteOrder16Big = 3u << 12;
constexpr uint32_t kByteOrder32Big = 4u << 12;

enum class ColorModel : int { RGB = 0, Gray = 1 };

struct PixelFormat {
    size_t width = 0;
    size_t height = 0;
    size_t bitsPerComponent = 8;
    size_t bitsPerPixel = 32;
    size_t bytesPerRow = 0;
    ColorModel model = ColorModel::RGB;
    uint32_t bitmapInfo = static_cast<uint32_t>(AlphaInfo::PremultipliedLast);

    AlphaInfo alphaInfo() const { return static_cast<AlphaInfo>(bitmapInfo & kAlphaInfoMask); }
    uint32_t byteOrder() const { return bitmapInfo & kByteOrderMask; }
    // 3 or 1 colour components; 0 for alpha-only.
    size_t colorComponents() const;
    // Colour components plus the alpha or skipped slot, if any.
    size_t slots() const;
    bool hasAlpha() const;
    bool alphaIsPremultiplied() const;
    // Bytes up to the end of the last row's pixels; SIZE_MAX when that does
    // not fit in size_t (so every length check against it fails).
    size_t minimumLength() const;
    // bytesPerRow * height, SIZE_MAX on overflow.
    size_t fullLength() const;
};

class Image {
public:
    // Copies `length` bytes (at least format.minimumLength()). Returns an
    // image with a retain count of 1, or null if the layout is unsupported.
    static Image* create(const PixelFormat& format, const void* bytes, size_t length,
                         bool shouldInterpolate = true);
    // Takes the buffer without copying; same rules as create().
    static Image* create(const PixelFormat& format, std::vector<uint8_t>&& bytes,
                         bool shouldInterpolate = true);
    // An image mask (CGImageMaskCreate): samples of 1 (white) keep paint
    // out, 0 lets it in. 8-bit samples in 16, 24 or 32-bit pixels (grey +
    // alpha, RGB, RGBA/RGBX) are taken as whole pixels: the grey level of
    // each (its first byte, or the luminance of its first three) decides.
    static Image* createMask(size_t width, size_t height, size_t bitsPerComponent,
                             size_t bitsPerPixel, size_t bytesPerRow, const void* bytes,
                             size_t length, bool shouldInterpolate = true);

    // Pixels of `rect` (pixel units, origin at the top-left), rounded out
    // to whole pixels and clipped to the image. Null if nothing is left.
    Image* createWithImageInRect(const Rect& rect) const;

    Image* retain();
    // Deletes the image when the count reaches zero.
    void release();
    long retainCount() const { return refs_.load(); }

    const PixelFormat& format() const { return format_; }
    size_t width() const { return format_.width; }
    size_t height() const { return format_.height; }
    size_t bitsPerComponent() const { return format_.bitsPerComponent; }
    size_t bitsPerPixel() const { return format_.bitsPerPixel; }
    size_t bytesPerRow() const { return format_.bytesPerRow; }
    uint32_t bitmapInfo() const { return format_.bitmapInfo; }
    AlphaInfo alphaInfo() const { return format_.alphaInfo(); }
    ColorModel colorModel() const { return format_.model; }
    bool isMask() const { return isMask_; }
    bool shouldInterpolate() const { return shouldInterpolate_; }
    // First row is the top of the image.
    const uint8_t* data() const { return bytes_.data(); }
    size_t dataLength() const { return bytes_.size(); }

    // Premultiplied native-endian ARGB32, built once and cached; owned by
    // the image (do not destroy). Null if cairo could not allocate it or
    // the image is beyond kMaxSurfaceSide. `swapRedBlue` gives a second
    // cached copy with red and blue exchanged, for targets that store RGBA.
    cairo_surface_t* cairoSurface(bool swapRedBlue = false) const;
    // A8 coverage for masking, built once and cached: for an image mask
    // 1 - sample; for an image with alpha its alpha; for gray without alpha
    // the gray level (white lets paint in); for RGB without alpha the
    // luminance.
    cairo_surface_t* maskSurface() const;

    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

private:
    Image(const PixelFormat& f, std::vector<uint8_t>&& bytes, bool mask, bool interpolate);
    ~Image();

    static bool validate(const PixelFormat& f, bool mask);
    static Image* createMaskFromPixels(const PixelFormat& source, const uint8_t* bytes,
                                       size_t length, bool shouldInterpolate);
    // Sample `slot` of pixel (x, y) scaled to 0...255.
    unsigned sample(size_t x, size_t y, size_t slot) const;

    PixelFormat format_;
    std::vector<uint8_t> bytes_;
    bool isMask_;
    bool shouldInterpolate_;
    std::atomic<long> refs_{1};

    mutable std::mutex cacheLock_;
    mutable cairo_surface_t* argb_ = nullptr;
    mutable cairo_surface_t* argbSwapped_ = nullptr;
    mutable cairo_surface_t* mask_ = nullptr;
};

// Holds one retain on an Image for C++ callers (tests, the engine itself).
class ImageRef {
public:
    ImageRef() = default;
    // Adopts a reference the caller already owns (e.g. from create()).
    static ImageRef adopt(Image* image) {
        ImageRef r;
        r.image_ = image;
        return r;
    }
    static ImageRef retain(Image* image) { return adopt(image ? image->retain() : nullptr); }
    ImageRef(const ImageRef& o) : image_(o.image_ ? o.image_->retain() : nullptr) {}
    ImageRef(ImageRef&& o) noexcept : image_(o.image_) { o.image_ = nullptr; }
    ImageRef& operator=(ImageRef o) noexcept {
        std::swap(image_, o.image_);
        return *this;
    }
    ~ImageRef() {
        if (image_) image_->release();
    }
    Image* get() const { return image_; }
    Image* operator->() const { return image_; }
    explicit operator bool() const { return image_ != nullptr; }

private:
    Image* image_ = nullptr;
};

}  // namespace talvo::quartz
