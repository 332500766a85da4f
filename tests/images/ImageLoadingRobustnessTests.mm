// Bad input to the loading categories and the Image I/O functions under
// them: nil, objects of the wrong class, URLs of other schemes, and files
// whose headers claim more than they hold. Nothing raises, nothing hangs.
#import <Talvo/Talvo.h>
#include <ImageIO/ImageIO.h>

#import "robustness/RobustnessSupport.h"

#include "images/ImageLoadingTestSupport.h"

namespace fx = imagefixtures;

using ImageLoadingRobustness = ImageLoadingTest;

TEST_F(ImageLoadingRobustness, CategoriesTakeWrongObjectsCalmly) {
  id wrong = bad::WrongObject();
  NSImage *image = nil;
  EXPECT_CALM(image = [[NSImage alloc] initWithDefinitionContentsOfURL:wrong]);
  EXPECT_EQ(image, nil);
  EXPECT_CALM(image = [[NSImage alloc] initWithContentsOfDirectoryAtURL:wrong]);
  EXPECT_EQ(image, nil);
  EXPECT_CALM(image = [[NSImage alloc] initWithContentsOfURLs:wrong]);
  EXPECT_EQ(image, nil);
  EXPECT_CALM(image = [[NSImage alloc] initWithAllURLsOfPasteboard:wrong]);
  EXPECT_EQ(image, nil);
  NSArray *entries = nil;
  EXPECT_CALM(entries = [NSImage imagesWithContentsOfDirectoriesAtURL:wrong]);
  EXPECT_NSEQ(entries, @[]);
  EXPECT_CALM(entries = [NSImage imagesWithContentsOfURLs:wrong]);
  EXPECT_NSEQ(entries, @[]);
  EXPECT_CALM(entries = [NSImage imagesWithContentsOfURLs:@[ bad::WrongString() ]]);
  EXPECT_NSEQ(entries, @[]);
  NSSize size = NSMakeSize(1, 1);
  EXPECT_CALM(size = [NSImage sizeForFileAtURL:wrong]);
  EXPECT_NSSIZE_EQ(size, 0, 0);
  // A directory URL given where files are expected, and the reverse.
  NSURL *file = WritePNG(@"a.png", 4);
  EXPECT_CALM(image = [[NSImage alloc] initWithContentsOfDirectoryAtURL:file]);
  EXPECT_EQ(image, nil);
  EXPECT_CALM(entries = [NSImage imagesWithContentsOfDirectoriesAtURL:file]);
  EXPECT_NSEQ(entries, @[]);
  EXPECT_CALM(entries = [NSImage imagesWithContentsOfURLs:@[ URL(@"") ]]);
  EXPECT_NSEQ(entries, @[]);
}

TEST_F(ImageLoadingRobustness, HeadersClaimingHugeImagesAreNotDecoded) {
  // 60000 x 60000 pixels declared in a few hundred bytes.
  fx::Bytes png = fx::PNG(fx::SplitPicture(4, 4));
  png[18] = 0xEA, png[19] = 0x60, png[22] = 0xEA, png[23] = 0x60;
  NSURL *url = Write(@"huge.png", png);
  EXPECT_NSSIZE_EQ([NSImage sizeForFileAtURL:url], 60000, 60000);
  CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)url, NULL);
  CGImageRef image = NULL;
  EXPECT_CALM(image = CGImageSourceCreateImageAtIndex(source, 0, NULL));
  EXPECT_EQ(image, (CGImageRef)NULL);
  CFRelease(source);
  NSImage *loaded = nil;
  EXPECT_CALM(loaded = [[NSImage alloc] initWithDefinitionContentsOfURL:url]);
  [loaded release];
}

TEST_F(ImageLoadingRobustness, ImageSourceFunctionsOnWrongObjects) {
  id wrong = bad::WrongObject();
  CGImageSourceRef source = NULL;
  EXPECT_CALM(source = CGImageSourceCreateWithURL((CFURLRef)wrong, (CFDictionaryRef)wrong));
  EXPECT_EQ(source, (CGImageSourceRef)NULL);
  EXPECT_CALM(source = CGImageSourceCreateWithData((CFDataRef)wrong, NULL));
  EXPECT_EQ(source, (CGImageSourceRef)NULL);
  CFDictionaryRef properties = NULL;
  EXPECT_CALM(properties = CGImageSourceCopyPropertiesAtIndex((CGImageSourceRef)wrong, 0, NULL));
  EXPECT_EQ(properties, (CFDictionaryRef)NULL);
  EXPECT_CALM(CGImageSourceGetType((CGImageSourceRef)wrong));
  EXPECT_CALM(CGImageSourceCreateImageAtIndex((CGImageSourceRef)wrong, SIZE_MAX, NULL));
}

// GNUstep's GIF reader reads through a missing colour table and past a
// short one, and its TIFF reader writes past its buffer for palettes under
// 8 bits: such files never reach them. Image I/O decodes what it can.
TEST_F(ImageLoadingRobustness, PalettesGNUstepMishandlesAreDecodedByImageIO) {
  NSImage *image = [[NSImage alloc] initWithDefinitionContentsOfURL:Write(@"bare.gif", fx::GIFWithoutPalette(3, 2))];
  EXPECT_EQ(image, nil) << "no palette: nothing to show";
  [image release];

  image = [[NSImage alloc] initWithDefinitionContentsOfURL:Write(@"short.gif", fx::GIFWithValuesPastItsTable(4, 2))];
  ASSERT_NE(image, nil);
  EXPECT_NSSIZE_EQ([image size], 4, 2);
  NSBitmapImageRep *rep = (NSBitmapImageRep *)[[image representations] firstObject];
  ASSERT_TRUE([rep isKindOfClass:[NSBitmapImageRep class]]);
  EXPECT_EQ([[rep colorAtX:0 y:0] redComponent], 1.0) << "value 0, red";
  EXPECT_EQ([[rep colorAtX:2 y:0] alphaComponent], 0.0) << "value 2, past the table";
  [image release];

  for (int bits : {4, 8}) {
    SCOPED_TRACE(bits);
    image = [[NSImage alloc] initWithDefinitionContentsOfURL:
                                 Write([NSString stringWithFormat:@"palette%d.tif", bits],
                                       fx::PaletteTIFF(6, 3, bits))];
    ASSERT_NE(image, nil);
    EXPECT_NSSIZE_EQ([image size], 6, 3);
    rep = (NSBitmapImageRep *)[[image representations] firstObject];
    ASSERT_TRUE([rep isKindOfClass:[NSBitmapImageRep class]]);
    NSColor *colour = [[rep colorAtX:5 y:2] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    EXPECT_NEAR([colour redComponent], 1.0, 0.01);
    EXPECT_NEAR([colour greenComponent], 0.0, 0.01);
    [image release];
  }
}
