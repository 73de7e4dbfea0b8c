// Runs a plan: reads files from the camera and hands them to the writers.
#include "apps/import/Sync.h"

#include <algorithm>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/files/Sha1.h"
#include "apps/import/AskTimes.h"
#include "apps/import/DeleteFetched.h"
#include "src/wifi/CameraError.h"

namespace apps {

Sync::Sync(Context& context, boost::shared_ptr<Camera> camera, const TargetFolder& folder, Manifest& manifest,
           SyncOptions options, PictureTimes* times)
    : folder_(folder),
      manifest_(manifest),
      cuts_(folder, manifest),
      work_(context, std::move(camera), options, times) {}

std::optional<Outcome> Sync::Run(const SyncPlan& plan) {
  DropGone(plan);
  std::optional<Outcome> ended = Fetch(plan);
  if (!ended && work_.options.deleteAfter) ended = DeleteFetched(work_, plan, folder_, manifest_);
  work_.Clear();
  return ended;
}

std::optional<Outcome> Sync::Fetch(const SyncPlan& plan) {
  std::optional<Outcome> ended;
  std::vector<const SyncItem*> fresh;
  for (const SyncItem& item : plan.items) {
    if (item.IsNew()) fresh.push_back(&item);
  }
  PictureTimes* const times = work_.times;
  NumbersHere numbers(work_, plan, folder_, manifest_);
  Writers writers(
      folder_, manifest_, cuts_, [this](const WriteOutcome& outcome) { OnOutcome(outcome); },
      times == nullptr ? TimeOf() : [times](const DcfObj& picture) { return times->Of(picture); });
  try {
    const unsigned long long bytes = work_.options.verify ? 2 * expected_ : expected_;
    work_.ForEach(fresh, {"reading", "read", nullptr, bytes}, [&](const SyncItem& item) {
      const std::string why = writers.Try(item);
      why.empty() ? FetchOne(item, numbers.For(item), writers) : work_.report.Fail(item, why);
    });
    ReadDoubtful(numbers, writers);
  } catch (const Stopped&) {
    writers.Abandon();
    throw;
  } catch (const std::exception& error) {
    ended = Explain(error, work_.context);
  }
  try {
    writers.Finish();
  } catch (const Failure& failure) {
    if (!ended) ended = Outcome{failure.Code(), failure.what()};
  }
  return ended;
}

void Sync::FetchOne(const SyncItem& item, int number, Writers& writers) {
  // Of the other files of a picture whose JPEG file was not read here.
  if (work_.times != nullptr && item.IsPicture() && item.Type() != kFirstFileType) {
    AskTime(work_.context, work_.files.Pointer(), item.Picture(), *work_.times);
  }
  const InItem inItem = work_.report.Begin(item);
  kelva::FileReader reader = work_.files.Open(item);
  if (reader.Size() <= kLargestWhole) return FetchWhole(item, reader, number, writers);
  FetchLarge(work_, cuts_, writers, item, reader, number, {AwaitsKey(item)});
}

// A file that was not waited for is written once more if its key does not fit. So after the first one all are.
bool Sync::AwaitsKey(const SyncItem& item) {
  const std::scoped_lock lock(mutex_);
  return work_.options.verify || (!keysFit_ && !item.ExpectedSha1().empty());
}

void Sync::FetchWhole(const SyncItem& item, kelva::FileReader& reader, int number, Writers& writers) {
  std::vector<char> bytes = ReadWhole(reader);
  LearnTime(work_.times, item, bytes);
  if (work_.options.verify) {
    reader.Select();
    work_.ShowComparing();
    if (ReadWhole(reader) != bytes) return work_.report.Fail(item, TwoReadsDiffer(item));
  }
  writers.Submit({&item, std::move(bytes), "", work_.options.verify, true, nullptr, 0, number});
}

std::vector<char> Sync::ReadWhole(kelva::FileReader& reader) {
  // With room for the two bytes more that tell the end.
  std::vector<char> bytes(static_cast<std::size_t>(reader.Size()) + 2);
  bytes.resize(reader.Read(0, bytes));
  work_.context.stop.Check();
  work_.CameBefore(bytes.size());
  return bytes;
}

// A key that is not the SHA-1 of what came: either the read went wrong, or the key is something else than this project
// takes it for. A second read decides.
void Sync::ReadDoubtful(NumbersHere& numbers, Writers& writers) {
  writers.Finish();  // all outcomes are in
  for (const auto& [item, sha1] : std::exchange(doubtful_, {})) {
    work_.context.stop.Check();
    LetOthers(work_.context);
    work_.context.Doing("read " + ShownPath(item->CameraPath()));
    work_.Try(*item, [&, item = item, &first = sha1] { ReadAgain(*item, first, numbers.For(*item), writers); });
  }
}

void Sync::ReadAgain(const SyncItem& item, const std::string& first, int number, Writers& writers) {
  const InItem inItem = work_.report.Begin(item);
  kelva::FileReader reader = work_.files.Open(item);
  if (reader.Size() > kLargestWhole) {
    return FetchLarge(work_, cuts_, writers, item, reader, number, {true, first});
  }
  std::vector<char> bytes = ReadWhole(reader);
  const std::string sha1 = Sha1(bytes);
  const bool asKey = sha1 == item.ExpectedSha1();
  const bool verify = work_.options.verify;
  if (asKey && verify) reader.Select();
  const std::string second = asKey && verify ? Sha1(ReadWhole(reader)) : asKey ? sha1 : first;
  if (sha1 != second) return work_.report.Fail(item, DiffersEachTime(item));
  if (!asKey) work_.files.CheckUnlikeKey(item, bytes.size());
  work_.report.CountRead(!asKey, false);
  writers.Submit({&item, std::move(bytes), sha1, !asKey || verify, asKey, nullptr, 0, number});
}

// Parts of files that are whole by now, or that the camera no longer has.
void Sync::DropGone(const SyncPlan& plan) {
  cuts_.DropIf([&](const ManifestKey& key) {
    if (key.serial != plan.source->serial) return false;
    const auto row = manifest_.Find(key);
    return (row && !row->deleted) || !plan.MayHave(key);
  });
}

void Sync::OnOutcome(const WriteOutcome& outcome) {
  if (outcome.row) return work_.report.Stored(outcome);
  if (outcome.unlikeKey.empty()) return work_.report.Fail(*outcome.item, outcome.error);
  const std::scoped_lock lock(mutex_);
  keysFit_ = false;
  doubtful_.emplace_back(outcome.item, outcome.unlikeKey);
}

}  // namespace apps
