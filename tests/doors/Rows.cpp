#include <chrono>
#include <fstream>

#include "tests/doors/Table.h"

namespace tests::doors {
namespace {

Bytes Text(std::string_view text) {
  Bytes bytes(text.begin(), text.end());
  bytes.push_back(0);
  return bytes;
}

Bytes Padded(Bytes bytes, std::size_t size) {
  bytes.resize(size);
  return bytes;
}

Bytes operator+(Bytes first, const Bytes& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// The numbers from `first` to `last`.
std::vector<std::size_t> From(std::size_t first, std::size_t last) {
  std::vector<std::size_t> numbers;
  for (std::size_t number = first; number <= last; ++number) numbers.push_back(number);
  return numbers;
}

const Bytes kIdentity{'A', 'B', 'C', 'D', 'E', 0, 0, 0, 'I', 'M', 'G', '_', 0, 0, 0, 0, 100, 0, 0, 0, 7, 0, 0, 0};
// SHA-1 of "abc".
const Bytes kKey = Text("a9993e364706816aba3e25717850c26c9cd0d89d");
// 2026-02-28 12:30.
const Bytes kTime{0xEA, 7, 2, 0, 28, 0, 12, 0, 30, 0, 0, 0, 0, 0};

const Exchange kSelectInformation{{0xC2, 0, 0x00}};
const Exchange kOpenForWriting{{0xC2, 0, 0x01, 0x01}, Text(R"(I:\new)")};

// Six texts and zeros.
const Bytes kInformation =
    Padded(Text("A") + Text("Kelva") + Text("Camera") + Text("1.00") + Text("factory") + Text("KELVA"), 644);

// Version, stride, ten fields with their offsets; then the one picture.
const Bytes kCatalogue =
    Bytes{1, 0,  0, 0, 128, 0, 0,  0, 10, 0,  0, 0,  // header
          0, 0,  0, 0, 0,   0, 0,  0, 1,  0,  0, 0, 24, 0, 0,  0, 2, 0,  0, 0, 28, 0, 0,   0, 3, 0,  0,
          0, 32, 0, 0, 0,   4, 0,  0, 0,  36, 0, 0, 0,  5, 0,  0, 0, 40, 0, 0, 0,  6, 0,   0, 0, 44, 0,
          0, 0,  7, 0, 0,   0, 48, 0, 0,  0,  8, 0, 0,  0, 96, 0, 0, 0,  9, 0, 0,  0, 124, 0, 0, 0} +
    kIdentity + Bytes{1, 0, 0, 0, 1,    0,    0,    0,   0, 0, 0, 0, 0, 0, 0, 0,  // a JPG and a RAW file
                      3, 0, 0, 0, 0x9C, 0x53, 0xC9, 0x36} +  // 3 bytes; 0.000006 megabytes together
    Padded(kKey, 48) +
    Padded(Text("2026-03-14 15:09:26"), 28) + Bytes{0x26, 0x7A, 0xB5, 0x69};

// A table of 31 entries of size and name, one of them used; then its body.
const Bytes kCalibration = Padded(Bytes{4, 0, 0, 0} + Text("gain"), 1116) + Bytes{'1', '2', '3', '4'};

// A count, one entry whose name field ends four bytes early, the body.
const Bytes kCrashLogs = Padded(Bytes{1, 0, 0, 0, 4, 0, 0, 0} + Text(R"(I:\CRASH\A)"), 36) + Bytes{'o', 'o', 'p', 's'};

// Version, three entries of attributes, size and place of the name; the names.
const Bytes kListing = Bytes{1,    0, 0, 0, 3, 0, 0, 0,               //
                             0x10, 0, 0, 0, 0, 0, 0, 0, 44, 0, 0, 0,  //
                             0x10, 0, 0, 0, 0, 0, 0, 0, 46, 0, 0, 0,  //
                             0x20, 0, 0, 0, 4, 0, 0, 0, 49, 0, 0, 0} +
                       Text(".") + Text("..") + Text("A");

// One size for each key, the bodies; two sizes, two parts.
const Bytes kBatch{3, 0, 0, 0, 'a', 'b', 'c'};
const Bytes kCompressedRaw{2, 0, 0, 0, 1, 0, 0, 0, 'r', 'a', 'w'};

// Version, nothing more, text.
const Bytes kConsole = Bytes{1, 0, 0, 0, 0, 0, 0, 0} +
                       Bytes{'s', 't', 'a', 'r', 't', 'e', 'd', ',', ' ', 's', 'e', 'r', 'i', 'a', 'l', ' ', 'A', '\n'};

// Last control -1, no command, 0, 0.008, 2.8, 100.
const Bytes kControls{0xFF, 0xFF, 0xFF, 0xFF, 0,    0,    0,    0,    0,    0,    0,    0,    0xFC, 0xA9, 0xF1, 0xD2,
                      0x4D, 0x62, 0x80, 0x3F, 0x66, 0x66, 0x66, 0x66, 0x66, 0x66, 0x06, 0x40, 100,  0,    0,    0};

const std::vector<Row> kActions{
    {"capture", {{0xC0, 0, 0x00}}},
    {"delete file", {{0xC0, 0, 0x01}, Text(R"(I:\file)")}},
    {"end of upgrade", {{0xC0, 0, 0x02}}, {}, {{{0xC1, 0, 0}}}},
    {"reboot", {{0xC0, 0, 0x03}}},
    {"set time", {{0xC0, 0, 0x04}, kTime}},
    {"delete picture", {{0xC0, 0, 0x05}, kIdentity}},
    {"delete batch", {{0xC0, 0, 0x06}, kKey}},
    {"network name 0", {{0xC0, 0, 0x07}, Text("kelva.camera.x")}},
    {"network name 1", {{0xC0, 0, 0x08}, Text("kelva.camera.x")}},
    {"passphrase 0", {{0xC0, 0, 0x09}, Text("correct horse")}},
    {"passphrase 1", {{0xC0, 0, 0x0A}, Text("correct horse")}},
    {"authentication type", {{0xC0, 0, 0x0B}}},
    {"manual control", {{0xC0, 0, 0x0C, 3}}},
    {"Wi-Fi off", {{0xC0, 0, 0x0D}}},
    {"monitor character", {{0xC0, 0, 0xFE}, Text("q")}},
    {"monitor line", {{0xC0, 0, 0xFF}, Text("help")}},
    {"start of upgrade", {{0xC1, 0, 3}}},
    {"select information", kSelectInformation},
    {"select file", {{0xC2, 0, 0x01}, Text(R"(I:\file)")}},
    {"open for writing", kOpenForWriting},
    {"select catalogue", {{0xC2, 0, 0x02}}},
    {"select listing", {{0xC2, 0, 0x03}, Text(R"(I:\)")}},
    {"select batch", {{0xC2, 0, 0x05}, kKey}},
    {"select calibration", {{0xC2, 0, 0x06}}},
    {"select compressed raw", {{0xC2, 0, 0x07}, kKey}},
    {"select crash logs", {{0xC2, 0, 0x08}}},
    {"end of write", {{0xC3}}, {}, {kOpenForWriting}},
    {"write chunk", {{0xC5}, {'d', 'a', 't', 'a'}}, {}, {kOpenForWriting}},
    {"upgrade chunk", {{0xC5}, {'d', 'a', 't', 'a'}}, {}, {{{0xC1, 0, 4}}}},
};

Row Asking(const char* name, Bytes block, std::uint32_t asked, Bytes answer, std::vector<Exchange> before = {}) {
  return {name, {std::move(block), {}, asked}, std::move(answer), std::move(before)};
}

Row Information() {
  Row row = Asking("read information", {0xC4, 0, 0x01}, 700, kInformation, {kSelectInformation});
  row.nuls = {1, 7, 14, 19, 27, 33};
  row.isPiece = true;
  return row;
}

Row Catalogue() {
  Row row = Asking("read catalogue", {0xC4, 0, 0x01}, 700, kCatalogue, {{{0xC2, 0, 0x02}}});
  row.counts = {8};
  row.offsets = {16, 24, 32, 40, 48, 56, 64, 72, 80, 88};
  row.nuls = {97, 98, 99, 104, 105, 106, 107};
  row.isPiece = true;
  return row;
}

Row Calibration() {
  Row row = Asking("read calibration", {0xC4, 0, 0x00}, 2000, kCalibration, {{{0xC2, 0, 0x06}}});
  row.counts = {0};
  row.nuls = From(8, 35);
  row.isPiece = true;
  return row;
}

Row CrashLogs() {
  Row row = Asking("read crash logs", {0xC4, 0, 0x00}, 700, kCrashLogs, {{{0xC2, 0, 0x08}}});
  row.counts = {0, 4};
  row.nuls = From(18, 35);
  row.isPiece = true;
  return row;
}

Row File() {
  Row row = Asking("read file", {0xC4, 0, 0x01}, 700, {'w', 'i', 't', 'h', 0, 'n', 'u', 'l'},
                   {{{0xC2, 0, 0x01}, Text(R"(I:\DATA\binary)")}});
  row.isPiece = true;
  return row;
}

Row Listing() {
  Row row = Asking("read listing", {0xC4, 0, 0x01}, 700, kListing, {{{0xC2, 0, 0x03}, Text(R"(I:\CRASH)")}});
  row.counts = {4};
  row.offsets = {16, 28, 40};
  row.nuls = {45, 48, 50};
  row.isPiece = true;
  return row;
}

Row Batch() {
  Row row = Asking("read batch", {0xC4, 0, 0x00}, 700, kBatch, {{{0xC2, 0, 0x05}, kKey}});
  row.counts = {0};
  row.isPiece = true;
  return row;
}

Row CompressedRaw() {
  Row row = Asking("read compressed raw", {0xC4, 0, 0x00}, 700, kCompressedRaw, {{{0xC2, 0, 0x07}, kKey}});
  row.counts = {0, 4};
  row.isPiece = true;
  return row;
}

Row Console() {
  Row row = Asking("console log", {0xC6, 0, 0x02}, 700, kConsole);
  row.isPiece = true;
  return row;
}

Row Time() {
  Row row = Asking("time", {0xC6, 0, 0x03}, 14, kTime, {{{0xC0, 0, 0x04}, kTime}});
  row.steady = 10;  // seconds go on
  return row;
}

std::vector<Row> AllRows() {
  std::vector<Row> rows = kActions;
  for (Row& row : std::vector<Row>{
           Information(), Catalogue(), Calibration(), CrashLogs(), File(), Listing(), Batch(), CompressedRaw(),
           Console(), Time(), Asking("size", {0xC6, 0, 0x00}, 4, {0x84, 2, 0, 0}, {kSelectInformation}),
           Asking("upgrade status", {0xC6, 0, 0x01}, 12, Bytes(12)), Asking("ready", {0xC6, 0, 0x04}, 4, {1, 0, 0, 0}),
           Asking("done count", {0xC6, 0, 0x05}, 4, {0, 0, 0, 0}),
           Asking("battery", {0xC6, 0, 0x06}, 4, {0, 0, 0xC8, 0x42}),
           Asking("manual controls", {0xC6, 0, 0x07}, 40, kControls)}) {
    rows.push_back(std::move(row));
  }
  return rows;
}

void Put(const std::filesystem::path& file, std::string_view content) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
  const std::chrono::sys_seconds changed{std::chrono::seconds(1'773'500'966)};  // 2026-03-14 15:09:26
  std::filesystem::last_write_time(file, std::chrono::file_clock::from_sys(changed));
}

}  // namespace

std::span<const Row> Rows() {
  static const std::vector<Row> rows = AllRows();
  return rows;
}

void FillCard(const std::filesystem::path& card) {
  Put(card / "file", "0123456789");
  Put(card / "DATA/binary", std::string_view("with\0nul", 8));
  Put(card / "DCIM/100ABCDE/IMG_0007.JPG", "abc");
  Put(card / "DCIM/100ABCDE/IMG_0007.RAW", "raw");
  Put(card / "CRASH/A", "oops");
  Put(card / "CALIB/gain", "1234");
}

}  // namespace tests::doors
