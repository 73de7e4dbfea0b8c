// Shows the catalogue with the sizes of the pictures' files.
#include "apps/kelva/verbs/PictureTable.h"

#include <limits>
#include <numeric>
#include <span>
#include <utility>

#include "apps/camera/Catalogue.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"

namespace apps {
namespace {

using Sizes = std::span<const std::uint64_t>;

// The size of a file that its folder does not list.
constexpr std::uint64_t kUnlisted = std::numeric_limits<std::uint64_t>::max();

Json SizeMember(std::uint64_t size) {
  return size == kUnlisted ? Json() : Json(size);
}

// Nothing stands for the whole when a part is missing.
std::uint64_t SumOf(Sizes sizes) {
  return std::accumulate(sizes.begin(), sizes.end(), std::uint64_t{0}, [](std::uint64_t sum, std::uint64_t size) {
    return sum == kUnlisted || size == kUnlisted ? kUnlisted : sum + size;
  });
}

std::vector<std::string> RowOf(const DcfObj& picture, Sizes sizes) {
  const std::uint64_t size = SumOf(sizes);
  return {PictureName(picture), TypeList(picture), size == kUnlisted ? "?" : Bytes(size),
          PictureTime(picture).value_or("no date")};
}

}  // namespace

PictureTable::PictureTable(std::vector<DcfObj> pictures, Camera& camera, const Stop& stop)
    : pictures_(std::move(pictures)) {
  ListedSizes listed(camera);
  for (const DcfObj& picture : pictures_) {
    stop.Check();
    for (const int type : FileTypes(picture)) {
      const auto size = listed.SizeOf(PicturePath(picture, type));
      sizes_.push_back(size.value_or(kUnlisted));
      bytes_ += size.value_or(0);
      unlisted_ += size ? 0U : 1U;
    }
  }
}

template <typename Take>
void PictureTable::ForEach(const Take& take) const {
  std::size_t at = 0;
  for (const DcfObj& picture : pictures_) {
    const std::size_t files = FileTypes(picture).size();
    take(picture, std::span(sizes_).subspan(at, files));
    at += files;
  }
}

Json PictureTable::List() const {
  return Json::ArrayFrom([this](const Json::Give& give) {
    ForEach([&give](const DcfObj& picture, Sizes sizes) {
      Json list = Json::Array();
      for (const std::uint64_t size : sizes) list.Push(SizeMember(size));
      give(PictureMembers(picture).Set("size", SizeMember(SumOf(sizes))).Set("sizes", std::move(list)));
    });
  });
}

Json PictureTable::Totals() const {
  return Json::Object().Set("files", sizes_.size()).Set("bytes", bytes_).Set("unlisted", unlisted_);
}

std::string PictureTable::TotalsInWords() const {
  std::string text =
      Counted(pictures_.size(), "picture") + ", " + Counted(sizes_.size(), "file") + ", " + Bytes(bytes_);
  if (unlisted_ != 0) text += "; " + Counted(unlisted_, "file") + " of unknown size";
  return text + "\n";
}

void PictureTable::Print(Output& out) const {
  const std::vector<std::string> heading = {"PICTURE", "FILES", "SIZE", "TIME"};
  ColumnLayout layout({2});
  layout.Measure(heading);
  ForEach([&layout](const DcfObj& picture, Sizes sizes) { layout.Measure(RowOf(picture, sizes)); });
  out.Add(layout.Line(heading));
  constexpr unsigned kLinesAtOnce = 1000;
  unsigned lines = 0;
  ForEach([&](const DcfObj& picture, Sizes sizes) {
    out.Add(layout.Line(RowOf(picture, sizes)));
    if (++lines % kLinesAtOnce == 0) out.Flush();
  });
  out.Add(TotalsInWords());
  out.Flush();
}

}  // namespace apps
