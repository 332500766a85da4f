// Image loading measured against its floors: +[NSImage sizeForFileAtURL:]
// per file of each format against opening, reading the first block and
// closing the same file (what any header read must do), the same over a
// folder of 10, 100 and 1000 distinct files, the bare header parse on bytes
// in memory, and a directory of 100 small PNGs (50 at @1x,
// 50 at @2x) loaded into one image against GNUstep loading the same files
// one by one.
//
// `--fixtures=DIR` writes the per-format files into DIR and exits, so that
// bench/compare-header.py can time other tools on the very same files.
#import <Talvo/Talvo.h>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/ImageIO/engine/ImageHeader.hpp"
#include "tests/engines/ImageHeaderFixtures.hpp"

namespace {

namespace fx = imagefixtures;

struct Sample {
  const char *name;
  fx::Bytes bytes;
};

// One file per format, 640 x 480 pixels; the JPEG carries 8 KB of
// metadata before its frame header, as camera files do.
const std::vector<Sample> &Samples() {
  static std::vector<Sample> samples;
  if (samples.empty()) {
    fx::Picture picture = fx::SplitPicture(640, 480);
    samples = {{"photo.png", fx::PNG(picture)},
               {"photo.jpg", fx::JPEG(picture, 6, 72, false, 8192)},
               {"photo.gif", fx::GIF(640, 480, {{0, 0, 64, 48, std::vector<uint8_t>(64 * 48, 1)}})},
               {"photo.bmp", fx::BMP(picture, 24)},
               {"photo.tif", fx::TIFF(picture)},
               {"photo.webp", fx::WebPLossless(picture)}};
  }
  return samples;
}

NSString *gDirectory = nil;

void WriteFile(NSString *path, const fx::Bytes &bytes) {
  [[NSData dataWithBytes:bytes.data() length:bytes.size()] writeToFile:path atomically:NO];
}

void WriteSamples(NSString *directory) {
  [[NSFileManager defaultManager] createDirectoryAtPath:directory
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:NULL];
  for (const Sample &sample : Samples()) {
    WriteFile([directory stringByAppendingPathComponent:@(sample.name)], sample.bytes);
  }
}

NSString *SamplePath(int index) {
  return [gDirectory stringByAppendingPathComponent:@(Samples()[size_t(index)].name)];
}

void FormatLabels(benchmark::internal::Benchmark *b) {
  for (int i = 0; i < 6; i++) b->Arg(i);
}

// open + read of the first 4 KB + close: what reading any header costs.
void BM_OpenReadCloseFloor(benchmark::State &state) {
  std::string path = [SamplePath(int(state.range(0))) fileSystemRepresentation];
  char buffer[4096];
  for (auto _ : state) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
    close(fd);
  }
  state.SetLabel(Samples()[size_t(state.range(0))].name);
}
BENCHMARK(BM_OpenReadCloseFloor)->Apply(FormatLabels)->Unit(benchmark::kMicrosecond);

// The floor of a header that goes past the first block (a JPEG's metadata,
// a TIFF's directory after the pixels): a second 4 KB read, at the block
// where that header continues.
void BM_OpenTwoReadsCloseFloor(benchmark::State &state) {
  std::string path = [SamplePath(int(state.range(0))) fileSystemRepresentation];
  const fx::Bytes &bytes = Samples()[size_t(state.range(0))].bytes;
  off_t second = state.range(0) == 1 ? 8192 : off_t(bytes.size() > 4096 ? bytes.size() - 4096 : 0);
  char buffer[4096];
  for (auto _ : state) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
    benchmark::DoNotOptimize(pread(fd, buffer, sizeof buffer, second));
    close(fd);
  }
  state.SetLabel(Samples()[size_t(state.range(0))].name);
}
BENCHMARK(BM_OpenTwoReadsCloseFloor)->Arg(1)->Arg(4)->Unit(benchmark::kMicrosecond);

void BM_SizeForFileAtURL(benchmark::State &state) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSURL *url = [[NSURL alloc] initFileURLWithPath:SamplePath(int(state.range(0)))];
  if ([NSImage sizeForFileAtURL:url].width != 640) state.SkipWithError("wrong size");
  int n = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize([NSImage sizeForFileAtURL:url]);
    // The URL's path strings are autoreleased: drained now and then.
    if (++n % 256 == 0) {
      [pool drain];
      pool = [NSAutoreleasePool new];
    }
  }
  state.SetLabel(Samples()[size_t(state.range(0))].name);
  [url release];
  [pool drain];
}
BENCHMARK(BM_SizeForFileAtURL)->Apply(FormatLabels)->Unit(benchmark::kMicrosecond);

// A folder of N distinct PNG files (N = 10, 100, 1000), each probed once a
// pass: the size probe over every file against the floor over the same
// files, so that the directory lookups of many names count on both sides.
NSArray *ManyPNGs(int count) {
  static NSMutableDictionary *made = [NSMutableDictionary new];
  NSNumber *key = [NSNumber numberWithInt:count];
  NSArray *urls = [made objectForKey:key];
  if (urls != nil) return urls;
  NSString *folder = [gDirectory stringByAppendingPathComponent:[key stringValue]];
  [[NSFileManager defaultManager] createDirectoryAtPath:folder
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:NULL];
  NSMutableArray *list = [NSMutableArray array];
  for (int i = 0; i < count; i++) {
    NSString *path = [folder stringByAppendingPathComponent:[NSString stringWithFormat:@"icon%d.png", i]];
    WriteFile(path, Samples()[0].bytes);
    [list addObject:[NSURL fileURLWithPath:path]];
  }
  [made setObject:list forKey:key];
  return list;
}

void BM_ManyFilesOpenReadCloseFloor(benchmark::State &state) {
  std::vector<std::string> paths;
  for (NSURL *url in ManyPNGs(int(state.range(0)))) paths.push_back([[url path] fileSystemRepresentation]);
  char buffer[4096];
  for (auto _ : state) {
    for (const std::string &path : paths) {
      int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
      benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
      close(fd);
    }
  }
  state.SetItemsProcessed(int64_t(state.iterations()) * state.range(0));
}
BENCHMARK(BM_ManyFilesOpenReadCloseFloor)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_ManyFilesSizeForFileAtURL(benchmark::State &state) {
  NSArray *urls = ManyPNGs(int(state.range(0)));
  for (auto _ : state) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    for (NSURL *url in urls) benchmark::DoNotOptimize([NSImage sizeForFileAtURL:url]);
    [pool drain];
  }
  state.SetItemsProcessed(int64_t(state.iterations()) * state.range(0));
}
BENCHMARK(BM_ManyFilesSizeForFileAtURL)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);

// The parse alone, on bytes already in memory.
void BM_HeaderParseInMemory(benchmark::State &state) {
  const fx::Bytes &bytes = Samples()[size_t(state.range(0))].bytes;
  talvo::imageio::HeaderInfo info;
  for (auto _ : state) {
    benchmark::DoNotOptimize(talvo::imageio::ReadHeader(bytes.data(), bytes.size(), &info));
  }
  state.SetLabel(Samples()[size_t(state.range(0))].name);
}
BENCHMARK(BM_HeaderParseInMemory)->Apply(FormatLabels)->Unit(benchmark::kMicrosecond);

NSString *IconDirectory() {
  NSString *directory = [gDirectory stringByAppendingPathComponent:@"icons"];
  static bool written = false;
  if (!written) {
    [[NSFileManager defaultManager] createDirectoryAtPath:directory
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:NULL];
    fx::Bytes one = fx::PNG(fx::SplitPicture(32, 32));
    fx::Bytes two = fx::PNG(fx::SplitPicture(64, 64));
    for (int i = 0; i < 50; i++) {
      WriteFile(
          [directory stringByAppendingPathComponent:[NSString stringWithFormat:@"i%02d.png", i]],
          one);
      WriteFile(
          [directory stringByAppendingPathComponent:[NSString stringWithFormat:@"i%02d@2x.png", i]],
          two);
    }
    written = true;
  }
  return directory;
}

void BM_Directory100PNGsIntoOneImage(benchmark::State &state) {
  NSURL *url = [NSURL fileURLWithPath:IconDirectory() isDirectory:YES];
  for (auto _ : state) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSImage *image = [[NSImage alloc] initWithContentsOfDirectoryAtURL:url];
    if ([[image representations] count] != 100) state.SkipWithError("not 100 representations");
    [image release];
    [pool drain];
  }
}
BENCHMARK(BM_Directory100PNGsIntoOneImage)->Unit(benchmark::kMillisecond);

// GNUstep loading the same 100 files one by one, without the listing or
// the scale rule: the platform's own cost of the decoding.
void BM_Directory100PNGsPlatformLoadFloor(benchmark::State &state) {
  NSArray *names = [[NSFileManager defaultManager] contentsOfDirectoryAtPath:IconDirectory()
                                                                       error:NULL];
  NSMutableArray *urls = [NSMutableArray array];
  for (NSString *name in names) {
    [urls addObject:[NSURL fileURLWithPath:[IconDirectory() stringByAppendingPathComponent:name]]];
  }
  for (auto _ : state) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    for (NSURL *url in urls) {
      NSImage *image = [[NSImage alloc] initWithContentsOfURL:url];
      benchmark::DoNotOptimize([image representations]);
      [image release];
    }
    [pool drain];
  }
}
BENCHMARK(BM_Directory100PNGsPlatformLoadFloor)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  for (int i = 1; i < argc; i++) {
    if (strncmp(argv[i], "--fixtures=", 11) == 0) {
      WriteSamples(@(argv[i] + 11));
      [pool drain];
      return 0;
    }
  }
  char pattern[] = "/tmp/talvo-loading-bench-XXXXXX";
  gDirectory = [@(mkdtemp(pattern)) retain];
  WriteSamples(gDirectory);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  [[NSFileManager defaultManager] removeItemAtPath:gDirectory error:NULL];
  [gDirectory release];
  [pool drain];
  return 0;
}
