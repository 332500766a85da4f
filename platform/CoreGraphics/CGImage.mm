// Data providers and images of the Core Graphics stand-in. A CGImage holds
// one reference to an engine image; its data provider is made on demand
// and holds the image's bytes.

#include <CoreGraphics/CGTalvoBridge.h>

#include <mutex>
#include <new>
#include <unordered_set>
#include <vector>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace q = talvo::quartz;

// --- Data providers ----------------------------------------------------------

CGDataProviderRef CGDataProviderCreateWithData(void *info, const void *data, size_t size,
                                               CGDataProviderReleaseDataCallback releaseData) {
  if (!data && size > 0) return nullptr;
  CGDataProvider *provider = new (std::nothrow) CGDataProvider;
  if (!provider) return nullptr;
  provider->bytes = data;
  provider->size = size;
  provider->info = info;
  provider->releaseData = releaseData;
  return provider;
}

CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data) {
  if (!data) return nullptr;
  NSData *object = (NSData *)data;
  CGDataProviderRef provider = CGDataProviderCreateWithData(nullptr, [object bytes], [object length],
                                                            nullptr);
  if (provider) provider->data = [object retain];
  return provider;
}

CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider) {
  if (provider) provider->refs.fetch_add(1);
  return provider;
}

void CGDataProviderRelease(CGDataProviderRef provider) {
  if (!provider || provider->refs.fetch_sub(1) != 1) return;
  if (provider->releaseData) provider->releaseData(provider->info, provider->bytes, provider->size);
  [provider->data release];
  delete provider;
}

CFDataRef CGDataProviderCopyData(CGDataProviderRef provider) {
  if (!provider) return nullptr;
  return (CFDataRef)[[NSData alloc] initWithBytes:provider->bytes length:provider->size];
}

// --- Images ------------------------------------------------------------------

namespace {

// Keeps the image alive for as long as a data provider shows its bytes.
void ReleaseImageBytes(void *info, const void *, size_t) { static_cast<q::Image *>(info)->release(); }

// Every image alive, so that a CGImageRef passed where an object may be
// (a layer's contents) can be told from one.
std::mutex &LiveLock() {
  static std::mutex *lock = new std::mutex;
  return *lock;
}

std::unordered_set<const void *> &Live() {
  static auto *live = new std::unordered_set<const void *>;
  return *live;
}

CGImageRef Wrap(q::Image *image, CGColorSpaceRef space) {
  if (!image) return nullptr;
  CGImage *wrapper = new (std::nothrow) CGImage;
  if (!wrapper) {
    image->release();
    return nullptr;
  }
  wrapper->image = q::ImageRef::adopt(image);
  wrapper->space = CGColorSpaceRetain(space);
  std::lock_guard<std::mutex> hold(LiveLock());
  Live().insert(wrapper);
  return wrapper;
}

}  // namespace

CGImageRef TVCGImageCreateWithImage(q::Image *image) {
  if (!image) return nullptr;
  if (image->isMask()) return Wrap(image, nullptr);
  CGColorSpaceRef space = image->colorModel() == q::ColorModel::Gray
                              ? CGColorSpaceCreateDeviceGray()
                              : CGColorSpaceCreateDeviceRGB();
  CGImageRef result = Wrap(image, space);
  CGColorSpaceRelease(space);
  return result;
}

CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent, size_t bitsPerPixel,
                         size_t bytesPerRow, CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                         CGDataProviderRef provider, const CGFloat *decode, bool shouldInterpolate,
                         CGColorRenderingIntent) {
  if (!provider || decode) return nullptr;
  q::PixelFormat format;
  format.width = width;
  format.height = height;
  format.bitsPerComponent = bitsPerComponent;
  format.bitsPerPixel = bitsPerPixel;
  format.bytesPerRow = bytesPerRow;
  format.bitmapInfo = bitmapInfo;
  bool alphaOnly = (bitmapInfo & kCGBitmapAlphaInfoMask) == kCGImageAlphaOnly;
  if (!space && !alphaOnly) return nullptr;
  format.model = space && space->model == q::ColorModel::Gray ? q::ColorModel::Gray
                                                              : q::ColorModel::RGB;
  if (provider->size < format.minimumLength()) return nullptr;
  q::Image *image = q::Image::create(format, provider->bytes, provider->size, shouldInterpolate);
  return Wrap(image, space);
}

CGImageRef CGImageMaskCreate(size_t width, size_t height, size_t bitsPerComponent,
                             size_t bitsPerPixel, size_t bytesPerRow, CGDataProviderRef provider,
                             const CGFloat *decode, bool shouldInterpolate) {
  if (!provider || decode) return nullptr;
  q::Image *image = q::Image::createMask(width, height, bitsPerComponent, bitsPerPixel, bytesPerRow,
                                         provider->bytes, provider->size, shouldInterpolate);
  return Wrap(image, nullptr);
}

CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect) {
  if (!image || CGRectIsNull(rect)) return nullptr;
  return Wrap(image->image->createWithImageInRect(talvo::cg::ToQuartz(rect)), image->space);
}

CGImageRef CGImageCreateCopy(CGImageRef image) {
  if (!image) return nullptr;
  return Wrap(image->image->retain(), image->space);
}

CGImageRef CGImageRetain(CGImageRef image) {
  if (image) image->refs.fetch_add(1);
  return image;
}

bool TVCGImageIsLive(const void *pointer) {
  if (!pointer) return false;
  std::lock_guard<std::mutex> hold(LiveLock());
  return Live().count(pointer) > 0;
}

void CGImageRelease(CGImageRef image) {
  if (!image || image->refs.fetch_sub(1) != 1) return;
  {
    std::lock_guard<std::mutex> hold(LiveLock());
    Live().erase(image);
  }
  CGColorSpaceRelease(image->space);
  CGDataProviderRelease(image->provider);
  delete image;
}

bool CGImageIsMask(CGImageRef image) { return image && image->image->isMask(); }
size_t CGImageGetWidth(CGImageRef image) { return image ? image->image->width() : 0; }
size_t CGImageGetHeight(CGImageRef image) { return image ? image->image->height() : 0; }
size_t CGImageGetBitsPerComponent(CGImageRef image) {
  return image ? image->image->bitsPerComponent() : 0;
}
size_t CGImageGetBitsPerPixel(CGImageRef image) { return image ? image->image->bitsPerPixel() : 0; }
size_t CGImageGetBytesPerRow(CGImageRef image) { return image ? image->image->bytesPerRow() : 0; }

CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image) {
  return image ? CGImageAlphaInfo(image->image->alphaInfo()) : kCGImageAlphaNone;
}

CGBitmapInfo CGImageGetBitmapInfo(CGImageRef image) {
  return image ? image->image->bitmapInfo() : 0;
}

bool CGImageGetShouldInterpolate(CGImageRef image) {
  return image && image->image->shouldInterpolate();
}

CGColorSpaceRef CGImageGetColorSpace(CGImageRef image) { return image ? image->space : nullptr; }

CGDataProviderRef CGImageGetDataProvider(CGImageRef image) {
  if (!image) return nullptr;
  if (!image->provider) {
    q::Image *pixels = image->image->retain();
    image->provider = CGDataProviderCreateWithData(pixels, pixels->data(), pixels->dataLength(),
                                                   ReleaseImageBytes);
    if (!image->provider) pixels->release();
  }
  return image->provider;
}
