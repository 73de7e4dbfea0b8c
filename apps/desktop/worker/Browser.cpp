// Does for the window what it asks of one camera, and meanwhile what it has not asked for yet.
#include "apps/desktop/worker/Browser.h"

#include <algorithm>
#include <charconv>
#include <span>
#include <string_view>
#include <utility>

#include "apps/camera/Attached.h"
#include "apps/camera/Battery.h"
#include "apps/camera/CameraPath.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Information.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/PictureStart.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Words.h"
#include "apps/desktop/worker/PictureEvents.h"
#include "src/wifi/CameraError.h"

namespace apps {

using namespace std::chrono_literals;

void Browser::Run() {
  context_.Doing("look for the camera");
  facts_ = Find().facts;
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
  if (name == "list") hasList_ = false;
  if (name == "preview" || name == "thumbs") Want(command);
  if (name == "target" && command.size() >= 4) {
    target_ = Target{command[1], command[2], command[3]};
    targetDue_ = true;
  }
}

// Indices of an older, longer list are left out.
void Browser::Want(const Command& command) {
  const bool isPreview = command.front() == "preview";
  std::erase_if(list_.wanted, [&](const Wish& wish) { return (wish.from == DrawFrom::kLarge) == isPreview; });
  for (const std::string_view word : std::span(command).subspan(1)) {
    std::size_t index = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), index);
    if (error != std::errc() || index >= list_.pictures.size()) continue;
    const bool needsWhole = list_.withoutStart.contains(index);
    list_.wanted.push_back({index, isPreview ? DrawFrom::kLarge : needsWhole ? DrawFrom::kWhole : DrawFrom::kStart});
  }
  std::stable_sort(list_.wanted.begin(), list_.wanted.end(),
                   [](const Wish& a, const Wish& b) { return a.from < b.from; });
}

bool Browser::IsBeingDrawn(const Wish& wish) const {
  return std::any_of(list_.drawings.begin(), list_.drawings.end(),
                     [&wish](const Drawing& drawing) { return drawing.of == wish; });
}

std::optional<Browser::Wish> Browser::NextWish() const {
  const auto next =
      std::find_if(list_.wanted.begin(), list_.wanted.end(), [this](const Wish& wish) { return !IsBeingDrawn(wish); });
  if (next == list_.wanted.end()) return std::nullopt;
  const bool isBusy = list_.drawings.size() >= 2 * kProcesses;
  return isBusy && next->from != DrawFrom::kLarge ? std::nullopt : std::optional(*next);
}

// A preview interrupts what is read of another picture.
bool Browser::IsWanted(const Wish& wish) const {
  const auto next = NextWish();
  if (next && next->from == DrawFrom::kLarge) return *next == wish;
  return std::find(list_.wanted.begin(), list_.wanted.end(), wish) != list_.wanted.end();
}

bool Browser::DoNext() {
  if (quits_ || GiveDrawn()) return true;
  if (!hasList_) return ReadCatalogue(), true;
  if (targetDue_) return GiveTarget(), true;
  if (const auto wish = NextWish()) return Read(*wish), true;
  if (!list_.drawings.empty() || Clock::now() < quietUntil_) return false;
  const Step step = Unasked();
  if (step != nullptr) (this->*step)();
  return step != nullptr;
}

Browser::Step Browser::Unasked() const {
  if (!hasFacts_) return &Browser::ReadFacts;
  if (!list_.HasSizes()) return &Browser::ReadSizes;
  return list_.others ? nullptr : &Browser::ReadOthers;
}

void Browser::Wait() {
  constexpr auto kForEver = 1h;
  auto until = Clock::now() + kForEver;
  if (!list_.drawings.empty()) {
    until = Clock::now() + 2ms;
  } else if (Unasked() != nullptr) {
    until = quietUntil_;
  } else {
    session_.reset();  // others may have the camera
  }
  if (const auto command = input_.Next(until, context_.stop)) Obey(*command);
}

AttachedCamera Browser::Find() {
  return Choose(FindAttached(context_.diversion), WantedSerial(context_.call.Value("serial")));
}

// Found anew each time: a camera that was plugged in again meanwhile is another object.
const boost::shared_ptr<Camera>& Browser::Open() {
  constexpr auto kPatience = 2s;
  if (!session_) {
    context_.Doing("open the camera");
    session_.emplace(context_, Find(), kPatience);
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
  list_ = List{{ReadPictures(*camera)}};
  hasList_ = true;
  SortHighestFirst(list_.pictures);
  const std::span<const DcfObj> all = list_.pictures;
  for (std::size_t from = 0; from == 0 || from < all.size(); from += kAtOnce) {
    const auto part = all.subspan(from, std::min(kAtOnce, all.size() - from));
    context_.Event("pictures", PicturesMembers(from, part), "");
  }
  context_.Event("catalogue", Json::Object().Set("count", all.size()), "");
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
  const std::size_t from = list_.sizes.size();
  const auto rest = std::span(list_.pictures).subspan(from);
  const std::string folder = PictureFolder(rest.front());
  const std::string token = "folder " + folder;
  const bool isLeftOut = EndedAProcess(token);
  const InItem item(context_.guard, token, folder);
  const SizesByName listing = isLeftOut ? SizesByName() : ListPictureFolder(*camera, folder);
  for (const DcfObj& picture : rest) {
    if (PictureFolder(picture) != folder) break;
    list_.sizes.push_back(SizesIn(listing, picture));
  }
  context_.Event("sizes", SizesMembers(from, rest, std::span(list_.sizes).subspan(from)), "");
  targetDue_ = targetDue_ || (target_ && list_.HasSizes());
}

void Browser::ReadOthers() {
  const boost::shared_ptr<Camera> camera = Open();
  context_.Doing("look for other files");
  const std::string token = "others";
  const bool isLeftOut = EndedAProcess(token);
  const InItem item(context_.guard, token, "the folders");
  list_.others = isLeftOut ? OtherFiles{{}, true} : FindOthers(context_, *camera, list_.pictures);
  const std::vector<OtherFile>& files = list_.others->files;
  unsigned long long bytes = 0;
  for (const OtherFile& file : files) bytes += file.size;
  Json members = Json::Object().Set("count", files.size()).Set("bytes", bytes).Set("cut", list_.others->isCut);
  context_.Event("others", std::move(members), "");
  targetDue_ = targetDue_ || (target_ && !files.empty());
}

void Browser::GiveTarget() {
  targetDue_ = false;
  context_.Event("target", TargetMembers(*target_, list_, facts_.serial), "");
}

void Browser::Read(const Wish& wish) {
  const DcfObj& picture = list_.pictures[wish.index];
  if (picture.hasJpg == 0) return GiveNone(wish, "The picture has no JPEG file.");
  const std::string token = PicturePath(picture, kFirstFileType);
  const std::string path = ShownPath(token);
  if (EndedAProcess(token)) {
    return GiveNone(wish, "The process that read " + path + " ended in the middle of it, so it is not shown.");
  }
  try {
    const boost::shared_ptr<Camera> camera = Open();
    const InItem item(context_.guard, token, path);
    context_.Doing("read " + path);
    const bool isStart = wish.from == DrawFrom::kStart;
    std::vector<char> bytes = isStart ? ReadStart(camera, picture).bytes : ReadAll(wish, camera);
    if (IsWanted(wish)) list_.drawings.push_back({wish, pool_.Draw(std::move(bytes), wish.from)});
  } catch (const NoPicture& reason) {
    GiveNoThumbnail(wish, reason.what());
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context_);
    if (EndsAll(outcome.code)) throw;
    GiveNone(wish, outcome.sentence);
  }
}

std::vector<char> Browser::ReadAll(const Wish& wish, const boost::shared_ptr<Camera>& camera) {
  constexpr std::uint64_t kLargestThumbnail = std::uint64_t{32} << 20;
  constexpr std::uint64_t kLargestPreview = std::uint64_t{128} << 20;
  kelva::FileReader reader(camera, list_.pictures[wish.index], kFirstFileType);
  if (reader.Size() == 0) throw NoPicture("the camera has no bytes of it");
  const std::uint64_t most = wish.from == DrawFrom::kLarge ? kLargestPreview : kLargestThumbnail;
  if (reader.Size() > most) throw NoPicture("it is too large to be shown");
  return ReadWhole(context_, reader, [&] { return ObeyAll(), IsWanted(wish); });
}

bool Browser::GiveDrawn() {
  const auto ready = std::find_if(list_.drawings.begin(), list_.drawings.end(), [](const Drawing& drawing) {
    return drawing.result.wait_for(0s) == std::future_status::ready;
  });
  if (ready == list_.drawings.end()) return false;
  Drawing drawing = std::move(*ready);
  list_.drawings.erase(ready);
  try {
    const Thumbnail picture = drawing.result.get();
    Json members = Json::Object().Set("width", picture.width).Set("height", picture.height);
    if (picture.time) members.Set("time", *picture.time);
    Give(drawing.of, std::move(members.Set("jpeg", Base64(picture.jpeg))));
  } catch (const NoThumbnail&) {
    const std::size_t index = drawing.of.index;
    std::erase(list_.wanted, drawing.of);
    list_.withoutStart.insert(index);
    list_.wanted.push_back({index, DrawFrom::kWhole});
  } catch (const NoPicture& reason) {
    GiveNoThumbnail(drawing.of, reason.what());
  }
  return true;
}

void Browser::Give(const Wish& wish, Json members) {
  std::erase(list_.wanted, wish);
  const std::string_view event = wish.from == DrawFrom::kLarge ? "preview" : "thumb";
  context_.Event(event, Json::Object().Set("index", wish.index).Merge(std::move(members)), "");
}

void Browser::GiveNone(const Wish& wish, const std::string& sentence) {
  Give(wish, Json::Object().Set("none", sentence));
}

void Browser::GiveNoThumbnail(const Wish& wish, const std::string& reason) {
  const std::string path = ShownPath(PicturePath(list_.pictures[wish.index], kFirstFileType));
  GiveNone(wish, "There is no thumbnail of " + path + ": " + reason + ".");
}

}  // namespace apps
