// Does for the window what it asks of one camera, and meanwhile what it has not asked for yet.
#include "apps/desktop/worker/Browser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

#include "apps/camera/Attached.h"
#include "apps/camera/Battery.h"
#include "apps/camera/CameraPath.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Information.h"
#include "apps/camera/ListedSizes.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/PictureStart.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Words.h"
#include "src/wifi/CameraError.h"
#include "src/wifi/FileReader.h"

namespace apps {
namespace {

using namespace std::chrono_literals;
using From = DrawingOf::From;

// A picture is not read as a whole to be shown when it is larger.
constexpr std::uint64_t kLargestThumbnail = std::uint64_t{32} << 20;
constexpr std::uint64_t kLargestPreview = std::uint64_t{128} << 20;

}  // namespace

void Browser::Run() {
  context_.Doing("look for the camera");
  facts_ = Choose(FindAttached(context_.diversion), WantedSerial(context_.call.Value("serial"))).facts;
  context_.Event("camera", Json::Object().SetBytes("serial", facts_.serial).SetBytes("product", facts_.product), "");
  while (!quits_) {
    context_.stop.Check();
    try {
      if (session_) LetOthers(context_);
      ObeyAll();
      if (!DoNext()) Wait();
    } catch (const Failure& failure) {
      if (failure.Code() != ExitCode::kBusy) throw;
      TellBusy();
    }
  }
}

void Browser::ObeyAll() {
  while (const auto command = input_.Next({}, context_.stop)) Obey(*command);
}

void Browser::Obey(const Command& command) {
  const std::string& name = command.front();
  if (name == "quit") quits_ = true;
  if (name == "list") hasPictures_ = false;
  if (name == "target" && command.size() >= 4) {
    target_ = Target{command[1], command[2], command[3]};
    targetDue_ = true;
  }
  if (name == "preview") {
    const auto indices = IndicesIn(command);
    preview_ = indices.empty() ? std::nullopt : std::optional(indices.front());
  }
  if (name != "thumbs") return;
  thumbs_.clear();
  whole_.clear();
  for (const std::size_t index : IndicesIn(command)) {
    (withoutStart_.contains(index) ? whole_ : thumbs_).push_back(index);
  }
}

// Indices of an older, longer list are left out.
std::vector<std::size_t> Browser::IndicesIn(const Command& command) const {
  std::vector<std::size_t> indices;
  for (auto word = command.begin() + 1; word != command.end(); ++word) {
    std::size_t index = 0;
    const auto [end, error] = std::from_chars(word->data(), word->data() + word->size(), index);
    if (error == std::errc() && index < pictures_.size()) indices.push_back(index);
  }
  return indices;
}

bool Browser::DoNext() {
  if (quits_) return true;
  if (const auto drawn = drawings_.Take()) return Give(*drawn), true;
  if (!hasPictures_) return ReadCatalogue(), true;
  if (targetDue_) return GiveTarget(), true;
  if (preview_ && !drawings_.Has({*preview_, From::kLarge})) return ReadPreview(), true;
  if (!thumbs_.empty() && !drawings_.IsFull()) return ReadNextThumbnail(), true;
  if (!whole_.empty() && !drawings_.IsFull()) return ReadNextWhole(), true;
  if (!drawings_.IsEmpty() || Clock::now() < quietUntil_) return false;
  return DoUnasked();
}

bool Browser::HasUnasked() const {
  return !hasFacts_ || sizes_.size() < pictures_.size() || !others_;
}

bool Browser::DoUnasked() {
  if (!hasFacts_) return ReadFacts(), true;
  if (sizes_.size() < pictures_.size()) return ReadSizes(), true;
  if (!others_) return ReadOthers(), true;
  return false;
}

void Browser::Wait() {
  constexpr auto kForEver = 1h;
  auto until = Clock::now() + kForEver;
  if (!drawings_.IsEmpty()) {
    until = Clock::now() + 2ms;
  } else if (HasUnasked()) {
    until = quietUntil_;
  } else {
    session_.reset();  // others may have the camera
  }
  if (const auto command = input_.Next(until, context_.stop)) Obey(*command);
}

// Found anew each time: a camera that was plugged in again meanwhile is another object.
const boost::shared_ptr<Camera>& Browser::Open() {
  constexpr auto kPatience = 2s;
  if (!session_) {
    context_.Doing("open the camera");
    session_.emplace(context_, Choose(FindAttached(context_.diversion), WantedSerial(context_.call.Value("serial"))),
                     kPatience);
  }
  if (std::exchange(toldBusy_, false)) context_.Event("free", Json::Object(), "");
  return session_->Pointer();
}

void Browser::TellBusy() {
  session_.reset();
  if (std::exchange(toldBusy_, true)) return;
  const std::string holders = context_.holdersOf ? context_.holdersOf(facts_.serial) : "";
  context_.Event("busy", Json::Object().SetBytes("holders", holders), "");
}

void Browser::ReadCatalogue() {
  constexpr std::size_t kAtOnce = 1000;
  const boost::shared_ptr<Camera> camera = Open();
  context_.Doing("read the picture catalogue");
  std::vector<DcfObj> pictures = ReadPictures(*camera);
  SortHighestFirst(pictures);
  pictures_ = std::move(pictures);
  hasPictures_ = true;
  sizes_.clear();
  others_.reset();
  thumbs_.clear();
  whole_.clear();
  withoutStart_.clear();
  preview_.reset();
  drawings_ = Drawings();  // of the old list
  for (std::size_t from = 0; from == 0 || from < pictures_.size(); from += kAtOnce) {
    const auto part = std::span(pictures_).subspan(from).first(std::min(kAtOnce, pictures_.size() - from));
    context_.Event("pictures", PicturesMembers(from, part), "");
  }
  context_.Event("catalogue", Json::Object().Set("count", pictures_.size()), "");
  targetDue_ = target_.has_value();
  quietUntil_ = Clock::now() + 100ms;
}

bool Browser::EndedAProcess(const std::string& token) const {
  return context_.guard != nullptr && context_.guard->FateOf(token) != Guard::Fate::kUnknown;
}

void Browser::ReadFacts() {
  const boost::shared_ptr<Camera> camera = Open();
  hasFacts_ = true;
  const std::string token = "facts";
  if (EndedAProcess(token)) return;
  const InItem item(context_.guard, token, "the camera's battery level and firmware");
  Json members = Json::Object().SetBytes("serial", facts_.serial).SetBytes("product", facts_.product);
  members.SetBytes("name", camera->Name());
  try {
    context_.Doing("read the battery level");
    const float level = camera->BatteryLevel();
    if (IsReadableLevel(level)) members.Set("battery", static_cast<double>(level));
    _VscCdbCameraInformation record{};
    if (camera->CameraInformation(record)) members.SetBytes("firmware", FirmwareIn(record, facts_));
  } catch (const CameraError& error) {
    if (EndsAll(Explain(error, context_).code)) throw;
  }
  context_.Event("camera", std::move(members), "");
}

// Those of one folder, which costs one listing.
void Browser::ReadSizes() {
  const boost::shared_ptr<Camera> camera = Open();
  context_.Doing("list a folder");
  const std::size_t from = sizes_.size();
  const std::string folder = PictureFolder(pictures_[from]);
  const std::string token = "folder " + folder;
  const bool isLeftOut = EndedAProcess(token);
  const InItem item(context_.guard, token, folder);
  ListedSizes listed(*camera);
  for (std::size_t i = from; i < pictures_.size() && PictureFolder(pictures_[i]) == folder; ++i) {
    PictureSizes& sizes = sizes_.emplace_back();
    if (isLeftOut) continue;
    for (const int type : FileTypes(pictures_[i])) {
      sizes[static_cast<std::size_t>(type - kFirstFileType)] = listed.SizeOf(PicturePath(pictures_[i], type));
    }
  }
  context_.Event("sizes", SizesMembers(from, std::span(pictures_).subspan(from), std::span(sizes_).subspan(from)), "");
  targetDue_ = targetDue_ || (target_ && sizes_.size() == pictures_.size());
}

void Browser::ReadOthers() {
  const boost::shared_ptr<Camera> camera = Open();
  context_.Doing("look for other files");
  const std::string token = "others";
  const bool isLeftOut = EndedAProcess(token);
  const InItem item(context_.guard, token, "the folders");
  others_ = isLeftOut ? OtherFiles{{}, true} : FindOthers(context_, *camera, pictures_);
  unsigned long long bytes = 0;
  for (const OtherFile& file : others_->files) bytes += file.size;
  Json members = Json::Object().Set("count", others_->files.size()).Set("bytes", bytes).Set("cut", others_->isCut);
  context_.Event("others", std::move(members), "");
  targetDue_ = targetDue_ || (target_ && !others_->files.empty());
}

void Browser::GiveTarget() {
  targetDue_ = false;
  const bool hasSizes = sizes_.size() == pictures_.size();
  const auto sizes = hasSizes ? std::span<const PictureSizes>(sizes_) : std::span<const PictureSizes>();
  const OnCamera known{facts_.serial, pictures_, sizes, others_ ? &*others_ : nullptr};
  context_.Event("target", TargetMembers(*target_, known), "");
}

void Browser::ReadNextThumbnail() {
  const DrawingOf of{thumbs_.front(), From::kStart};
  if (!drawings_.Has(of)) {
    Read(of, [this](const DcfObj& picture) { return ReadStart(Open(), picture).bytes; });
  }
  if (!thumbs_.empty() && thumbs_.front() == of.index) thumbs_.pop_front();
}

void Browser::ReadNextWhole() {
  const DrawingOf of{whole_.front(), From::kWhole};
  const auto isWanted = [&] { return !preview_ && !whole_.empty() && whole_.front() == of.index; };
  if (!drawings_.Has(of)) {
    Read(of, [&](const DcfObj& picture) { return ReadWhole(picture, kLargestThumbnail, isWanted); });
  }
  if (isWanted()) whole_.pop_front();
}

void Browser::ReadPreview() {
  const DrawingOf of{*preview_, From::kLarge};
  const auto isWanted = [&] { return preview_ == of.index; };
  Read(of, [&](const DcfObj& picture) { return ReadWhole(picture, kLargestPreview, isWanted); });
}

void Browser::Read(const DrawingOf& of, const std::function<std::vector<char>(const DcfObj&)>& read) {
  const DcfObj& picture = pictures_[of.index];
  if (picture.hasJpg == 0) return GiveNone(of, "The picture has no JPEG file.");
  const std::string token = PicturePath(picture, kFirstFileType);
  const std::string path = ShownPath(token);
  if (EndedAProcess(token)) {
    return GiveNone(of, "The process that read " + path + " ended in the middle of it, so it is not shown.");
  }
  try {
    Open();
    const InItem item(context_.guard, token, path);
    context_.Doing("read " + path);
    std::vector<char> bytes = read(picture);
    if (!bytes.empty()) drawings_.Add(of, std::move(bytes));
  } catch (const NoPicture& reason) {
    GiveNone(of, "There is no thumbnail of " + path + ": " + reason.what() + ".");
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context_);
    if (EndsAll(outcome.code)) throw;
    GiveNone(of, outcome.sentence);
  }
}

// Nothing when it is no longer wanted.
std::vector<char> Browser::ReadWhole(const DcfObj& picture, std::uint64_t most, const std::function<bool()>& isWanted) {
  constexpr std::size_t kPiece = std::size_t{256} << 10;
  kelva::FileReader reader(Open(), picture, kFirstFileType);
  if (reader.Size() == 0) throw NoPicture("the camera has no bytes of it");
  if (reader.Size() > most) throw NoPicture("it is too large to be shown");
  // With room for the two bytes more that tell the end.
  std::vector<char> bytes(static_cast<std::size_t>(reader.Size()) + 2);
  std::size_t done = 0;
  while (done < reader.Size()) {
    context_.stop.Check();
    ObeyAll();
    if (!isWanted()) return {};
    LetOthers(context_, reader, std::span(bytes).first(done));
    done += reader.ReadOn(std::span(bytes).subspan(done).first(std::min(kPiece, bytes.size() - done)));
  }
  bytes.resize(done);
  return bytes;
}

void Browser::Give(const Drawn& drawn) {
  if (drawn.of.index >= pictures_.size()) return;
  if (drawn.needsWhole) {
    withoutStart_.insert(drawn.of.index);
    return whole_.push_back(drawn.of.index);
  }
  const bool isLarge = drawn.of.from == From::kLarge;
  if (!drawn.thumbnail) {
    const std::string path = ShownPath(PicturePath(pictures_[drawn.of.index], kFirstFileType));
    return GiveNone(drawn.of, "There is no thumbnail of " + path + ": " + drawn.reason + ".");
  }
  if (isLarge && preview_ == drawn.of.index) preview_.reset();
  const Thumbnail& picture = *drawn.thumbnail;
  Json members = Json::Object().Set("index", drawn.of.index).Set("width", picture.width).Set("height", picture.height);
  if (picture.time) members.Set("time", *picture.time);
  context_.Event(isLarge ? "preview" : "thumb", std::move(members.Set("jpeg", Base64(picture.jpeg))), "");
}

void Browser::GiveNone(const DrawingOf& of, const std::string& sentence) {
  const bool isLarge = of.from == From::kLarge;
  if (isLarge && preview_ == of.index) preview_.reset();
  Json members = Json::Object().Set("index", of.index).Set("none", sentence);
  context_.Event(isLarge ? "preview" : "thumb", std::move(members), "");
}

}  // namespace apps
