// The header reader on files from the formats' own encoders and on
// headers laid out by hand: sizes, orientation, resolution, alpha, image
// counts, and no read past the end of any prefix of a file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/ImageIO/engine/ImageDecoder.hpp"
#include "platform/ImageIO/engine/ImageHeader.hpp"
#include "tests/engines/ImageHeaderFixtures.hpp"

namespace fx = imagefixtures;
using talvo::imageio::Format;
using talvo::imageio::HeaderInfo;
using talvo::imageio::ReadHeader;

namespace {

HeaderInfo Read(const fx::Bytes &bytes) {
  HeaderInfo info;
  EXPECT_TRUE(ReadHeader(bytes.data(), bytes.size(), &info));
  return info;
}

// Every prefix is read inside an exactly sized heap block, so that a read
// past the end shows under AddressSanitizer.
void ReadEveryPrefix(const fx::Bytes &bytes, size_t needed) {
  for (size_t n = 0; n <= bytes.size(); n++) {
    std::vector<uint8_t> prefix(bytes.begin(), bytes.begin() + long(n));
    HeaderInfo info;
    bool ok = ReadHeader(n ? prefix.data() : nullptr, n, &info);
    if (n < needed) {
      EXPECT_FALSE(ok) << "prefix of " << n;
      EXPECT_EQ(info.width, 0u);
    }
  }
}

}  // namespace

TEST(ImageHeader, SizesAndAlphaOfEveryFormat) {
  fx::Picture picture = fx::SplitPicture(40, 30);
  struct Case {
    const char *name;
    fx::Bytes bytes;
    Format format;
    bool alpha;
  } cases[] = {
      {"png rgba", fx::PNG(picture), Format::PNG, true},
      {"png rgb", fx::PNG(picture, false), Format::PNG, false},
      {"jpeg", fx::JPEG(picture), Format::JPEG, false},
      {"progressive jpeg", fx::JPEG(picture, 0, 0, true), Format::JPEG, false},
      {"bmp 24", fx::BMP(picture, 24), Format::BMP, false},
      {"bmp 32 top-down", fx::BMP(picture, 32, true), Format::BMP, true},
      {"tiff II", fx::TIFF(picture), Format::TIFF, true},
      {"tiff MM", fx::TIFF(picture, true), Format::TIFF, true},
      {"webp VP8L", fx::WebPLossless(picture), Format::WebP, true},
      {"webp VP8", fx::WebPLossy(fx::SolidPicture(40, 30, 9, 9, 9), false), Format::WebP, false},
      {"webp VP8X", fx::WebPLossy(picture, true), Format::WebP, true},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_FALSE(c.bytes.empty());
    HeaderInfo info = Read(c.bytes);
    EXPECT_EQ(info.format, c.format);
    EXPECT_EQ(info.width, 40u);
    EXPECT_EQ(info.height, 30u);
    EXPECT_EQ(info.hasAlpha, c.alpha);
    EXPECT_EQ(info.imageCount, 1u);
    EXPECT_EQ(info.orientation, 0);
  }
}

TEST(ImageHeader, JPEGFrameHeaderFoundPastLargeSegmentsWithExifOrientation) {
  fx::Picture picture = fx::SolidPicture(40, 30, 200, 10, 10);
  // The stored size is reported as stored: orientation 6 does not swap it.
  HeaderInfo info = Read(fx::JPEG(picture, 6, 0, false, 60000));
  EXPECT_EQ(info.width, 40u);
  EXPECT_EQ(info.height, 30u);
  EXPECT_EQ(info.orientation, 6);
  // Fill bytes before a marker are allowed.
  fx::Bytes plain = fx::JPEG(picture);
  plain.insert(plain.begin() + 2, {0xFF, 0xFF});
  EXPECT_EQ(Read(plain).width, 40u);
  // Image data before any frame header is no image.
  fx::Bytes scanFirst = {0xFF, 0xD8, 0xFF, 0xDA, 0x00, 0x02, 0xFF, 0xC0, 0x00, 0x0B,
                         0x08, 0x00, 0x10, 0x00, 0x10, 0x01, 0x01, 0x11, 0x00};
  HeaderInfo none;
  EXPECT_FALSE(ReadHeader(scanFirst.data(), scanFirst.size(), &none));
}

TEST(ImageHeader, ResolutionInDotsPerInch) {
  fx::Picture picture = fx::SplitPicture(8, 8);
  HeaderInfo png = Read(fx::PNG(picture, true, 5669));  // pixels per metre
  EXPECT_EQ(png.dpiWidth, 144.0);
  EXPECT_EQ(png.dpiHeight, 144.0);
  HeaderInfo jpeg = Read(fx::JPEG(picture, 0, 144));
  EXPECT_DOUBLE_EQ(jpeg.dpiWidth, 144.0);
  HeaderInfo tiff = Read(fx::TIFF(picture, true, 1, 8, 300));
  EXPECT_DOUBLE_EQ(tiff.dpiHeight, 300.0);
  EXPECT_EQ(tiff.orientation, 8);
  HeaderInfo bmp = Read(fx::BMP(picture, 24, false, 3780));
  EXPECT_EQ(bmp.dpiWidth, 96.0);
  // No stated resolution stays zero rather than an invented 72.
  EXPECT_EQ(Read(fx::PNG(picture)).dpiWidth, 0.0);
}

TEST(ImageHeader, GIFLogicalScreenFramesAndTransparency) {
  fx::GIFFrame first{0, 0, 2, 2, {0, 1, 2, 3}};
  fx::GIFFrame second{3, 2, 1, 1, {1}, 0};
  HeaderInfo info = Read(fx::GIF(10, 7, {first, second, first}));
  EXPECT_EQ(info.format, Format::GIF);
  // The size is the logical screen, not a frame's.
  EXPECT_EQ(info.width, 10u);
  EXPECT_EQ(info.height, 7u);
  EXPECT_EQ(info.imageCount, 3u);
  EXPECT_TRUE(info.hasAlpha);
  EXPECT_FALSE(Read(fx::GIF(4, 4, {first})).hasAlpha);
}

TEST(ImageHeader, TIFFDirectoryChainCountedAndLoopStopped) {
  fx::Picture picture = fx::SplitPicture(4, 3);
  EXPECT_EQ(Read(fx::TIFF(picture, false, 3)).imageCount, 3u);
  // A chain whose last directory points back at the first ends there.
  fx::Bytes looped = fx::TIFF(picture, false, 2);
  uint32_t first = looped[4] | looped[5] << 8 | looped[6] << 16 | uint32_t(looped[7]) << 24;
  memcpy(&looped[looped.size() - 4], &first, 4);
  EXPECT_EQ(Read(looped).imageCount, 2u);
}

TEST(ImageHeader, BMPHeightsAreMagnitudesAndCoreHeadersRead) {
  fx::Picture picture = fx::SplitPicture(5, 9);
  EXPECT_EQ(Read(fx::BMP(picture, 24, true)).height, 9u);
  fx::Bytes core = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 26, 0,  0,
                    0,   12,  0, 0, 0, 7, 0, 3, 0, 1, 0,  24, 0};
  HeaderInfo info = Read(core);
  EXPECT_EQ(info.width, 7u);
  EXPECT_EQ(info.height, 3u);
  // The most negative height has no positive counterpart in 32 bits but a
  // size all the same; a negative width is refused.
  fx::Bytes bmp = fx::BMP(picture, 24);
  bmp[22] = 0, bmp[23] = 0, bmp[24] = 0, bmp[25] = 0x80;
  EXPECT_EQ(Read(bmp).height, 0x80000000u);
  bmp[21] = 0xFF;
  HeaderInfo refused;
  EXPECT_FALSE(ReadHeader(bmp.data(), bmp.size(), &refused));
}

TEST(ImageHeader, ZeroSizesAndUnknownDataRefused) {
  fx::Bytes png = fx::PNG(fx::SplitPicture(4, 4));
  png[16] = png[17] = png[18] = png[19] = 0;  // width 0
  HeaderInfo info;
  EXPECT_FALSE(ReadHeader(png.data(), png.size(), &info));
  const uint8_t text[] = "not an image at all";
  EXPECT_FALSE(ReadHeader(text, sizeof text, &info));
  EXPECT_EQ(info.format, Format::Unknown);
  EXPECT_FALSE(ReadHeader(nullptr, 100, &info));
  EXPECT_STREQ(talvo::imageio::TypeIdentifier(Format::GIF), "com.compuserve.gif");
  EXPECT_EQ(talvo::imageio::TypeIdentifier(Format::Unknown), nullptr);
}

TEST(ImageHeader, EveryPrefixReadWithinBounds) {
  fx::Picture picture = fx::SplitPicture(6, 5);
  ReadEveryPrefix(fx::PNG(picture), 26);
  ReadEveryPrefix(fx::JPEG(picture, 3), 20);
  ReadEveryPrefix(fx::GIF(6, 5, {{0, 0, 6, 5, std::vector<uint8_t>(30, 1), 2}}), 10);
  ReadEveryPrefix(fx::BMP(picture, 32, true), 26);
  ReadEveryPrefix(fx::TIFF(picture, true, 2, 6, 72), 8);
  ReadEveryPrefix(fx::WebPLossless(picture), 25);
  ReadEveryPrefix(fx::WebPLossy(picture, true), 30);
}

TEST(ImageHeader, CompleteFilesToldFromFilesCutShort) {
  fx::Picture picture = fx::SplitPicture(12, 9);
  for (const fx::Bytes &whole :
       {fx::PNG(picture), fx::JPEG(picture), fx::GIF(12, 9, {{0, 0, 2, 2, {0, 1, 2, 3}}}),
        fx::BMP(picture, 24), fx::BMP(picture, 32, true), fx::WebPLossless(picture)}) {
    talvo::imageio::MemorySource source(whole.data(), whole.size());
    HeaderInfo info = Read(whole);
    EXPECT_TRUE(talvo::imageio::LooksComplete(source, info)) << int(info.format);
    fx::Bytes cut(whole.begin(), whole.end() - 3);
    talvo::imageio::MemorySource cutSource(cut.data(), cut.size());
    EXPECT_FALSE(talvo::imageio::LooksComplete(cutSource, info)) << int(info.format);
  }
  // A JPEG with a little padding after its end marker is complete.
  fx::Bytes padded = fx::JPEG(picture);
  padded.insert(padded.end(), 10, 0);
  talvo::imageio::MemorySource source(padded.data(), padded.size());
  EXPECT_TRUE(talvo::imageio::LooksComplete(source, Read(padded)));
}

// A file read without asking its size first reads as its bytes do: the same
// header, and a file cut short refused where its bytes would be.
TEST(ImageHeader, FileOfUnknownSizeReadsAsItsBytes) {
  using talvo::imageio::FileSource;
  fx::Picture picture = fx::SplitPicture(40, 30);
  fx::Bytes jpeg = fx::JPEG(picture, 6, 144, false, 60000);  // frame header past 60 KB
  fx::Bytes files[] = {fx::PNG(picture),         jpeg,
                       fx::GIF(40, 30, {{0, 0, 2, 2, {0, 1, 2, 3}}}),
                       fx::BMP(picture, 24),     fx::TIFF(picture, true, 2, 6, 72),
                       fx::WebPLossy(picture, true)};
  char path[] = "/tmp/talvo-header-XXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  unlink(path);
  for (const fx::Bytes &whole : files) {
    for (size_t length : {whole.size(), size_t(20), whole.size() / 2}) {
      fx::Bytes bytes(whole.begin(), whole.begin() + long(length));
      ASSERT_EQ(ftruncate(fd, 0), 0);
      ASSERT_EQ(pwrite(fd, bytes.data(), bytes.size(), 0), ssize_t(bytes.size()));
      HeaderInfo fromBytes, fromFile;
      bool bytesOK = ReadHeader(bytes.data(), bytes.size(), &fromBytes);
      FileSource file(fd, FileSource::kUnknownSize);
      bool fileOK = ReadHeader(file, &fromFile, false);
      SCOPED_TRACE(::testing::Message() << int(fromBytes.format) << " " << length << " bytes");
      EXPECT_EQ(fileOK, bytesOK);
      EXPECT_EQ(fromFile.format, fromBytes.format);
      EXPECT_EQ(fromFile.width, fromBytes.width);
      EXPECT_EQ(fromFile.height, fromBytes.height);
      EXPECT_EQ(fromFile.orientation, fromBytes.orientation);
      EXPECT_EQ(fromFile.dpiWidth, fromBytes.dpiWidth);
    }
  }
  close(fd);
}

// What GNUstep's readers mishandle is told apart from what they read well,
// and the decoder takes the palettes they would overrun.
TEST(ImageDecoder, PaletteHazardsFoundAndDecoded) {
  using talvo::imageio::DecodedImage;
  using talvo::imageio::DecodeImage;
  using talvo::imageio::HasPaletteHazards;
  fx::Picture picture = fx::SplitPicture(6, 4);
  const struct {
    const char *name;
    fx::Bytes bytes;
    bool hazard;
  } cases[] = {
      {"gif", fx::GIF(4, 2, {{0, 0, 4, 2, {0, 1, 2, 3, 3, 2, 1, 0}}}), false},
      {"gif without palette", fx::GIFWithoutPalette(3, 2), true},
      {"gif past its palette", fx::GIFWithValuesPastItsTable(4, 2), true},
      {"tiff palette 8", fx::PaletteTIFF(6, 3, 8), false},
      {"tiff palette 4", fx::PaletteTIFF(6, 3, 4), true},
      {"tiff rgba", fx::TIFF(picture, false, 2), false},
      {"png", fx::PNG(picture), false},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(HasPaletteHazards(c.bytes.data(), c.bytes.size()), c.hazard) << c.name;
  }
  EXPECT_FALSE(HasPaletteHazards(nullptr, 10));

  DecodedImage image;
  fx::Bytes tiff = fx::PaletteTIFF(7, 3, 4);  // odd width: half a byte of padding a row
  ASSERT_TRUE(DecodeImage(tiff.data(), tiff.size(), 0, &image));
  EXPECT_EQ(image.width, 7u);
  for (size_t i = 0; i < size_t(7 * 3); i++) {
    EXPECT_EQ(image.rgba[i * 4], 255) << i;
    EXPECT_EQ(image.rgba[i * 4 + 1], 0) << i;
  }
  fx::Bytes gif = fx::GIFWithValuesPastItsTable(4, 2);
  ASSERT_TRUE(DecodeImage(gif.data(), gif.size(), 0, &image));
  EXPECT_EQ(image.rgba[0 * 4 + 3], 255) << "value 0";
  EXPECT_EQ(image.rgba[2 * 4 + 3], 0) << "value 2 has no colour";
  fx::Bytes bare = fx::GIFWithoutPalette(3, 2);
  EXPECT_FALSE(DecodeImage(bare.data(), bare.size(), 0, &image));
}
