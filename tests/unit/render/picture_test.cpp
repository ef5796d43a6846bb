#include "render/Picture.h"

#include <gtest/gtest.h>

#include "render/PicturePrinting.h"
#include "render/RenderError.h"
#include "tests/unit/render/Files.h"

namespace quordalvane::render {
namespace {

constexpr std::uint32_t black = 0xff000000;
constexpr std::uint32_t white = 0xffffffff;

Bytes printed(const Bytes& file, unsigned width = 384) {
  Job job;
  printPicture(file, width, DitherKind::FloydSteinberg, job.output());
  return job.all();
}

std::string refusalOf(const Bytes& file) {
  try {
    printed(file);
  } catch (const RenderError& error) {
    return error.what();
  }
  return "";
}

Bytes greyRow(const Bytes& file) {
  const auto picture = openPicture(file, 1);
  Bytes row(picture->width());
  picture->read(row);
  return row;
}

// A picture that is black to the left of `edge`.
Bytes halfBlack(int width, int height, int edge) {
  return pngFile(width, height, [=](int x, int) { return x < edge ? black : white; });
}

TEST(Picture, IsPrintedAsARasterImageAtTheLeft) {
  Bytes expected = {0x1d, 0x76, 0x30, 0, 48, 0, 2, 0};
  for (int row = 0; row < 2; ++row) {
    Bytes dots(48);
    dots[0] = 0xff;
    dots[1] = 0xf0;
    expected.insert(expected.end(), dots.begin(), dots.end());
  }
  EXPECT_EQ(printed(halfBlack(16, 2, 12)), expected);
}

TEST(Picture, IsScaledDownToTheWidthOfThePaper) {
  const Bytes job = printed(halfBlack(1920, 20, 960));
  ASSERT_EQ(job.size(), 8U + 4 * 48);
  for (std::size_t x = 0; x < 48; ++x) {
    EXPECT_EQ(job[8 + x], x < 24 ? 0xff : 0) << x;
  }
}

TEST(PngPicture, IsWhiteWhereItIsTransparent) {
  EXPECT_EQ(greyRow(pngFile(3, 1, [](int x, int) { return x == 0   ? 0U
                                                          : x == 1 ? black
                                                                   : white; })),
            (Bytes{255, 0, 255}));
}

TEST(PngPicture, HasTheBrightnessOfItsColours) {
  const Bytes row =
      greyRow(pngFile(3, 1, [](int x, int) { return black | 0xffU << (16 - 8 * x); }));
  EXPECT_NEAR(row[0], 76, 2);
  EXPECT_NEAR(row[1], 150, 2);
  EXPECT_NEAR(row[2], 28, 2);
}

TEST(PngPicture, IsReadInEveryColourDepthAndRowOrder) {
  for (const PngKind kind :
       {PngKind::Grey1, PngKind::Grey16, PngKind::Palette, PngKind::Rgb16, PngKind::Interlaced}) {
    const Bytes file = pngFile(kind, 24, 16);  // the left half is black
    const auto picture = openPicture(file, 1);
    Bytes row(24);
    for (int y = 0; y < 16; ++y) {
      picture->read(row);
      for (std::size_t x = 0; x < row.size(); ++x) {
        EXPECT_EQ(row[x], x < 12 ? 0 : 255) << static_cast<int>(kind) << ": " << x << ", " << y;
      }
    }
  }
}

TEST(JpegPicture, IsReadRowByRow) {
  const Bytes file = jpegFile(64, 16);
  const auto picture = openPicture(file, 384);
  ASSERT_EQ(picture->width(), 64U);
  ASSERT_EQ(picture->height(), 16U);
  Bytes row(64);
  for (int y = 0; y < 16; ++y) {
    picture->read(row);
    EXPECT_LT(row[0], 10);
    EXPECT_GT(row[63], 245);
  }
}

TEST(JpegPicture, IsReadAtTheSmallestScaleThatIsAsWideAsThePaper) {
  const Bytes file = jpegFile(4000, 16);
  EXPECT_EQ(openPicture(file, 384)->width(), 500U);
  EXPECT_EQ(openPicture(file, 576)->width(), 1000U);
  EXPECT_EQ(openPicture(file, 4000)->width(), 4000U);
}

TEST(JpegPicture, IsTurnedUprightForEveryExifOrientation) {
  // The place of the black corner in the upright picture.
  constexpr struct {
    bool isAtTheRight, isAtTheBottom;
  } corners[] = {{false, false}, {true, false}, {true, true}, {false, true}};
  for (std::uint8_t orientation = 1; orientation <= 8; ++orientation) {
    const Bytes file =
        withExif(jpegFile(64, 32, 16), exif(orientation, /*isLittle=*/orientation % 2 == 0));
    const auto picture = openPicture(file, 64);
    const bool isTransposed = orientation > 4;
    ASSERT_EQ(picture->width(), isTransposed ? 32U : 64U);
    ASSERT_EQ(picture->height(), isTransposed ? 64U : 32U);
    Bytes top(picture->width());
    Bytes bottom(picture->width());
    picture->read(top);
    for (unsigned row = 1; row < picture->height(); ++row) {
      picture->read(bottom);
    }
    const auto corner = corners[(orientation - 1) % 4];
    const Bytes& row = corner.isAtTheBottom ? bottom : top;
    EXPECT_LT(corner.isAtTheRight ? row.back() : row.front(), 10) << int{orientation};
    EXPECT_GT(corner.isAtTheRight ? row.front() : row.back(), 245) << int{orientation};
    EXPECT_GT((corner.isAtTheBottom ? top : bottom).front(), 245) << int{orientation};
  }
}

TEST(JpegPicture, IsNotNarrowerThanThePaperIfExifTurnsThePicture) {
  const Bytes file = withExif(jpegFile(16, 4000), exif(6, false));
  EXPECT_EQ(openPicture(file, 576)->width(), 1000U);
}

TEST(JpegPicture, IsNotTurnedIfItsExifDataIsDamaged) {
  Bytes wrong = exif(6, false);
  for (std::size_t size = 0; size < wrong.size() - 6; ++size) {
    const Bytes cut(wrong.begin(), wrong.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(openPicture(withExif(jpegFile(64, 16), cut), 64)->width(), 64U) << size;
  }
  for (std::size_t place = 10; place < 14; ++place) {
    wrong[place] = 0xff;  // a wrong offset of the entries
    EXPECT_EQ(openPicture(withExif(jpegFile(64, 16), wrong), 64)->width(), 64U) << place;
  }
  EXPECT_EQ(openPicture(withExif(jpegFile(64, 16), exif(9, false)), 64)->width(), 64U);
}

TEST(Picture, IsRefusedIfItsHeaderClaimsAHugeSize) {
  EXPECT_NE(
      refusalOf(withSize(halfBlack(16, 2, 8), 65000, 65000)).find("the most is 64000000 in all"),
      std::string::npos);
  EXPECT_NE(refusalOf(withSize(halfBlack(16, 2, 8), 70000, 1)).find("65535 in a row"),
            std::string::npos);
  EXPECT_NE(refusalOf(jpegFile(9000, 8000)).find("the most is 64000000"), std::string::npos);
}

TEST(Picture, IsRefusedIfItsFileIsInvalidOrCutOff) {
  EXPECT_EQ(refusalOf(ascii("%PDF-1.4")), "the data is not a picture in PNG or JPEG");
  EXPECT_EQ(refusalOf({}), "the data is not a picture in PNG or JPEG");
  for (const Bytes& whole : {halfBlack(64, 64, 20), jpegFile(64, 64)}) {
    for (std::size_t size = 8; size < whole.size() * 2 / 3; size += 7) {
      const Bytes file(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_NE(refusalOf(file), "") << size << " of " << whole.size();
    }
  }
}

TEST(Picture, SendsNoBytesIfItIsWhite) {
  EXPECT_EQ(printed(halfBlack(16, 300, 0)), Bytes());
}

}  // namespace
}  // namespace quordalvane::render
