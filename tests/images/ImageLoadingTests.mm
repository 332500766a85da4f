// Multi-resolution loading: the scale suffix, directories, URL lists, the
// pasteboard, pixel sizes from headers, and hostile files, all against
// files written into a private temporary directory.
#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#include <sys/stat.h>

#include "images/ImageLoadingTestSupport.h"

namespace fx = imagefixtures;

namespace {

NSSize RepSize(NSImage *image, NSUInteger index) {
  return [[[image representations] objectAtIndex:index] size];
}

NSArray *SortedNames(NSArray *entries) {
  NSMutableArray *names = [NSMutableArray array];
  for (NSDictionary *entry in entries) [names addObject:[entry objectForKey:@"name"]];
  return [names sortedArrayUsingSelector:@selector(compare:)];
}

}  // namespace

using ImageLoading = ImageLoadingTest;

TEST_F(ImageLoading, ScaleSuffixDividesBitmapSizesByItsDigitInEitherCase) {
  struct Case {
    NSString *name;
    uint32_t pixels;
    CGFloat points;
  } cases[] = {
      {@"icon@2x.png", 64, 32}, {@"icon@2X.png", 64, 32},      {@"icon@3x.png", 96, 32},
      {@"icon.png", 64, 64},    {@"icon@2x~dark.png", 64, 64}, {@"icon@10x.png", 40, 40},
      {@"icon@x.png", 64, 64},  {@"icon@2x@1x.png", 64, 64},   {@"icon@2x.jpeg.png", 64, 64},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE([c.name UTF8String]);
    NSURL *url = Write(c.name, fx::PNG(fx::SolidPicture(c.pixels, c.pixels, 9, 9, 9)));
    Owned<NSImage> image([[NSImage alloc] initWithDefinitionContentsOfURL:url]);
    ASSERT_NE(image.get(), nil);
    ASSERT_EQ([[image.get() representations] count], 1u);
    EXPECT_NSSIZE_EQ(RepSize(image.get(), 0), c.points, c.points);
    EXPECT_EQ([[[image.get() representations] objectAtIndex:0] pixelsWide], (NSInteger)c.pixels);
  }
}

TEST_F(ImageLoading, ZeroScaleSuffixLeavesSizesFinite) {
  NSURL *url = WritePNG(@"icon@0x.png", 20);
  Owned<NSImage> image([[NSImage alloc] initWithDefinitionContentsOfURL:url]);
  ASSERT_NE(image.get(), nil);
  EXPECT_NSSIZE_EQ(RepSize(image.get(), 0), 20, 20);
}

TEST_F(ImageLoading, ScaleSuffixAppliesAfterTheFileResolution) {
  // A 144-dpi file already has half-size points; the suffix divides pixels.
  NSURL *url = Write(@"dense@4x.png", fx::PNG(fx::SplitPicture(64, 32), true, 5669));
  Owned<NSImage> image([[NSImage alloc] initWithDefinitionContentsOfURL:url]);
  ASSERT_NE(image.get(), nil);
  EXPECT_NSSIZE_EQ(RepSize(image.get(), 0), 16, 8);
}

TEST_F(ImageLoading, UnloadableFilesGiveNilWithoutRaising) {
  fx::Bytes png = fx::PNG(fx::SplitPicture(40, 30));
  fx::Bytes gif = fx::GIF(40, 30, {{0, 0, 40, 30, std::vector<uint8_t>(1200, 1)}});
  NSURL *urls[] = {
      Write(@"empty.png", {}),
      WriteText(@"garbage.png", "not an image at all"),
      WriteText(@"readme.txt", "hello"),
      Write(@"cut.png", fx::Bytes(png.begin(), png.begin() + long(png.size() / 2))),
      Write(@"cut20.png", fx::Bytes(png.begin(), png.begin() + 20)),
      Write(@"cut.gif", fx::Bytes(gif.begin(), gif.begin() + long(gif.size() / 2))),
      MakeDirectory(@"folder.png"),
      MakeFIFO(@"pipe.png"),
      URL(@"missing.png"),
      [NSURL URLWithString:@"http://127.0.0.1:9/icon.png"],
      [NSURL URLWithString:@"data:image/png;base64,AAAA"],
  };
  for (NSURL *url : urls) {
    SCOPED_TRACE([[url absoluteString] UTF8String]);
    NSImage *image = nil;
    @try {
      image = [[NSImage alloc] initWithDefinitionContentsOfURL:url];
    } @catch (NSException *exception) {
      ADD_FAILURE() << "raised " << [[exception name] UTF8String];
    }
    EXPECT_EQ(image, nil);
    [image release];
    // Only the header counts for the pixel size: a file cut after it has one.
    NSString *name = [url lastPathComponent];
    BOOL headerIntact = [name isEqualToString:@"cut.png"] || [name isEqualToString:@"cut.gif"];
    EXPECT_NSSIZE_EQ([NSImage sizeForFileAtURL:url], headerIntact ? 40 : 0, headerIntact ? 30 : 0);
  }
  NSImage *image = [[NSImage alloc] initWithDefinitionContentsOfURL:NullOf<NSURL *>()];
  EXPECT_EQ(image, nil);
  // A truncated JPEG loads in part, as on macOS: the rows that arrived.
  // (Big enough for its tables to fill less than half the file.)
  fx::Bytes jpeg = fx::JPEG(fx::SplitPicture(400, 300));
  NSURL *cut = Write(@"cut.jpg", fx::Bytes(jpeg.begin(), jpeg.begin() + long(jpeg.size() / 2)));
  @try {
    Owned<NSImage> partial([[NSImage alloc] initWithDefinitionContentsOfURL:cut]);
    ASSERT_NE(partial.get(), nil);
    EXPECT_NSSIZE_EQ([partial.get() size], 400, 300);
    NSBitmapImageRep *rep = (NSBitmapImageRep *)[[partial.get() representations] firstObject];
    ASSERT_TRUE([rep isKindOfClass:[NSBitmapImageRep class]]);
    NSColor *topLeft = [[rep colorAtX:2 y:2] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    EXPECT_GT([topLeft redComponent], 0.8);
    EXPECT_LT([topLeft blueComponent], 0.2);
  } @catch (NSException *exception) {
    ADD_FAILURE() << "truncated JPEG raised";
  }
}

TEST_F(ImageLoading, UnreadableFileGivesNilUnlessTheProcessMayReadEverything) {
  NSURL *url = WritePNG(@"locked.png", 16);
  chmod([[url path] fileSystemRepresentation], 0);
  Owned<NSImage> image([[NSImage alloc] initWithDefinitionContentsOfURL:url]);
  NSSize size = [NSImage sizeForFileAtURL:url];
  if (geteuid() == 0) {
    // root reads mode-000 files.
    EXPECT_NE(image.get(), nil);
    EXPECT_NSSIZE_EQ(size, 16, 16);
  } else {
    EXPECT_EQ(image.get(), nil);
    EXPECT_NSSIZE_EQ(size, 0, 0);
  }
}

TEST_F(ImageLoading, DirectoryCollectsEveryImageFileDirectlyInIt) {
  WritePNG(@"set/a.png", 32);
  WritePNG(@"set/a@2x.png", 64);
  WritePNG(@"set/.hidden@4x.png", 128);  // hidden files are not skipped
  WriteText(@"set/readme.txt", "hello");
  WritePNG(@"set/sub/deep.png", 8);  // subdirectories are passed over
  MakeDirectory(@"set/empty.png");
  Owned<NSImage> image([[NSImage alloc] initWithContentsOfDirectoryAtURL:URL(@"set")]);
  ASSERT_NE(image.get(), nil);
  NSArray *reps = [image.get() representations];
  ASSERT_EQ([reps count], 3u);
  NSMutableArray *pixels = [NSMutableArray array];
  for (NSImageRep *rep in reps) {
    EXPECT_NSSIZE_EQ([rep size], 32, 32);
    [pixels addObject:@([rep pixelsWide])];
  }
  EXPECT_NSEQ([pixels sortedArrayUsingSelector:@selector(compare:)], (@[ @32, @64, @128 ]));
}

TEST_F(ImageLoading, DirectoryWithoutImagesOrMissingGivesNil) {
  WriteText(@"texts/a.txt", "a");
  MakeDirectory(@"texts/sub");
  MakeDirectory(@"nothing");
  Owned<NSImage> texts([[NSImage alloc] initWithContentsOfDirectoryAtURL:URL(@"texts")]);
  EXPECT_EQ(texts.get(), nil);
  Owned<NSImage> empty([[NSImage alloc] initWithContentsOfDirectoryAtURL:URL(@"nothing")]);
  EXPECT_EQ(empty.get(), nil);
  Owned<NSImage> missing([[NSImage alloc] initWithContentsOfDirectoryAtURL:URL(@"absent")]);
  EXPECT_EQ(missing.get(), nil);
  Owned<NSImage> none([[NSImage alloc] initWithContentsOfDirectoryAtURL:NullOf<NSURL *>()]);
  EXPECT_EQ(none.get(), nil);
}

TEST_F(ImageLoading, DirectoriesBelowRootEachGiveANamedEntryOfTheirOwnFiles) {
  WritePNG(@"root/one.imageset/a.png", 32);
  WritePNG(@"root/one.imageset/a@2x.png", 64);
  WritePNG(@"root/two/b.png", 16);
  WritePNG(@"root/two/nested/c@2x.png", 16);
  WriteText(@"root/two/readme.txt", "hi");
  MakeDirectory(@"root/three");
  WritePNG(@"root/top.png", 8);  // files of the root itself belong to no entry
  NSArray *entries = [NSImage imagesWithContentsOfDirectoriesAtURL:URL(@"root")];
  ASSERT_NE(entries, nil);
  EXPECT_NSEQ(SortedNames(entries), (@[ @"nested", @"one", @"two" ]));
  for (NSDictionary *entry in entries) {
    EXPECT_EQ([[entry allKeys] count], 2u);
    NSImage *image = [entry objectForKey:@"image"];
    NSString *name = [entry objectForKey:@"name"];
    NSUInteger expected = [name isEqualToString:@"one"] ? 2 : 1;
    EXPECT_EQ([[image representations] count], expected) << [name UTF8String];
    if ([name isEqualToString:@"nested"]) EXPECT_NSSIZE_EQ(RepSize(image, 0), 8, 8);
  }
  EXPECT_EQ([[NSImage imagesWithContentsOfDirectoriesAtURL:URL(@"root/three")] count], 0u);
  EXPECT_NE([NSImage imagesWithContentsOfDirectoriesAtURL:URL(@"absent")], nil);
  EXPECT_EQ([[NSImage imagesWithContentsOfDirectoriesAtURL:NullOf<NSURL *>()] count], 0u);
}

TEST_F(ImageLoading, URLListsKeepOrderNamesAndSkipWhatDoesNotLoad) {
  NSArray *urls = @[
    WritePNG(@"icon.png", 16), WriteText(@"notes.txt", "x"), WritePNG(@"icon@2x.png", 32),
    URL(@"missing.png"), [NSURL URLWithString:@"http://127.0.0.1:9/a.png"],
    WritePNG(@"other@3x.png", 48)
  ];
  Owned<NSImage> image([[NSImage alloc] initWithContentsOfURLs:urls]);
  ASSERT_NE(image.get(), nil);
  ASSERT_EQ([[image.get() representations] count], 3u);
  for (NSUInteger i = 0; i < 3; i++) EXPECT_NSSIZE_EQ(RepSize(image.get(), i), 16, 16);
  EXPECT_EQ([[[image.get() representations] objectAtIndex:1] pixelsWide], 32);

  NSArray *entries = [NSImage imagesWithContentsOfURLs:urls];
  ASSERT_EQ([entries count], 3u);
  EXPECT_NSEQ([[entries objectAtIndex:0] objectForKey:@"name"], @"icon");
  EXPECT_NSEQ([[entries objectAtIndex:1] objectForKey:@"name"], @"icon@2x");
  EXPECT_NSEQ([[entries objectAtIndex:2] objectForKey:@"name"], @"other@3x");

  Owned<NSImage> none([[NSImage alloc] initWithContentsOfURLs:@[ URL(@"missing.png") ]]);
  EXPECT_EQ(none.get(), nil);
  Owned<NSImage> empty([[NSImage alloc] initWithContentsOfURLs:@[]]);
  EXPECT_EQ(empty.get(), nil);
  Owned<NSImage> wrong([[NSImage alloc] initWithContentsOfURLs:(NSArray *)@"not an array"]);
  EXPECT_EQ(wrong.get(), nil);
  EXPECT_EQ(([[NSImage imagesWithContentsOfURLs:(NSArray *)[NSArray arrayWithObjects:@42, [NSNull null], nil]] count]), 0u);
}

TEST_F(ImageLoading, PixelSizeOfEveryFormatWithoutDecoding) {
  fx::Picture picture = fx::SplitPicture(40, 30);
  struct Case {
    NSString *name;
    fx::Bytes bytes;
  } cases[] = {
      {@"a.png", fx::PNG(picture)},
      {@"a.jpg", fx::JPEG(picture, 6, 0, true, 9000)},
      {@"a.gif", fx::GIF(40, 30, {{5, 5, 2, 2, {0, 1, 2, 3}}})},
      {@"a.bmp", fx::BMP(picture, 32, true)},
      {@"a.tif", fx::TIFF(picture, true, 2)},
      {@"a.webp", fx::WebPLossy(picture, true)},
      {@"lossless.webp", fx::WebPLossless(picture)},
      {@"named-wrong.gif", fx::PNG(picture)},  // the contents decide
  };
  for (const Case &c : cases) {
    SCOPED_TRACE([c.name UTF8String]);
    EXPECT_NSSIZE_EQ([NSImage sizeForFileAtURL:Write(c.name, c.bytes)], 40, 30);
  }
  // A suffix says nothing about pixels.
  EXPECT_NSSIZE_EQ([NSImage sizeForFileAtURL:WritePNG(@"b@2x.png", 64)], 64, 64);
  // A size beyond a float's integers comes back rounded as a float.
  fx::Bytes big = fx::PNG(fx::SplitPicture(4, 4));
  big[16] = 0x01, big[17] = 0x00, big[18] = 0x00, big[19] = 0x01;  // 16777217
  EXPECT_NSSIZE_EQ([NSImage sizeForFileAtURL:Write(@"big.png", big)], 16777216, 4);
  EXPECT_NSSIZE_EQ([NSImage sizeForFileAtURL:NullOf<NSURL *>()], 0, 0);
}
