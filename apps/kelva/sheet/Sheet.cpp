// Draws the pictures of a catalogue one after another.
#include "apps/kelva/sheet/Sheet.h"

#include <algorithm>
#include <new>
#include <utility>

#include "apps/camera/Catalogue.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Picture.h"
#include "apps/camera/ReadLimit.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/thumbnail/Jpeg.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

constexpr int kJpg = kFirstFileType;

unsigned long long BytesToDraw(const std::vector<FileSizes>& sizes) {
  unsigned long long bytes = 0;
  for (const FileSizes& size : sizes) bytes += size[0].value_or(0);
  return bytes;
}

void ThrowIfLeftOut(Guard::Fate fate) {
  switch (fate) {
    case Guard::Fate::kAbort:
      throw NoPicture("the camera sends more of it than it had announced, which ends the reading process");
    case Guard::Fate::kKilledTwice:
      throw NoPicture("two processes that read it were killed, as happens when memory runs out");
    case Guard::Fate::kUnknown:
      return;
  }
}

}  // namespace

std::vector<DcfObj> InSheetOrder(std::vector<DcfObj> catalogue) {
  const auto hasTime = [](const DcfObj& picture) { return PictureTime(picture).has_value(); };
  if (!std::all_of(catalogue.begin(), catalogue.end(), hasTime)) return catalogue;
  std::stable_sort(catalogue.begin(), catalogue.end(),
                   [](const DcfObj& a, const DcfObj& b) { return *PictureTime(a) < *PictureTime(b); });
  return catalogue;
}

Sheet::Sheet(Context& context, Camera& camera, Beside beside)
    : context_(context), camera_(camera), beside_(std::move(beside)) {}

void Sheet::Draw(const std::vector<DcfObj>& catalogue, const std::vector<FileSizes>& sizes, const Sink& sink) {
  Progress progress(context_.reporter, context_.stop, "", BytesToDraw(sizes));
  progress_ = &progress;
  unsigned long long passed = 0;
  for (std::size_t i = 0; i < catalogue.size(); ++i) {
    progress.Name(std::to_string(i + 1) + " of " + std::to_string(catalogue.size()) + "  " + PictureName(catalogue[i]));
    progress.At(passed);
    Card card = CardOf(catalogue[i], sizes[i]);
    failure_.clear();
    DrawInto(card, catalogue[i]);
    sink(card);
    List(card);
    passed += sizes[i][0].value_or(0);
  }
  progress_ = nullptr;
}

Card Sheet::CardOf(const DcfObj& picture, const FileSizes& sizes) {
  Card card{PictureFolder(picture), PictureStem(picture), PictureTime(picture), {}, {}, ""};
  for (const int type : FileTypes(picture)) {
    const auto size = sizes[static_cast<std::size_t>(type - kFirstFileType)];
    card.files.push_back({FileTypeName(type), size, beside_.Find(picture, type, size)});
  }
  return card;
}

void Sheet::DrawInto(Card& card, const DcfObj& picture) {
  if (picture.hasJpg == 0) {
    card.trouble = "no JPEG";
    ++totals_.without;
    return;
  }
  const std::string path = Printable(PicturePath(picture, kJpg));
  context_.Doing("read " + path);
  try {
    TryToDraw(card, picture);
  } catch (const NoPicture& reason) {
    Fail(card, "cannot be drawn", "There is no thumbnail of " + path + ": " + reason.what() + ".");
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context_.WasDoing());
    if (EndsAll(outcome.code)) throw;
    Fail(card, "cannot be read", outcome.sentence);
  } catch (const std::bad_alloc& error) {
    Fail(card, "cannot be read", Explain(error, context_.WasDoing()).sentence);
  }
}

void Sheet::TryToDraw(Card& card, const DcfObj& picture) {
  std::optional<std::vector<char>> fetched = beside_.Read(picture, kJpg);
  const bool isHere = fetched.has_value();
  const std::vector<char> bytes = isHere ? *std::move(fetched) : ReadFromCamera(picture, card.files.front().size);
  if (!card.files.front().size) card.files.front().size = bytes.size();
  Thumbnail thumbnail = DrawThumbnail(thumbnailer_, bytes, context_.stop);
  if (!card.time) card.time = thumbnail.time;
  const std::string complaint = thumbnail.complaint;
  card.thumbnail = std::move(thumbnail);
  ++totals_.drawn;
  totals_.fetched += isHere ? 1U : 0U;
  if (complaint.empty()) return;
  Fail(card, "damaged",
       Printable(PicturePath(picture, kJpg)) + " is damaged and was drawn as far as it goes (" + complaint +
           "); fetch it again, and check the card if it stays.");
}

std::vector<char> Sheet::ReadFromCamera(const DcfObj& picture, std::optional<unsigned long long> listed) {
  const std::string token = PicturePath(picture, kJpg);
  if (context_.guard != nullptr) ThrowIfLeftOut(context_.guard->FateOf(token));
  if (context_.guard != nullptr) context_.guard->Begin(token, Printable(token));
  ReadLimit limit(Printable(token), listed, Progress::Check, *progress_);
  std::vector<char> bytes = camera_.ReadFile(picture, kJpg, ReadLimit::Check, &limit, true);
  if (context_.guard != nullptr) context_.guard->End();
  if (bytes.empty()) throw NoPicture("the catalogue names it, but the camera has no bytes of it");
  return bytes;
}

void Sheet::Fail(Card& card, const char* words, const std::string& sentence) {
  ++totals_.failed;
  card.trouble = words;
  failure_ = sentence;
  // A process that takes over draws everything once more.
  if (context_.guard != nullptr && !context_.guard->TakeReport(sentence)) return;
  context_.reporter.Error(sentence, ExitCode::kPartial);
}

void Sheet::List(const Card& card) {
  if (!context_.Json()) return;
  Json types = Json::Array();
  Json beside = Json::Array();
  for (const CardFile& file : card.files) {
    types.Push(file.type);
    if (!file.beside.empty()) beside.Push(file.beside);
  }
  Json members = Json::Object();
  members.SetBytes("folder", card.folder).SetBytes("name", card.name);
  members.Set("time", card.time ? Json(*card.time) : Json()).Set("types", std::move(types));
  members.Set("drawn", card.thumbnail.has_value()).Set("links", std::move(beside));
  if (!failure_.empty()) members.Set("error", failure_);
  list_.Push(std::move(members));
}

}  // namespace apps
