// A fixture with a private temporary directory into which the image
// loading tests write their files.
#pragma once

#include <sys/stat.h>

#import <AppKit/AppKit.h>

#include <string>

#include "support/TestSupport.h"
#include "tests/engines/ImageHeaderFixtures.hpp"

class ImageLoadingTest : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    char pattern[] = "/tmp/talvo-imageio-XXXXXX";
    NSString *base = NSTemporaryDirectory();
    std::string templ = std::string([base fileSystemRepresentation]) + "/talvo-imageio-XXXXXX";
    std::vector<char> buffer(templ.begin(), templ.end());
    buffer.push_back(0);
    char *made = mkdtemp(buffer.data());
    if (made == nullptr) made = mkdtemp(pattern);
    ASSERT_NE(made, nullptr);
    root_ = [[NSString alloc] initWithUTF8String:made];
  }

  void TearDown() override {
    // Mode-000 entries made by a test are opened up so that they can go.
    NSDirectoryEnumerator *walk = [[NSFileManager defaultManager] enumeratorAtPath:root_];
    for (NSString *relative in walk) {
      chmod([[root_ stringByAppendingPathComponent:relative] fileSystemRepresentation], 0755);
    }
    [[NSFileManager defaultManager] removeItemAtPath:root_ error:NULL];
    [root_ release];
    root_ = nil;
    PooledTest::TearDown();
  }

  // The absolute path of `relative` in the temporary directory.
  NSString *Path(NSString *relative) { return [root_ stringByAppendingPathComponent:relative]; }
  NSURL *URL(NSString *relative) { return [NSURL fileURLWithPath:Path(relative)]; }

  // Writes `bytes` to `relative`, making the folders on the way.
  NSURL *Write(NSString *relative, const imagefixtures::Bytes &bytes) {
    NSString *path = Path(relative);
    [[NSFileManager defaultManager] createDirectoryAtPath:[path stringByDeletingLastPathComponent]
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:NULL];
    NSData *data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
    EXPECT_TRUE([data writeToFile:path atomically:NO]);
    return [NSURL fileURLWithPath:path];
  }
  NSURL *WriteText(NSString *relative, const char *text) {
    return Write(relative, imagefixtures::Bytes(text, text + strlen(text)));
  }
  NSURL *MakeDirectory(NSString *relative) {
    [[NSFileManager defaultManager] createDirectoryAtPath:Path(relative)
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:NULL];
    return [NSURL fileURLWithPath:Path(relative) isDirectory:YES];
  }
  // A FIFO with no writer: opening it for reading the usual way waits.
  NSURL *MakeFIFO(NSString *relative) {
    EXPECT_EQ(mkfifo([Path(relative) fileSystemRepresentation], 0600), 0);
    return [NSURL fileURLWithPath:Path(relative)];
  }
  // A square opaque PNG of `side` pixels.
  NSURL *WritePNG(NSString *relative, uint32_t side) {
    return Write(relative, imagefixtures::PNG(imagefixtures::SolidPicture(side, side, 0, 128, 0)));
  }

  NSString *root_ = nil;
};

#define EXPECT_NSSIZE_EQ(actual, w, h) \
  do {                                 \
    NSSize s_ = (actual);              \
    EXPECT_EQ(s_.width, (w));          \
    EXPECT_EQ(s_.height, (h));         \
  } while (0)
