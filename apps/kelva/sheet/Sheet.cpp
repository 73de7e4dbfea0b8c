// Reads the pictures of a catalogue one after another, and has them drawn.
#include "apps/kelva/sheet/Sheet.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Catalogue.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureStart.h"
#include "apps/camera/ReadLimit.h"
#include "apps/camera/Turns.h"
#include "apps/decoder/Jpeg.h"
#include "apps/files/Sha1.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/FileReader.h"

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
      throw NoPicture("the process that read it aborted");
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

Sheet::Sheet(Context& context, boost::shared_ptr<Camera> camera, Beside beside, DrawnBefore* drawn, std::string serial)
    : context_(context),
      camera_(std::move(camera)),
      beside_(std::move(beside)),
      drawn_(drawn),
      serial_(std::move(serial)) {}

void Sheet::Draw(const std::vector<DcfObj>& catalogue, const std::vector<FileSizes>& sizes, const Sink& sink) {
  Progress progress(context_.reporter, context_.stop, "", BytesToDraw(sizes));
  const auto pictures =
      std::count_if(catalogue.begin(), catalogue.end(), [](const DcfObj& p) { return p.hasJpg != 0; });
  const std::size_t processes = ThumbnailPool::SizeFor(static_cast<std::size_t>(pictures));
  pool_.emplace(processes);
  mostBegun_ = 2 * processes;
  unsigned long long passed = 0;
  for (std::size_t i = 0; i < catalogue.size(); ++i) {
    progress.Name(PictureName(catalogue[i]));
    progress.Files(i + 1, catalogue.size());
    progress.At(passed);
    LetOthers(context_);
    Begin(catalogue[i], sizes[i]);
    while (IsFull()) FinishOldest(sink);
    passed += sizes[i][0].value_or(0);
  }
  while (!begun_.empty()) FinishOldest(sink);
  pool_.reset();
}

Card Sheet::CardOf(const DcfObj& picture, const FileSizes& sizes) {
  Card card{PictureFolder(picture), PictureStem(picture), PictureTime(picture), {}, {}, ""};
  for (const int type : FileTypes(picture)) {
    const auto size = SizeOf(sizes, type);
    card.files.push_back({FileTypeName(type), size, beside_.Find(picture, type, size)});
  }
  return card;
}

void Sheet::Begin(const DcfObj& picture, const FileSizes& sizes) {
  Begun& begun = begun_.emplace_back();
  begun.card = CardOf(picture, sizes);
  begun.picture = &picture;
  ++begunInAll_;
  if (picture.hasJpg == 0) {
    begun.card.trouble = "no JPEG";
    ++totals_.without;
    return;
  }
  begun.path = ShownPath(PicturePath(picture, kJpg));
  begun.key = KeyOf(picture, sizes);
  if (!begun.key.empty()) begun.card.thumbnail = drawn_->Find(begun.key);
  if (begun.card.thumbnail) {
    ++totals_.kept;
    return;
  }
  Try(begun, [&] { Read(begun); });
}

// The same picture, of the same size, of the same camera. Nothing where the camera does not list its size.
std::string Sheet::KeyOf(const DcfObj& picture, const FileSizes& sizes) const {
  if (drawn_ == nullptr || !sizes[0]) return "";
  return Sha1(PicturePath(picture, kJpg) + "\n" + PictureFingerprint(picture) + "\n" + std::to_string(*sizes[0]) +
              "\n" + serial_);
}

void Sheet::Read(Begun& begun) {
  std::optional<std::vector<char>> fetched = beside_.Read(*begun.picture, kJpg);
  begun.isHere = fetched.has_value();
  if (fetched) return Hand(begun, *std::move(fetched));
  if (ExpectsThumbnail() && ReadStartOf(begun)) return;
  Hand(begun, ReadFromCamera(*begun.picture, begun.card.files.front().size));
}

// Where pictures have no EXIF thumbnail, reading their starts before would only cost time. Now and then one is tried.
bool Sheet::ExpectsThumbnail() const {
  constexpr int kMostWithout = 4;
  constexpr std::size_t kTryEach = 32;
  return without_ < kMostWithout || begunInAll_ % kTryEach == 0;
}

// False when the file is not as its folder lists it: reading all of it tells more.
bool Sheet::ReadStartOf(Begun& begun) {
  const std::string token = PicturePath(*begun.picture, kJpg);
  if (context_.guard != nullptr) ThrowIfLeftOut(context_.guard->FateOf(token));
  const InItem item(context_.guard, token, ShownPath(token));
  PictureStart start = ReadStart(camera_, *begun.picture);
  CardFile& file = begun.card.files.front();
  if (start.size == 0 || start.size != file.size) return false;
  begun.isStart = !start.IsWhole();
  Hand(begun, std::move(start.bytes));
  return true;
}

void Sheet::Hand(Begun& begun, std::vector<char> bytes) {
  CardFile& file = begun.card.files.front();
  if (!file.size) file.size = bytes.size();
  bytes_ -= begun.bytes;
  begun.bytes = bytes.size();
  bytes_ += begun.bytes;
  begun.thumbnail = pool_->Draw(std::move(bytes), begun.isStart ? DrawFrom::kStart : DrawFrom::kWhole);
}

// Enough that no process waits for the next picture while one is read, and a few pictures' bytes in memory.
bool Sheet::IsFull() const {
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  return begun_.size() > mostBegun_ || (bytes_ > kMostBytes && begun_.size() > 1);
}

void Sheet::FinishOldest(const Sink& sink) {
  Begun begun = std::move(begun_.front());
  begun_.pop_front();
  bytes_ -= std::exchange(begun.bytes, 0);
  if (begun.thumbnail.valid() || begun.card.thumbnail) Try(begun, [&] { Take(begun); });
  if (!begun.failure.empty()) Report(begun);
  sink(begun.card);
  List(begun);
}

Thumbnail Sheet::Await(Begun& begun) {
  constexpr std::chrono::milliseconds kLook{100};
  while (begun.thumbnail.wait_for(kLook) != std::future_status::ready) context_.stop.Check();
  try {
    Thumbnail thumbnail = begun.thumbnail.get();
    if (begun.isStart) without_ = 0;
    return thumbnail;
  } catch (const NoThumbnail&) {
    ++without_;
  }
  begun.isStart = false;
  Hand(begun, ReadFromCamera(*begun.picture, begun.card.files.front().size));
  bytes_ -= std::exchange(begun.bytes, 0);  // it has left the queue
  return Await(begun);
}

void Sheet::Take(Begun& begun) {
  Card& card = begun.card;
  if (!card.thumbnail) card.thumbnail = Await(begun);
  if (!card.time) card.time = card.thumbnail->time;
  ++totals_.drawn;
  totals_.fetched += begun.isHere ? 1U : 0U;
  const std::string& complaint = card.thumbnail->complaint;
  if (complaint.empty() && !begun.key.empty()) drawn_->Keep(begun.key, *card.thumbnail);
  if (complaint.empty()) return;
  card.trouble = "damaged";
  begun.failure = begun.path + " is damaged and was drawn as far as it goes (" + complaint +
                  "); fetch it again, and check the card if it stays.";
}

template <typename Step>
void Sheet::Try(Begun& begun, Step step) {
  context_.Doing("read " + begun.path);
  try {
    step();
  } catch (const NoPicture& reason) {
    begun.card.trouble = "cannot be drawn";
    begun.failure = "There is no thumbnail of " + begun.path + ": " + reason.what() + ".";
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context_);
    if (EndsAll(outcome.code)) throw;
    begun.card.trouble = "cannot be read";
    begun.failure = outcome.sentence;
  } catch (const std::bad_alloc& error) {
    begun.card.trouble = "cannot be read";
    begun.failure = Explain(error, context_).sentence;
  }
}

std::vector<char> Sheet::ReadFromCamera(const DcfObj& picture, std::optional<unsigned long long> listed) {
  const std::string token = PicturePath(picture, kJpg);
  if (context_.guard != nullptr) ThrowIfLeftOut(context_.guard->FateOf(token));
  const InItem item(context_.guard, token, ShownPath(token));
  kelva::FileReader reader(camera_, picture, kJpg);
  if (reader.Size() == 0) throw NoPicture("the catalogue names it, but the camera has no bytes of it");
  if (reader.Size() > listed.value_or(kMostUnlisted)) throw WronglyAnnounced(listed, reader.Size());
  return ReadWhole(context_, reader);
}

void Sheet::Report(const Begun& begun) {
  ++totals_.failed;
  // A process that takes over draws everything once more.
  if (context_.guard != nullptr && !context_.guard->TakeReport(begun.failure)) return;
  context_.reporter.Error(begun.failure, ExitCode::kPartial);
}

void Sheet::List(const Begun& begun) {
  if (!context_.Json()) return;
  const Card& card = begun.card;
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
  if (!begun.failure.empty()) members.Set("error", begun.failure);
  list_.Push(members);
}

}  // namespace apps
