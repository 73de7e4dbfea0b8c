// Asks a camera everything that this project assumes, in an order in which the most important comes first.
#include "apps/kelva/survey/Survey.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <span>
#include <thread>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Explain.h"
#include "apps/camera/Picture.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Printable.h"
#include "apps/files/StoreFile.h"
#include "base/Ascii.h"
#include "src/wifi/CatalogueDecoder.h"
#include "src/wifi/DirectoryListing.h"
#include "src/wifi/FileReader.h"
#include "src/wifi/OffsetOrder.h"
#include "src/wifi/VscRegister.h"

namespace apps::survey {
namespace {

constexpr std::size_t kMostCatalogue = 64U << 20;
constexpr std::size_t kMostFolder = 4U << 20;
constexpr std::size_t kMostFile = 64U << 20;
constexpr std::size_t kRecordsKept = 8;
constexpr std::size_t kRecordsJudged = 1000;
constexpr int kRoomForClock = 14;
constexpr int kRoomForLevel = 4;
constexpr int kRoomForControls = 40;

}  // namespace

Survey::Survey(Context& context, const TargetFolder& folder, const AttachedCamera& attached, bool standIns)
    : context_(context),
      folder_(folder),
      attached_(attached),
      standIns_(standIns),
      questions_(attached.camera, context.stop) {}

std::optional<Outcome> Survey::Run() {
  try {
    Part("read the information record", [this] { Information(); });
    Part("read the clock", [this] { ReadClock(); });
    Part("read the battery level", [this] { Battery(); });
    Part("read the manual controls",
         [this] { Keep("controls.bin", questions_.Query(kelva::query::kManualControls, kRoomForControls)); });
    Part("read the picture catalogue", [this] { Catalogue(); });
    Part("list the folder I:\\DCIM",
         [this] { Keep("folder-1.bin", questions_.Folder("I:\\DCIM", kMostFolder).bytes); });
    if (picture_) ReadOnePicture();
  } catch (const Failure& failure) {
    return Outcome{failure.Code(), failure.what()};
  }
  return std::nullopt;
}

// Throws Failure when the next part would fail in the same way.
void Survey::Part(const std::string& doing, const std::function<void()>& work) {
  context_.Doing(doing);
  LetOthers(context_);
  try {
    work();
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, doing);
    failed_.push_back(outcome.sentence);
    context_.reporter.Error(outcome.sentence, ExitCode::kPartial);
    if (EndsAll(outcome.code)) throw Failure(outcome.code, outcome.sentence);
  }
}

void Survey::Keep(const std::string& name, std::string bytes, Personal personal) {
  if (standIns_) bytes = WithStandIns(std::move(bytes), personal, attached_.facts.serial);
  StoreNew(folder_, name, bytes, Readers::kOwner);
}

void Survey::Information() {
  const DataSet asked = questions_.Information();
  Keep("information.bin", asked.bytes, Personal::kInformation);
  Judge(JudgeInformationTexts(asked.bytes, attached_.facts));
  Judge(JudgeInformationSize(asked, questions_.WholeInformation()));
}

void Survey::ReadClock() {
  const auto begin = std::chrono::steady_clock::now();
  const std::string first = questions_.Query(kelva::query::kTime, kRoomForClock);
  // Long enough for a clock of whole seconds to move.
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  const std::string second = questions_.Query(kelva::query::kTime, kRoomForClock);
  const auto between = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
  Keep("clock.bin", first + second);
  Judge(JudgeClock(first, second, between));
}

void Survey::Battery() {
  const std::string level = questions_.Query(kelva::query::kBattery, kRoomForLevel);
  Keep("battery.bin", level);
  Judge(JudgeBattery(level));
}

void Survey::Catalogue() {
  const DataSet catalogue = questions_.Catalogue(kMostCatalogue);
  Keep("catalogue-head.bin", CatalogueHead(catalogue.bytes, kRecordsKept));
  Judge(JudgeCatalogueFields(catalogue));
  Judge(JudgeCatalogueSize(catalogue));
  const std::string head = CatalogueHead(catalogue.bytes, kRecordsJudged);
  const std::vector<DcfObj> pictures = kelva::DecodeCatalogue({head.begin(), head.end()});
  Judge(JudgeDates(pictures));
  Judge(JudgeKeyShape(pictures));
  for (const DcfObj& picture : pictures) {
    if (!picture_ && !FileTypes(picture).empty()) picture_ = picture;
  }
}

void Survey::ReadOnePicture() {
  const int type = FileTypes(*picture_).front();
  const std::string path = PicturePath(*picture_, type);
  std::optional<unsigned long long> listed;
  Part("list the folder of the first picture", [&] { listed = ListedSize(type); });
  Part("read the first picture", [&] { Compare(path, type, listed); });
  Part("read the first picture out of order", [&] { Judge(JudgeOffsets(OrderOf(path))); });
  Part("time reads of the first picture", [&] { timings_ = questions_.TimeChunks(path, size_); });
}

kelva::OffsetOrder Survey::OrderOf(const std::string& path) {
  kelva::FileReader(attached_.camera, path).ReadsForwardOnly();
  // Its answer is about this file; what the camera proved is kept here.
  return kelva::KnownOrder(attached_.camera);
}

std::optional<unsigned long long> Survey::ListedSize(int type) {
  const DataSet folder = questions_.Folder("I:\\DCIM\\" + PictureFolder(*picture_), kMostFolder);
  Keep("folder-2.bin", folder.bytes);
  const std::string name = base::Lower(PictureFileName(*picture_, type));
  for (const CameraDirent& entry : kelva::DecodeListing(folder.bytes)) {
    if (base::Lower(entry.name) == name) return SizeOf(entry);
  }
  return std::nullopt;
}

void Survey::Compare(const std::string& path, int type, std::optional<unsigned long long> listed) {
  const DataSet file = questions_.File(path, kMostFile);
  size_ = file.announced;
  Judge(JudgeListedSize(listed, file));
  Judge(JudgeSurplus(file));
  if (type == 1) Judge(JudgeValue5(*picture_, file.announced));
  Judge(JudgeKey(*picture_, file));
}

Json Survey::Members() const {
  Json assumptions = Json::Array();
  for (const Assumption& one : assumptions_) {
    Json holds = one.holds ? Json(*one.holds) : Json();
    assumptions.Push(Json::Object().Set("name", one.name).Set("holds", std::move(holds)).Set("seen", one.seen));
  }
  Json timings = Json::Array();
  for (const Timing& one : timings_) {
    timings.Push(Json::Object().Set("chunk", one.chunk).Set("reads", one.reads).Set("median_us", one.medianUs));
  }
  Json failed = Json::Array();
  for (const std::string& sentence : failed_) failed.Push(sentence);
  Json members = Json::Object()
                     .Set("survey", 1)
                     .SetBytes("product", attached_.facts.product)
                     .SetBytes("revision", attached_.facts.revision);
  members.Set("assumptions", std::move(assumptions)).Set("timing", std::move(timings));
  return std::move(members.Set("failed", std::move(failed)));
}

std::string Survey::Summary() const {
  std::vector<std::vector<std::string>> rows{{"ASSUMPTION", "HOLDS", "SEEN"}};
  for (const Assumption& one : assumptions_) {
    rows.push_back({std::string(one.sentence), one.holds ? *one.holds ? "yes" : "NO" : "-", one.seen});
  }
  std::string text = Columns(rows);
  if (!timings_.empty()) {
    std::vector<std::vector<std::string>> times{{"BYTES AT ONCE", "MEDIAN TIME", "RATE"}};
    for (const Timing& one : timings_) {
      const double rate = one.chunk / std::max(one.medianUs, 1.0) * 1e6;
      times.push_back({std::to_string(one.chunk), std::to_string(std::llround(one.medianUs)) + " us",
                       Bytes(static_cast<unsigned long long>(rate)) + "/s"});
    }
    text += "\n" + Columns(times);
  }
  for (const std::string& sentence : failed_) text += "\n" + sentence + "\n";
  return text;
}

}  // namespace apps::survey
