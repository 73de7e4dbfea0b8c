// The tables of docs/protocol.md against the records and layouts of the code.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <map>
#include <sstream>

#include "src/wifi/Camera.h"
#include "src/wifi/DcfLayout.h"
#include "src/wifi/VscRegister.h"
#include "tests/protocol/Document.h"
#include "tests/protocol/Player.h"
#include "wire/UserClientRecords.h"

namespace {

struct Field {
  std::size_t offset;
  std::size_t size;
};

#define KELVA_FIELD(name)                          \
  {                                                \
#name, {                                       \
      offsetof(DcfObj, name), sizeof(DcfObj::name) \
    }                                              \
  }

const std::map<std::string, Field> kPictureFields = {
    KELVA_FIELD(directorySuffix), KELVA_FIELD(filePrefix), KELVA_FIELD(directoryNumber), KELVA_FIELD(fileNumber),
    KELVA_FIELD(hasJpg),          KELVA_FIELD(hasRaw),     KELVA_FIELD(hasTxt),          KELVA_FIELD(has128),
    KELVA_FIELD(value5),          KELVA_FIELD(value6),     KELVA_FIELD(block7),          KELVA_FIELD(block8),
    KELVA_FIELD(value9)};

#undef KELVA_FIELD

/// The bytes of DcfObj that the fields of a "goes to" cell take: the fields must follow one another.
Field Span(const std::string& cell) {
  std::istringstream names(cell);
  Field span = {0, 0};
  for (std::string name; std::getline(names >> std::ws, name, ',');) {
    const Field field = kPictureFields.at(name);
    span.offset = span.size == 0 ? field.offset : span.offset;
    EXPECT_EQ(span.offset + span.size, field.offset) << name;
    span.size += field.size;
  }
  return span;
}

/// The bytes of DcfObj that a catalogue field of this type fills: those that are not 0.
std::string Filled(int type) {
  const std::array<std::int32_t, 5> header = {1, sizeof(DcfObj), 1, type, 0};
  const std::string record(sizeof(DcfObj), 'x');
  const kelva::DcfLayout layout(reinterpret_cast<const _VscCdbDcfHeader*>(header.data()));
  const DcfObj picture = layout.Decode(record.data());
  return {reinterpret_cast<const char*>(&picture), sizeof(picture)};
}

/// An answer whose every 32-bit number is its own offset: what is read from it tells where it was read.
std::array<std::int32_t, 16> OwnOffsets() {
  std::array<std::int32_t, 16> words{};
  for (std::size_t i = 0; i < words.size(); ++i) words[i] = static_cast<std::int32_t>(i * 4);
  return words;
}

/// How the document writes the place of something that is at `first` for i = 0 and at `second` for i = 1.
std::string Place(std::int64_t first, std::int64_t second) {
  return std::to_string(first) + " + " + std::to_string(second - first) + " x i";
}

TEST(ProtocolTables, GiveThePlacesInTheCommandBlock) {
  EXPECT_EQ(ReadDocument().tables.at("bytes of the block"),
            (std::vector<Row>{{std::to_string(kelva::at::kOperation), "operation code, 0xC0 to 0xC6"},
                              {"1", "0"},
                              {std::to_string(kelva::at::kSubCode), "sub-code"},
                              {std::to_string(kelva::at::kParameter) + " and on",
                               "parameters; bytes that a command does not use are 0"}}));
}

TEST(ProtocolTables, GiveTheSizesOfTheRecords) {
  std::map<std::string, int> documented;
  const Document document = ReadDocument();
  for (const Row& row : document.tables.at("record")) documented[row[0]] = std::stoi(row[1]);
  const std::map<std::string, int> expected = {{"_VscCdb", sizeof(_VscCdb)},
                                               {"_VscCdbTime", sizeof(_VscCdbTime)},
                                               {"_VscCdbCameraInformation", sizeof(_VscCdbCameraInformation)},
                                               {"_VscCdbDcfHeader", sizeof(_VscCdbDcfHeader)},
                                               {"DcfObj", sizeof(DcfObj)},
                                               {"UserClientTransferRequest", sizeof(wire::UserClientTransferRequest)},
                                               {"UserClientTransferResult", sizeof(wire::UserClientTransferResult)}};
  EXPECT_EQ(documented, expected);
}

TEST(ProtocolTables, GiveTheCatalogueFieldsTheirPlacesInDcfObj) {
  const std::vector<Row> rows = ReadDocument().tables.at("field type");
  ASSERT_EQ(rows.size(), 10u);
  for (int type = 0; type < 10; ++type) {
    const Row& row = rows[static_cast<std::size_t>(type)];
    SCOPED_TRACE(row[0]);
    EXPECT_EQ(row[0], std::to_string(type));
    EXPECT_EQ(row[1], std::to_string(kelva::DcfFieldSize(static_cast<std::uint32_t>(type))));
    const Field span = Span(row[2]);
    EXPECT_EQ(row[1], std::to_string(span.size));
    std::string expected(sizeof(DcfObj), '\0');
    EXPECT_EQ(Filled(type), expected.replace(span.offset, span.size, span.size, 'x'));
  }
  EXPECT_EQ(kelva::DcfFieldSize(10), 0u);
}

TEST(ProtocolTables, GiveThePlacesInTheCatalogue) {
  const auto answer = OwnOffsets();
  const auto* header = reinterpret_cast<const _VscCdbDcfHeader*>(answer.data());
  const kelva::DcfField first = kelva::DcfFieldAt(header, 0);
  const kelva::DcfField second = kelva::DcfFieldAt(header, 1);
  EXPECT_EQ(
      ReadDocument().tables.at("catalogue offset"),
      (std::vector<Row>{{std::to_string(offsetof(_VscCdbDcfHeader, version)), "4", "version, 1"},
                        {std::to_string(offsetof(_VscCdbDcfHeader, stride)), "4", "stride: bytes per picture record"},
                        {std::to_string(offsetof(_VscCdbDcfHeader, fieldCount)), "4", "number of fields"},
                        {Place(first.type, second.type), "4", "type of field i"},
                        {Place(first.offset, second.offset), "4", "offset of field i inside each record"}}));
}

// The number of entries lies at 4 and so is 4: what the names are shows where the library found their offsets.
TEST(ProtocolTables, GiveThePlacesInAListing) {
  const auto answer = OwnOffsets();
  std::vector<Step> steps = ReadDocument().examples.at("ReadDir");
  steps.at(1).data.assign(reinterpret_cast<const char*>(answer.data()), sizeof(answer));
  const std::vector<CameraDirent> entries = Player(steps).ReadDir("I:\\DCIM");
  ASSERT_EQ(entries.size(), 4u);
  EXPECT_EQ(ReadDocument().tables.at("listing offset"),
            (std::vector<Row>{{"0", "4", "the host ignores it"},
                              {std::to_string(entries.size()), "4", "number of entries"},
                              {Place(entries[0].attributes, entries[1].attributes), "4",
                               "attributes of entry i: 0x10 directory, 0x08 volume label"},
                              {Place(entries[0].size, entries[1].size), "4", "its size"},
                              {Place(entries[0].name[0], entries[1].name[0]), "4",
                               "offset of its name, from the start of the answer"}}));
}

}  // namespace
