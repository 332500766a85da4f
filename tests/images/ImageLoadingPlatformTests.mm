// What image loading stands on: image sources, the file manager's URL
// listing, URL resource values and the pasteboard's URL objects.
#import <AppKit/AppKit.h>
#include <ImageIO/ImageIO.h>
#import <Talvo/Talvo.h>

#include "images/ImageLoadingTestSupport.h"

namespace fx = imagefixtures;

namespace {

// Pixel (x, y) of an 8-bit RGBA image, rows from the top.
std::vector<int> PixelOf(CGImageRef image, size_t x, size_t y) {
  NSData *bytes = (NSData *)CGDataProviderCopyData(CGImageGetDataProvider(image));
  const uint8_t *p =
      static_cast<const uint8_t *>([bytes bytes]) + y * CGImageGetBytesPerRow(image) + x * 4;
  std::vector<int> pixel(p, p + 4);
  [bytes release];
  return pixel;
}

NSArray *Paths(NSArray *urls) {
  NSMutableArray *paths = [NSMutableArray array];
  for (NSURL *url in urls) [paths addObject:[url path]];
  return [paths sortedArrayUsingSelector:@selector(compare:)];
}

}  // namespace

using ImageLoadingPlatform = ImageLoadingTest;

TEST_F(ImageLoadingPlatform, ImageSourcePropertiesFromTheHeader) {
  NSURL *url = Write(@"photo.jpg", fx::JPEG(fx::SplitPicture(40, 30), 6, 144));
  CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)url, NULL);
  ASSERT_NE(source, (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceGetCount(source), 1u);
  EXPECT_NSEQ((NSString *)CGImageSourceGetType(source), @"public.jpeg");
  NSDictionary *properties = (NSDictionary *)CGImageSourceCopyPropertiesAtIndex(source, 0, NULL);
  EXPECT_NSEQ([properties objectForKey:@"PixelWidth"], @40);
  EXPECT_NSEQ([properties objectForKey:@"PixelHeight"], @30);
  EXPECT_NSEQ([properties objectForKey:(NSString *)kCGImagePropertyOrientation], @6);
  EXPECT_EQ([[properties objectForKey:(NSString *)kCGImagePropertyDPIWidth] doubleValue], 144.0);
  EXPECT_FALSE([[properties objectForKey:(NSString *)kCGImagePropertyHasAlpha] boolValue]);
  // The properties behave as any dictionary: equality, enumeration, copies.
  NSDictionary *expected = @{@"PixelWidth" : @40, @"PixelHeight" : @30, @"HasAlpha" : [NSNumber numberWithBool:NO],
                             @"Orientation" : @6, @"DPIWidth" : @144.0, @"DPIHeight" : @144.0};
  EXPECT_NSEQ(properties, expected);
  EXPECT_NSEQ(expected, properties);
  NSMutableSet *keys = [NSMutableSet set];
  for (id key in properties) [keys addObject:key];
  EXPECT_NSEQ(keys, [NSSet setWithArray:[expected allKeys]]);
  NSMutableDictionary *edited = [[properties mutableCopy] autorelease];
  [edited removeObjectForKey:@"HasAlpha"];
  EXPECT_EQ([edited count], 5u);
  EXPECT_EQ([properties count], 6u);
  EXPECT_EQ([properties copy], properties);
  [properties release];
  [properties release];
  EXPECT_EQ(CGImageSourceCopyPropertiesAtIndex(source, 1, NULL), (CFDictionaryRef)NULL);
  CFRelease(source);

  // A PNG with no stated orientation or resolution has no such keys.
  CGImageSourceRef png = CGImageSourceCreateWithURL((CFURLRef)WritePNG(@"a.png", 4), NULL);
  properties = (NSDictionary *)CGImageSourceCopyPropertiesAtIndex(png, 0, NULL);
  EXPECT_EQ([properties objectForKey:(NSString *)kCGImagePropertyOrientation], nil);
  EXPECT_EQ([properties objectForKey:(NSString *)kCGImagePropertyDPIWidth], nil);
  [properties release];
  CFRelease(png);
}

TEST_F(ImageLoadingPlatform, ImageSourceCountsFramesBeyondTheFirstBlockAndDecodesThem) {
  // 40 frames of 30 x 30 pixels: far more than the first block read.
  std::vector<fx::GIFFrame> frames;
  for (int i = 0; i < 40; i++) {
    std::vector<uint8_t> indices(900);
    for (size_t k = 0; k < indices.size(); k++) indices[k] = uint8_t((k * 7 + size_t(i)) % 3);
    frames.push_back({0, 0, 30, 30, indices});
  }
  frames.push_back({0, 0, 1, 1, {2}});
  NSURL *url = Write(@"anim.gif", fx::GIF(30, 30, frames));
  CGImageSourceRef source = CGImageSourceCreateWithURL((CFURLRef)url, NULL);
  ASSERT_NE(source, (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceGetCount(source), 41u);
  CGImageRef last = CGImageSourceCreateImageAtIndex(source, 40, NULL);
  ASSERT_NE(last, (CGImageRef)NULL);
  EXPECT_EQ(CGImageGetWidth(last), 30u);
  EXPECT_EQ(PixelOf(last, 0, 0), (std::vector<int>{0, 0, 255, 255}));
  CGImageRelease(last);
  EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, 41, NULL), (CGImageRef)NULL);
  CFRelease(source);
}

TEST_F(ImageLoadingPlatform, ImageSourceDecodesPremultipliedRGBA) {
  NSData *data = [NSData dataWithBytes:fx::PNG(fx::SplitPicture(8, 2)).data()
                                length:fx::PNG(fx::SplitPicture(8, 2)).size()];
  CGImageSourceRef source = CGImageSourceCreateWithData((CFDataRef)data, NULL);
  CGImageRef image = CGImageSourceCreateImageAtIndex(source, 0, NULL);
  ASSERT_NE(image, (CGImageRef)NULL);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaPremultipliedLast);
  EXPECT_EQ(PixelOf(image, 0, 1), (std::vector<int>{255, 0, 0, 255}));
  EXPECT_EQ(PixelOf(image, 7, 1), (std::vector<int>{0, 0, 128, 128}));
  CGImageRelease(image);
  CFRelease(source);
  // Opaque formats skip the alpha byte.
  NSData *jpeg = [NSData dataWithBytes:fx::JPEG(fx::SplitPicture(8, 8)).data()
                                length:fx::JPEG(fx::SplitPicture(8, 8)).size()];
  source = CGImageSourceCreateWithData((CFDataRef)jpeg, NULL);
  image = CGImageSourceCreateImageAtIndex(source, 0, NULL);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaNoneSkipLast);
  CGImageRelease(image);
  CFRelease(source);
}

TEST_F(ImageLoadingPlatform, ImageSourceRefusesBadInput) {
  EXPECT_EQ(CGImageSourceCreateWithURL(NULL, NULL), (CGImageSourceRef)NULL);
  EXPECT_EQ(
      CGImageSourceCreateWithURL((CFURLRef)[NSURL URLWithString:@"http://127.0.0.1:9/a.png"], NULL),
      (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceCreateWithURL((CFURLRef)MakeDirectory(@"dir.png"), NULL),
            (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceCreateWithURL((CFURLRef) @"not a URL", NULL), (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceCreateWithData((CFDataRef)[NSData data], NULL), (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceCreateWithData((CFDataRef) @"not data", NULL), (CGImageSourceRef)NULL);
  // Data that is no image: a source with nothing in it.
  CGImageSourceRef source = CGImageSourceCreateWithData(
      (CFDataRef)[@"hello" dataUsingEncoding:NSUTF8StringEncoding], NULL);
  ASSERT_NE(source, (CGImageSourceRef)NULL);
  EXPECT_EQ(CGImageSourceGetCount(source), 0u);
  EXPECT_EQ(CGImageSourceGetType(source), (CFStringRef)NULL);
  EXPECT_EQ(CGImageSourceCopyPropertiesAtIndex(source, 0, NULL), (CFDictionaryRef)NULL);
  EXPECT_EQ(CGImageSourceCreateImageAtIndex(source, 0, NULL), (CGImageRef)NULL);
  CFRelease(source);
  // Functions given something that is no source answer nothing.
  EXPECT_EQ(CGImageSourceGetCount((CGImageSourceRef) @"x"), 0u);
  EXPECT_EQ(CGImageSourceCreateImageAtIndex(NULL, 0, NULL), (CGImageRef)NULL);
}

TEST_F(ImageLoadingPlatform, DirectoryContentsAreAbsoluteURLsWithHiddenFilesOnRequest) {
  WritePNG(@"list/a.png", 4);
  WritePNG(@"list/.hidden.png", 4);
  MakeDirectory(@"list/sub");
  WritePNG(@"list/sub/deep.png", 4);
  NSFileManager *manager = [NSFileManager defaultManager];
  // A relative current directory must not matter.
  NSString *before = [manager currentDirectoryPath];
  [manager changeCurrentDirectoryPath:@"/"];
  NSError *error = nil;
  NSArray *all = [manager contentsOfDirectoryAtURL:URL(@"list")
                        includingPropertiesForKeys:@[ NSURLTypeIdentifierKey ]
                                           options:0
                                             error:&error];
  [manager changeCurrentDirectoryPath:before];
  EXPECT_EQ(error, nil);
  EXPECT_NSEQ(Paths(all), (@[ Path(@"list/.hidden.png"), Path(@"list/a.png"), Path(@"list/sub") ]));
  for (NSURL *url in all) {
    EXPECT_TRUE([url isFileURL]);
    EXPECT_EQ([url baseURL], nil);
  }
  NSArray *visible = [manager contentsOfDirectoryAtURL:URL(@"list")
                            includingPropertiesForKeys:nil
                                               options:NSDirectoryEnumerationSkipsHiddenFiles
                                                 error:NULL];
  EXPECT_NSEQ(Paths(visible), (@[ Path(@"list/a.png"), Path(@"list/sub") ]));

  NSArray *empty = [manager contentsOfDirectoryAtURL:MakeDirectory(@"empty")
                          includingPropertiesForKeys:nil
                                             options:0
                                               error:&error];
  EXPECT_NSEQ(empty, @[]);
  NSArray *missing = [manager contentsOfDirectoryAtURL:URL(@"absent")
                            includingPropertiesForKeys:nil
                                               options:0
                                                 error:&error];
  EXPECT_EQ(missing, nil);
  EXPECT_NSEQ([error domain], NSCocoaErrorDomain);
  EXPECT_EQ([error code], NSFileReadNoSuchFileError);
}

TEST_F(ImageLoadingPlatform, EnumeratorYieldsURLsRecursivelyHonouringOptions) {
  WritePNG(@"tree/a.png", 4);
  WritePNG(@"tree/.secret/b.png", 4);
  WritePNG(@"tree/one/two/c.png", 4);
  WritePNG(@"tree/Thing.app/Contents/d.png", 4);
  NSFileManager *manager = [NSFileManager defaultManager];
  auto walk = [&](NSUInteger options) {
    NSMutableArray *urls = [NSMutableArray array];
    NSDirectoryEnumerator *e = [manager enumeratorAtURL:URL(@"tree")
                             includingPropertiesForKeys:@[ NSURLIsDirectoryKey ]
                                                options:options
                                           errorHandler:nil];
    EXPECT_TRUE([e isKindOfClass:[NSDirectoryEnumerator class]]);
    for (id url in e) {
      EXPECT_TRUE([url isKindOfClass:[NSURL class]]);
      [urls addObject:url];
    }
    return Paths(urls);
  };
  EXPECT_EQ([walk(0) count], 9u);
  EXPECT_NSEQ(
      walk(NSDirectoryEnumerationSkipsSubdirectoryDescendants), (@[
        Path(@"tree/.secret"), Path(@"tree/Thing.app"), Path(@"tree/a.png"), Path(@"tree/one")
      ]));
  EXPECT_FALSE(
      [walk(NSDirectoryEnumerationSkipsHiddenFiles) containsObject:Path(@"tree/.secret/b.png")]);
  EXPECT_FALSE([walk(NSDirectoryEnumerationSkipsPackageDescendants)
      containsObject:Path(@"tree/Thing.app/Contents")]);
  // skipDescendants on a directory just returned keeps the walk out of it.
  NSDirectoryEnumerator *e = [manager enumeratorAtURL:URL(@"tree")
                           includingPropertiesForKeys:nil
                                              options:0
                                         errorHandler:nil];
  NSMutableArray *seen = [NSMutableArray array];
  for (NSURL *url in e) {
    [seen addObject:[url path]];
    if ([[url lastPathComponent] isEqualToString:@"one"]) [e skipDescendants];
  }
  EXPECT_FALSE([seen containsObject:Path(@"tree/one/two")]);
  EXPECT_TRUE([seen containsObject:Path(@"tree/a.png")]);
}

TEST_F(ImageLoadingPlatform, EnumeratorReportsUnreadableDirectoriesToItsHandler) {
  WritePNG(@"walk/gone/x.png", 4);
  WritePNG(@"walk/kept/y.png", 4);
  __block NSMutableArray *reported = [NSMutableArray array];
  __block BOOL answer = YES;
  NSDirectoryEnumerator *e =
      [[NSFileManager defaultManager] enumeratorAtURL:URL(@"walk")
                           includingPropertiesForKeys:nil
                                              options:0
                                         errorHandler:^BOOL(NSURL *url, NSError *error) {
                                           [reported addObject:[url path]];
                                           return answer;
                                         }];
  NSMutableArray *seen = [NSMutableArray array];
  for (NSURL *url in e) {
    [seen addObject:[url path]];
    // The directory goes away before the walk enters it.
    if ([[url lastPathComponent] isEqualToString:@"gone"]) {
      [[NSFileManager defaultManager] removeItemAtPath:[url path] error:NULL];
    }
  }
  EXPECT_NSEQ(reported, @[ Path(@"walk/gone") ]);
  EXPECT_TRUE([seen containsObject:Path(@"walk/kept/y.png")]);

  // A handler that answers NO ends the walk; a missing root is reported too.
  [reported removeAllObjects];
  answer = NO;
  e = [[NSFileManager defaultManager] enumeratorAtURL:URL(@"absent")
                           includingPropertiesForKeys:nil
                                              options:0
                                         errorHandler:^BOOL(NSURL *url, NSError *error) {
                                           [reported addObject:@([error code])];
                                           return answer;
                                         }];
  EXPECT_EQ([e nextObject], nil);
  EXPECT_NSEQ(reported, @[ @(NSFileReadNoSuchFileError) ]);
}

TEST_F(ImageLoadingPlatform, ResourceValuesOfFileURLs) {
  NSURL *png = WritePNG(@"res/a.PNG", 4);
  NSURL *text = WriteText(@"res/notes.txt", "x");
  NSURL *unknown = WriteText(@"res/blob.xyz", "x");
  NSURL *folder = MakeDirectory(@"res/icons.imageset");
  struct Case {
    NSURL *url;
    BOOL directory;
    NSString *type;
  } cases[] = {{png, NO, @"public.png"},
               {text, NO, @"public.plain-text"},
               {unknown, NO, @"public.data"},
               {folder, YES, @"public.folder"}};
  for (const Case &c : cases) {
    SCOPED_TRACE([[c.url path] UTF8String]);
    id value = nil;
    EXPECT_TRUE([c.url getResourceValue:&value forKey:NSURLIsDirectoryKey error:NULL]);
    EXPECT_EQ([value boolValue], c.directory);
    EXPECT_TRUE([c.url getResourceValue:&value forKey:NSURLTypeIdentifierKey error:NULL]);
    EXPECT_NSEQ(value, c.type);
    value = nil;
    EXPECT_TRUE([c.url getResourceValue:&value
                                 forKey:(NSString *)kCFURLTypeIdentifierKey
                                  error:NULL]);
    EXPECT_NSEQ(value, c.type);
  }
  // A URL made without knowing it is a directory still answers YES.
  id value = nil;
  EXPECT_TRUE([[NSURL fileURLWithPath:Path(@"res/icons.imageset")]
      getResourceValue:&value
                forKey:NSURLIsDirectoryKey
                 error:NULL]);
  EXPECT_TRUE([value boolValue]);
  NSError *error = nil;
  value = @"stale";
  EXPECT_FALSE([URL(@"res/absent.png") getResourceValue:&value
                                                 forKey:NSURLIsDirectoryKey
                                                  error:&error]);
  EXPECT_EQ(value, nil);
  EXPECT_EQ([error code], NSFileReadNoSuchFileError);
}

TEST_F(ImageLoadingPlatform, PlatformImageLoadingRefusesCutAndEmptyFilesWithoutRaising) {
  fx::Picture picture = fx::SplitPicture(40, 30);
  fx::Bytes png = fx::PNG(picture), jpeg = fx::JPEG(picture);
  fx::Bytes gif = fx::GIF(40, 30, {{0, 0, 40, 30, std::vector<uint8_t>(1200, 1)}});
  NSURL *refused[] = {
      Write(@"cut.png", fx::Bytes(png.begin(), png.end() - 20)),
      Write(@"cut.jpg", fx::Bytes(jpeg.begin(), jpeg.begin() + long(jpeg.size() / 2))),
      Write(@"cut.gif", fx::Bytes(gif.begin(), gif.end() - 1)),
      Write(@"empty.tif", {}),
      MakeDirectory(@"dir.png"),
  };
  for (NSURL *url : refused) {
    NSImage *image = nil;
    @try {
      image = [[NSImage alloc] initWithContentsOfURL:url];
    } @catch (NSException *exception) {
      ADD_FAILURE() << [[url lastPathComponent] UTF8String] << " raised";
    }
    EXPECT_EQ(image, nil) << [[url lastPathComponent] UTF8String];
    [image release];
  }
  // Whole files still load through GNUstep's readers.
  for (NSURL *url : {Write(@"a.png", png), Write(@"a.jpg", jpeg), Write(@"a.gif", gif)}) {
    Owned<NSImage> image([[NSImage alloc] initWithContentsOfURL:url]);
    ASSERT_NE(image.get(), nil) << [[url lastPathComponent] UTF8String];
    EXPECT_EQ([[[image.get() representations] objectAtIndex:0] pixelsWide], 40);
  }
}

using ImageLoadingPasteboard = ImageLoadingTest;

TEST_F(ImageLoadingPasteboard, URLsRoundTripAndImageURLsLoadIntoOneImage) {
  if (!HasWindowServer()) GTEST_SKIP() << "needs a window server";
  NSPasteboard *pasteboard = [NSPasteboard pasteboardWithUniqueName];
  NSURL *icon = WritePNG(@"icon.png", 16);
  NSURL *icon2x = WritePNG(@"icon@2x.png", 32);
  NSURL *notes = WriteText(@"notes.txt", "x");
  NSURL *web = [NSURL URLWithString:@"http://example.invalid/a.png"];
  NSInteger count = [pasteboard clearContents];
  EXPECT_TRUE(([pasteboard writeObjects:@[ icon, notes ]]));
  EXPECT_TRUE(([pasteboard writeObjects:@[ web, icon2x ]]));  // objects accumulate until cleared
  EXPECT_GT([pasteboard changeCount], count - 1);

  NSArray *all = [pasteboard readObjectsForClasses:@[ [NSURL class] ] options:nil];
  EXPECT_NSEQ(all, (@[ icon, notes, web, icon2x ]));
  NSArray *files = [pasteboard readObjectsForClasses:@[ [NSURL class] ]
                                             options:@{
                                               NSPasteboardURLReadingFileURLsOnlyKey : @(YES)
                                             }];
  EXPECT_NSEQ(files, (@[ icon, notes, icon2x ]));
  NSArray *images = [pasteboard
      readObjectsForClasses:@[ [NSURL class] ]
                    options:@{
                      NSPasteboardURLReadingContentsConformToTypesKey : [NSImage imageTypes]
                    }];
  EXPECT_NSEQ(images, (@[ icon, icon2x ]));
  NSArray *generic = [pasteboard
      readObjectsForClasses:@[ [NSURL class] ]
                    options:@{
                      NSPasteboardURLReadingContentsConformToTypesKey : @[ @"public.image" ]
                    }];
  EXPECT_NSEQ(generic, (@[ icon, icon2x ]));

  Owned<NSImage> image([[NSImage alloc] initWithAllURLsOfPasteboard:pasteboard]);
  ASSERT_NE(image.get(), nil);
  ASSERT_EQ([[image.get() representations] count], 2u);
  EXPECT_NSSIZE_EQ([[[image.get() representations] objectAtIndex:1] size], 16, 16);
  // GNUstep's own file-name type carries the file URLs too.
  EXPECT_EQ([[pasteboard propertyListForType:NSFilenamesPboardType] count], 3u);
  [pasteboard releaseGlobally];
}

TEST_F(ImageLoadingPasteboard, PasteboardWithoutImageURLsGivesNil) {
  if (!HasWindowServer()) GTEST_SKIP() << "needs a window server";
  NSPasteboard *pasteboard = [NSPasteboard pasteboardWithUniqueName];
  [pasteboard clearContents];
  Owned<NSImage> empty([[NSImage alloc] initWithAllURLsOfPasteboard:pasteboard]);
  EXPECT_EQ(empty.get(), nil);
  EXPECT_TRUE(([pasteboard writeObjects:@[ @"just text", WriteText(@"a.txt", "x") ]]));
  Owned<NSImage> text([[NSImage alloc] initWithAllURLsOfPasteboard:pasteboard]);
  EXPECT_EQ(text.get(), nil);
  EXPECT_NSEQ([pasteboard readObjectsForClasses:@[ [NSString class] ] options:nil],
              @[ @"just text" ]);
  // Objects of other classes are refused and nothing is written.
  [pasteboard clearContents];
  EXPECT_FALSE(([pasteboard writeObjects:@[ WritePNG(@"b.png", 4), @42 ]]));
  EXPECT_NSEQ([pasteboard readObjectsForClasses:@[ [NSURL class] ] options:nil], @[]);
  EXPECT_EQ([pasteboard readObjectsForClasses:(NSArray *)@"no" options:nil], nil);
  EXPECT_NSEQ(
      ([pasteboard readObjectsForClasses:(NSArray *)[NSArray
                                             arrayWithObjects:@"not a class", [NSColor class], nil]
                                 options:nil]),
      @[]);
  Owned<NSImage> none([[NSImage alloc] initWithAllURLsOfPasteboard:NullOf<NSPasteboard *>()]);
  EXPECT_EQ(none.get(), nil);
  [pasteboard releaseGlobally];
}

TEST(ImageLoadingTypes, ImageTypesAreTypeIdentifiers) {
  NSArray *types = [NSImage imageTypes];
  for (NSString *type in
       @[ @"public.png", @"public.jpeg", @"public.tiff", @"com.compuserve.gif" ]) {
    EXPECT_TRUE([types containsObject:type]) << [type UTF8String];
  }
  for (NSString *type in types) EXPECT_EQ([type rangeOfString:@"."].location != NSNotFound, true);
  EXPECT_GT([[NSImage imageUnfilteredTypes] count], 0u);
}
