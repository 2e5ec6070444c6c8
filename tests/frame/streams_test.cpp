// The streams that readers and writers work on.
#include <gtest/gtest.h>
#if !defined(_WIN32)
#include <unistd.h>
#endif

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "src/frame/entry.h"
#include "src/part/part_layout.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/full_file.h"
#include "tests/support/host.h"

namespace {

using namespace oldtorvio::codec;
using namespace oldtorvio::frame;
using namespace testing_support;

TEST(InStream, FailedReadLeavesTheStreamAtTheEndAndTheFieldAsItWas) {
  const Bytes bytes = Bytes().i32(7).zeros(3);
  InStream stream(bytes.span());
  Reader io(stream, 180);
  std::int32_t first = 1, second = 2;
  EXPECT_FALSE(io.fields(FIELDS(first, second)));
  EXPECT_EQ(first, 7);
  EXPECT_EQ(second, 2);
  EXPECT_EQ(stream.left(), 0U);
  EXPECT_EQ(stream.position(), 7U);
  EXPECT_EQ(io.stop(), Stop::shortRead);
}

TEST(InStream, RowsKeepTheirCompleteNumbersAndBlocksAllOrNothing) {
  const Bytes bytes = Bytes().i32(1).i32(2).u8(3);
  std::uint32_t row[3] = {9, 9, 9};
  std::uint8_t raw[12] = {};
  float x = 5, y = 6, z = 7;
  readFrom(bytes, [&](InStream& s) { return Reader(s, 180).fields(FIELDS(row)); });
  EXPECT_EQ(row[1], 2U);
  EXPECT_EQ(row[2], 9U);
  readFrom(bytes, [&](InStream& s) { return Reader(s, 180).fields(FIELDS(raw)); });
  EXPECT_EQ(raw[0], 0);
  readFrom(bytes, [&](InStream& s) { return Reader(s, 180).fields(FIELDS(block(x, y, z))); });
  EXPECT_EQ(x, 5.0F);
}

TEST(InStream, ZeroSizeItemFails) {
  const Bytes bytes = Bytes().zeros(10);
  char text[4] = {};
  for (const std::int32_t size : {0, -1, 5}) {
    InStream stream(bytes.span());
    Reader io(stream, 180);
    EXPECT_FALSE(io.sized(FIELDS(text), size));
    EXPECT_EQ(stream.position(), 0U) << "and moves nothing";
  }
}

TEST(InStream, ShortSizedFieldFails) {
  const Bytes bytes = Bytes().zeros(2);
  char text[4] = "abc";
  EXPECT_FALSE(readFrom(bytes, [&](InStream& s) { return Reader(s, 180).sized(FIELDS(text), 3); }));
  EXPECT_STREQ(text, "abc");
}

TEST(InStream, LeadingTakesTheFirstOfSeveralNumbers) {
  const Bytes bytes = Bytes().i32(1).i32(2).i32(3);
  for (int count = -1; count <= 4; ++count) {
    std::int32_t a = 0, b = 0, c = 0;
    std::size_t consumed = 0;
    EXPECT_TRUE(readFrom(
        bytes, [&](InStream& s) { return Reader(s, 180).leading(count, FIELDS(a, b, c)); }, &consumed));
    EXPECT_EQ(consumed, static_cast<std::size_t>(std::clamp(count, 0, 3)) * 4);
    EXPECT_EQ(b, count >= 2 ? 2 : 0);
  }
}

TEST(InStream, EachVerbOfOneItemFailsWhenTheFileEndsInside) {
  const Bytes bytes = Bytes().u8(1);
  std::string text = "kept";
  std::int32_t numbers[2] = {7, 8};
  const auto fails = [&](const auto& verb) {
    InStream stream(bytes.span());
    Reader io(stream, 180);
    return !verb(io) && io.stop() == Stop::shortRead && stream.left() == 0;
  };
  EXPECT_TRUE(fails([&](Reader& io) { return io.textItem<4>(FIELDS(text)); }));
  EXPECT_TRUE(fails([&](Reader& io) { return io.slice<std::int16_t>(FIELDS(numbers), 0, 1); }));
  EXPECT_TRUE(fails([&](Reader& io) { return io.slice(FIELDS(numbers), 0, 1); }));
  EXPECT_TRUE(fails([&](Reader& io) { return io.fields(FIELDS(nonZero(numbers[0]))); }));
  EXPECT_TRUE(fails([&](Reader& io) { return io.leading(2, FIELDS(numbers)); }));
  EXPECT_TRUE(fails([&](Reader& io) { return io.lengthText(FIELDS(text)); }));
  EXPECT_TRUE(fails([&](Reader& io) { return io.reserved(2); }));
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(numbers[0], 7);
  EXPECT_EQ(numbers[1], 8);
}

TEST(InStream, FileThatWasTruncatedMeanwhileEndsEarly) {
  const TempFolder folder;
  const std::string path = folder.write("f", Bytes().zeros(2000000));
  const File file = File::openToRead(path.c_str());
  InStream stream(file.handle());
  std::filesystem::resize_file(path, 700000);
  EXPECT_TRUE(stream.skip(700000));
  EXPECT_FALSE(stream.skip(1));
  EXPECT_EQ(stream.left(), 0U);
}

TEST(InStream, TextLongerThanTheFileIsNotAppended) {
  const Bytes bytes = Bytes().fill(5000, 'a');
  std::string text = "held";
  InStream stream(bytes.span());
  EXPECT_FALSE(stream.append(text, 5001));
  EXPECT_EQ(text, "held");
  EXPECT_TRUE(stream.append(text, 5000));
  EXPECT_EQ(text.size(), 5004U);
}

#if !defined(_WIN32)
TEST(InStream, TextFromAPipeThatEndsEarlyIsNotAppended) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string sent(5000, 'a');
  ASSERT_EQ(write(ends[1], sent.data(), sent.size()), 5000);
  close(ends[1]);
  std::FILE* file = fdopen(ends[0], "rb");
  {
    InStream stream(file);
    std::string text = "held";
    EXPECT_FALSE(stream.append(text, 2000000000));
    EXPECT_EQ(text, "held");
  }
  std::fclose(file);
}

#endif

TEST(InStream, LastRunOfALargeFileIsAvailableWhereverItBegins) {
  const TempFolder folder;
  Bytes bytes;
  for (std::uint32_t i = 0; i < 66000; ++i) bytes.u32(i * 2654435761U);
  const std::string path = folder.write("large", bytes);
  // Steps of a length that some window ends inside of, the last one included.
  for (const std::size_t step : {2000U, 30000U}) {
    const File file = File::openToRead(path.c_str());
    InStream stream(file.handle());
    std::size_t at = bytes.size() % step;
    ASSERT_TRUE(stream.skip(at));
    for (; at < bytes.size(); at += step) {
      const std::byte* run = stream.run(step);
      ASSERT_NE(run, nullptr) << at;
      EXPECT_EQ(std::memcmp(run, bytes.span().data() + at, step), 0) << at;
      stream.consume(step);
    }
    EXPECT_EQ(stream.left(), 0U);
    EXPECT_EQ(stream.run(1), nullptr);
  }
}

TEST(OutStream, SingleByteIsStored) {
  OutStream memory;
  ASSERT_NE(memory.room(1), nullptr);
  EXPECT_EQ(memory.bytes().size(), 1U);
  EXPECT_TRUE(memory.flush()) << "nothing to do";
  EXPECT_FALSE(memory.failed());

  const TempFolder folder;
  const std::string path = folder.path("one");
  {
    const File file = File::openToWrite(path.c_str());
    OutStream stream(file.handle());
    std::byte* const to = stream.room(1);
    ASSERT_NE(to, nullptr);
    *to = std::byte{7};
    EXPECT_EQ(stream.position(), 1U);
    EXPECT_TRUE(stream.flush());
    EXPECT_EQ(stream.position(), 1U);
  }
  EXPECT_EQ(TempFolder::read(path), Bytes().u8(7));
}

TEST(OutStream, OnlyByteIsKeptWhenTheBufferGrows) {
  OutStream memory;
  *memory.room(1) = std::byte{7};
  ASSERT_NE(memory.room(100000), nullptr);
  EXPECT_EQ(memory.bytes()[0], std::byte{7});

  // Before the last page the largest buffer holds whole pages and one byte.
  const TempFolder folder;
  const std::string path = folder.path("pages");
  const File file = File::openToWrite(path.c_str());
  OutStream stream(file.handle());
  Bytes expected;
  const auto store = [&](std::size_t size, std::uint8_t value) {
    std::memset(stream.room(size), value, size);
    expected.fill(size, value);
  };
  for (std::uint8_t page = 0; page < 255; ++page) store(4096, page);
  store(1, 0xEE);
  store(4096, 0xDD);
  ASSERT_TRUE(stream.flush());
  EXPECT_EQ(TempFolder::read(path) == expected, true);
}

TEST(OutStream, PassesLargeContentToTheFileInOrder) {
  const TempFolder folder;
  const std::string path = folder.path("f");
  Bytes expected;
  {
    File file = File::openToWrite(path.c_str());
    OutStream stream(file.handle());
    Writer io(stream, 180);
    for (std::uint32_t i = 0; i < 200000; ++i) {
      ASSERT_TRUE(io.fields(FIELDS(i)));
      expected.u32(i);
    }
    ASSERT_TRUE(stream.flush());
    ASSERT_TRUE(file.close());
  }
  EXPECT_EQ(TempFolder::read(path), expected);
}

TEST(OutStream, PassesNothingOnWithoutContentOrFile) {
  OutStream memory;
  std::memset(memory.room(5), 7, 5);
  EXPECT_TRUE(memory.flush());
  EXPECT_EQ(memory.bytes().size(), 5U);
  // A file that takes nothing takes that.
  std::FILE* file = testing_support::unwritableFile();
  OutStream empty(file);
  EXPECT_TRUE(empty.flush());
  EXPECT_FALSE(empty.failed());
  std::fclose(file);
}

TEST(OutStream, TakesNothingMoreAfterAFailedWrite) {
  if (!hasFullDevice()) GTEST_SKIP() << "no device that is always full";
  const File file = openFullDevice();
  OutStream stream(file.handle());
  Writer io(stream, 180);
  const char text[4096] = {};
  const std::uint8_t bytes[4096] = {};
  bool ok = true;
  for (int i = 0; ok && i < 1000; ++i) ok = io.fields(FIELDS(text));
  EXPECT_FALSE(ok);
  EXPECT_FALSE(stream.flush());
  EXPECT_FALSE(io.fields(FIELDS(bytes, bytes)) && stream.flush());
  const std::string note(100000, 'n');
  EXPECT_FALSE(io.lengthText(FIELDS(note)) && io.reserved(4096) && stream.flush());
}

TEST(OutStream, EachVerbFailsWhenTheFileTakesNoMore) {
  if (!hasFullDevice()) GTEST_SKIP() << "no device that is always full";
  // With room for `left` bytes before the write that fails.
  const auto fails = [](std::size_t left, const auto& verb) {
    FullFile full(left);
    EXPECT_EQ(full.stream().free().size(), left);
    Writer io(full.stream(), 180);
    return !verb(io) && full.stream().failed();
  };
  const std::string note = "note";
  const std::int32_t numbers[3] = {1, 2, 3};
  const char text[8] = {};
  std::vector<oldtorvio::Shape> shapes(2);
  oldtorvio::Pattern pattern;
  pattern.bindFirst.resize(1);
  pattern.bindSecond.resize(1);
  pattern.bindThird = pattern.bindFourth = pattern.bindFifth = {7};
  const oldtorvio::BindColumns bindings(std::as_const(pattern));
  for (const std::size_t left : {0U, 4U}) {
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.fields(FIELDS(numbers)); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.lengthText(FIELDS(note)); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.reserved(5); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.slice(FIELDS(numbers), 0, 1); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.leading(2, FIELDS(numbers)); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.leading(3, FIELDS(numbers)); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.sized(FIELDS(text), 8); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.textItem<8>(FIELDS(note)); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.list(FIELDS(shapes), kAppended); })) << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.trailer(FIELDS(shapes), &oldtorvio::Shape::trailerValue); }))
        << left;
    EXPECT_TRUE(fails(left, [&](Writer& io) { return io.list(FIELDS(bindings), kPositiveCountFirst); })) << left;
  }
}

}  // namespace
