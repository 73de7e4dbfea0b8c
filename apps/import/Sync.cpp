// Runs a plan: reads files from the camera and hands them to the writers.
#include "apps/import/Sync.h"

#include <algorithm>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Picture.h"
#include "apps/camera/ReadLimit.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"
#include "apps/import/AskTimes.h"

namespace apps {
namespace {

// A larger file comes in pieces.
constexpr unsigned long long kLargestWhole = 1U << 20;

std::string TokenOf(const SyncItem& item) {
  return std::to_string(item.Type()) + " " + item.Key().picture;
}

std::string TwoReadsDiffer(const SyncItem& item) {
  return "Two reads of " + ShownPath(item.CameraPath()) +
         " differ, so it was not stored; check the cable and the card.";
}

std::string DiffersEachTime(const SyncItem& item) {
  return "What the camera sends of " + ShownPath(item.CameraPath()) +
         " differs from read to read, so it was not stored; check the cable and the card.";
}

// It was stored now, and beside something else that had its name.
bool IsNumbered(const WriteOutcome& outcome) {
  return !outcome.wasThere && outcome.row->path != outcome.item->Local().Text();
}

}  // namespace

// Ends a stream. Unless its reader says more, the file is to be taken up by a later run.
class Sync::Sending {
 public:
  explicit Sending(std::shared_ptr<FileStream> stream) : stream_(std::move(stream)) {}
  ~Sending() { stream_->End(what_, verified_); }
  Sending(const Sending&) = delete;
  Sending& operator=(const Sending&) = delete;

  void Store(bool verified) {
    what_ = FileStream::What::kStore;
    verified_ = verified;
  }
  void Drop() { what_ = FileStream::What::kDrop; }

 private:
  const std::shared_ptr<FileStream> stream_;
  FileStream::What what_ = FileStream::What::kKeep;
  bool verified_ = false;
};

Sync::Sync(Context& context, boost::shared_ptr<Camera> camera, const TargetFolder& folder, Manifest& manifest,
           SyncOptions options, PictureTimes* times)
    : context_(context),
      camera_(std::move(camera)),
      listed_(*camera_),
      folder_(folder),
      manifest_(manifest),
      cuts_(folder, manifest),
      options_(options),
      times_(times),
      progress_(context.reporter, context.stop, "", 0),
      totals_(context.guard) {}

std::optional<Outcome> Sync::Run(const SyncPlan& plan) {
  std::optional<Outcome> ended;
  DropGone(plan);
  {
    Writers writers(
        folder_, manifest_, cuts_, [this](const WriteOutcome& outcome) { OnOutcome(outcome); },
        times_ == nullptr ? TimeOf() : [this](const DcfObj& picture) { return times_->Of(picture); });
    try {
      ReadAll(plan, writers);
      ReadDoubtful(writers);
    } catch (const Stopped&) {
      writers.Abandon();
      throw;
    } catch (const std::exception& error) {
      ended = Explain(error, context_);
    }
    context_.reporter.AwaitCamera(false);
    try {
      writers.Finish();
    } catch (const Failure& failure) {
      if (!ended) ended = Outcome{failure.Code(), failure.what()};
    }
  }
  context_.reporter.AwaitCamera(true);
  if (!ended && options_.deleteAfter) ended = DeleteVerified(plan);
  progress_.Clear();
  return ended;
}

template <typename Chosen, typename Work>
void Sync::ForEach(const SyncPlan& plan, std::string_view phase, Chosen chosen, Work work) {
  const auto count = static_cast<unsigned long long>(std::count_if(plan.items.begin(), plan.items.end(), chosen));
  if (count == 0) return;
  progress_.Phase(phase);
  readBytes_ = 0;
  unsigned long long done = 0;
  for (const SyncItem& item : plan.items) {
    if (!chosen(item)) continue;
    context_.stop.Check();
    LetOthers(context_);
    ShowProgress(done++, count, item);
    if (context_.guard != nullptr && LeaveOut(item)) continue;
    context_.Doing("read " + ShownPath(item.CameraPath()));
    Try(item, [&] { work(item); });
  }
}

void Sync::ReadAll(const SyncPlan& plan, Writers& writers) {
  ForEach(
      plan, "reading", [](const SyncItem& i) { return i.IsNew(); }, [&](const SyncItem& i) { Fetch(i, writers); });
}

void Sync::Try(const SyncItem& item, const std::function<void()>& work) {
  try {
    work();
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context_);
    if (EndsAll(outcome.code)) throw;
    Fail(item, outcome.sentence);
  } catch (const std::bad_alloc& error) {
    Fail(item, Explain(error, context_).sentence);
  }
}

// True for a file that failed in an earlier process of this run, or ended one.
bool Sync::LeaveOut(const SyncItem& item) {
  const std::string token = TokenOf(item);
  const Guard::Fate fate = context_.guard->FateOf(token);
  if (fate == Guard::Fate::kUnknown && !context_.guard->WasReported(token)) return false;
  const std::string path = ShownPath(item.CameraPath());
  Fail(item, fate == Guard::Fate::kKilledTwice
                 ? "Two processes that read " + path +
                       " were killed, so the file was left out; close other programs and run the same command again."
                 : "The camera sent more of " + path +
                       " than it had announced, which ends the reading process; the file was left out.");
  return true;
}

void Sync::Fetch(const SyncItem& item, Writers& writers) {
  // Of the other files of a picture whose JPEG file was not read here.
  if (times_ != nullptr && item.Type() != kFirstFileType) AskTime(context_, camera_, item.Picture(), *times_);
  const InItem inItem(context_.guard, TokenOf(item), ShownPath(item.CameraPath()));
  kelva::FileReader reader = Open(item);
  if (reader.Size() <= kLargestWhole) return FetchWhole(item, reader, writers);
  if (FetchPieces(item, reader, writers, false)) return;
  reader.Select();
  FetchPieces(item, reader, writers, true);
}

void Sync::FetchWhole(const SyncItem& item, kelva::FileReader& reader, Writers& writers) {
  std::vector<char> bytes = ReadWhole(reader);
  LearnTime(item, bytes);
  if (options_.verify) {
    reader.Select();
    if (ReadWhole(reader) != bytes) return Fail(item, TwoReadsDiffer(item));
  }
  Submit(writers, {&item, std::move(bytes), "", options_.verify});
}

// False for a file that is to be read once more from its start, unless this `isLast`: one that came differently twice and
// never as its key says, or whose parts do not belong together.
bool Sync::FetchPieces(const SyncItem& item, kelva::FileReader& reader, Writers& writers, bool isLast) {
  const auto stream = std::make_shared<FileStream>();
  Submit(writers, {&item, {}, "", false, true, stream, reader.Size()});
  Sending sending(stream);
  try {
    return SendAll(item, reader, *stream, sending, isLast);
  } catch (const kelva::FileReadError& error) {
    if (error.Why() != kelva::FileReadError::Reason::kCameraLost) sending.Drop();
    throw;
  }
}

bool Sync::SendAll(const SyncItem& item, kelva::FileReader& reader, FileStream& stream, Sending& sending, bool isLast) {
  const std::optional<FileStream::Here> here = TakeUp(item, reader, stream);
  if (!here || !Send(item, reader, stream, FileStream::What::kWrite, here->size)) return true;
  const std::optional<std::string> sha1 = stream.Sha1();
  if (!sha1) return true;
  const bool isWhole = here->size == 0;
  const std::string key = item.ExpectedSha1();
  const bool asKey = key.empty() || key == *sha1;
  const bool isSure = isWhole ? asKey : key == *sha1;
  bool equal = true;
  if (!isSure || options_.verify) {
    if (!asKey) CheckUnlikeKey(item, reader.Size());
    reader.Select();
    if (!Send(item, reader, stream, FileStream::What::kCompare, here->compared)) return true;
    const std::optional<bool> answer = stream.IsEqual();
    if (!answer) return true;
    equal = *answer;
  }
  if (equal) {
    if (!isWhole) LearnTimeOfPart(item, reader);
    sending.Store(!isSure || options_.verify);
    Count(!asKey, !isWhole);
    return true;
  }
  sending.Drop();
  if (!isLast && (!asKey || !isWhole)) return false;
  Fail(item, asKey ? TwoReadsDiffer(item) : DiffersEachTime(item));
  return true;
}

// What an earlier run left of the file, if the camera still sends the same end of it. Nothing when the writer has given up.
std::optional<FileStream::Here> Sync::TakeUp(const SyncItem& item, kelva::FileReader& reader, FileStream& stream) {
  constexpr std::uint64_t kTail = 65'536;
  if (!cuts_.Has(item.Key())) return FileStream::Here{};
  if (reader.ReadsForwardOnly()) HoldForLong(context_);  // the part is skipped in one go
  const std::optional<FileStream::Here> here = stream.WhatIsHere();
  if (!here || here->size == 0 || here->size == reader.Size()) return here;
  const auto tail = static_cast<std::size_t>(std::min<std::uint64_t>(kTail, here->size));
  const std::span<char> room = stream.Room();
  if (room.empty()) return std::nullopt;
  stream.Put(FileStream::What::kTail, reader.Read(here->size - tail, room.first(tail)));
  const std::optional<bool> fits = stream.IsEqual();
  if (!fits) return std::nullopt;
  return *fits ? here : FileStream::Here{};
}

// False when the writer has given up, which it has reported.
bool Sync::Send(const SyncItem& item, kelva::FileReader& reader, FileStream& stream, FileStream::What what,
                std::uint64_t from) {
  for (std::uint64_t at = from; at < reader.Size();) {
    context_.reporter.AwaitCamera(false);
    const std::span<char> room = stream.Room();
    context_.reporter.AwaitCamera(true);
    if (room.empty()) return false;
    const std::uint64_t left = reader.Size() - at;
    // With room for the two bytes more that tell the end.
    const std::size_t most = left > FileStream::kPiece ? FileStream::kPiece : static_cast<std::size_t>(left) + 2;
    const std::uint64_t before = reader.Position();
    std::size_t count = 0;
    try {
      count = reader.Read(at, room.first(most));
    } catch (const CameraError&) {
      // What came in good order before the error is kept. Without a first byte the reader stands where it did.
      const std::uint64_t now = reader.Position();
      if (now != before && now > at && now <= at + most) stream.Put(what, static_cast<std::size_t>(now - at));
      throw;
    }
    if (at == 0) LearnTime(item, room.first(count));
    LetOthers(context_, reader, room.first(count));
    stream.Put(what, count);
    at += count;
    readBytes_ += count;
    progress_.At(readBytes_);
  }
  return true;
}

// The start of the picture's JPEG file says when it was taken, for all its files.
void Sync::LearnTime(const SyncItem& item, std::span<const char> start) {
  if (times_ != nullptr && item.Type() == kFirstFileType) times_->Ask(item.Picture(), start);
}

// The start of a file that was taken up did not come in this run.
void Sync::LearnTimeOfPart(const SyncItem& item, kelva::FileReader& reader) {
  if (times_ == nullptr || item.Type() != kFirstFileType) return;
  std::vector<char> start(65'536);
  try {
    LearnTime(item, std::span(start).first(reader.Read(0, start)));
  } catch (const CameraError&) {
    // The file is whole, and keeps the time of its fetching.
  }
}

// A key that is not the SHA-1 of what came: either the read went wrong, or the key is something else than this project
// takes it for. A second read decides.
void Sync::ReadDoubtful(Writers& writers) {
  writers.Finish();  // all outcomes are in
  for (const auto& [item, sha1] : std::exchange(doubtful_, {})) {
    context_.stop.Check();
    LetOthers(context_);
    context_.Doing("read " + ShownPath(item->CameraPath()));
    Try(*item, [&, item = item, &first = sha1] { ReadAgain(*item, first, writers); });
  }
}

void Sync::ReadAgain(const SyncItem& item, const std::string& first, Writers& writers) {
  const InItem inItem(context_.guard, TokenOf(item), ShownPath(item.CameraPath()));
  kelva::FileReader reader = Open(item);
  if (reader.Size() > kLargestWhole) throw CameraError("the camera announces another size than before");
  std::vector<char> bytes = ReadWhole(reader);
  const std::string sha1 = Sha1(bytes);
  const bool asKey = sha1 == item.ExpectedSha1();
  if (asKey && options_.verify) reader.Select();
  const std::string second = asKey && options_.verify ? Sha1(ReadWhole(reader)) : asKey ? sha1 : first;
  if (sha1 != second) return Fail(item, DiffersEachTime(item));
  if (!asKey) CheckUnlikeKey(item, bytes.size());
  Count(!asKey, false);
  Submit(writers, {&item, std::move(bytes), sha1, !asKey || options_.verify, asKey});
}

// Waits for the disk where it is slower than the camera.
void Sync::Submit(Writers& writers, WriteJob job) {
  context_.reporter.AwaitCamera(false);
  writers.Submit(std::move(job));
  context_.reporter.AwaitCamera(true);
}

// Read once more, so that what is deleted is still what was stored.
std::string Sync::HashOnCamera(const SyncItem& item) {
  const InItem inItem(context_.guard, TokenOf(item), ShownPath(item.CameraPath()));
  kelva::FileReader reader = Open(item);
  HoldForLong(context_);
  return Sha1OfRemote(reader, [this](std::size_t count) {
    readBytes_ += count;
    progress_.At(readBytes_);
  });
}

// Looks into the folder first, since a listing would end the selection.
kelva::FileReader Sync::Open(const SyncItem& item) {
  const std::optional<unsigned long long> listed = listed_.SizeOf(item.CameraPath());
  kelva::FileReader reader(camera_, item.Picture(), item.Type());
  if (listed != reader.Size()) {
    CheckSize(item, reader.Size());
    reader.Select();
  }
  return reader;
}

// A SHA-1 says more than a size, but no file is read without end, and an empty one may stand for one that is missing.
void Sync::CheckSize(const SyncItem& item, unsigned long long announced) {
  constexpr unsigned long long kMostBeyond = 262'144;
  const bool hasKey = announced != 0 && !item.ExpectedSha1().empty();
  const std::optional<bool> agrees = listed_.Agrees(item.CameraPath(), announced);
  if (!agrees && announced == 0) throw CameraError("the catalogue names it, but it is not in its folder");
  if (!agrees && announced > kMostUnlisted) {
    throw CameraError("no folder lists it, so " + std::to_string(kMostUnlisted >> 20) +
                      " MiB are read at most, and the camera announces " + std::to_string(announced) + " bytes");
  }
  if (agrees.value_or(true) || (hasKey && announced <= listed_.Listed() + kMostBeyond)) return;
  throw CameraError("the folder gives it " + std::to_string(listed_.Listed()) + " bytes, and the camera announces " +
                    std::to_string(announced));
}

std::vector<char> Sync::ReadWhole(kelva::FileReader& reader) {
  // With room for the two bytes more that tell the end.
  std::vector<char> bytes(static_cast<std::size_t>(reader.Size()) + 2);
  bytes.resize(reader.Read(0, bytes));
  context_.stop.Check();
  readBytes_ += bytes.size();
  return bytes;
}

void Sync::CheckUnlikeKey(const SyncItem& item, unsigned long long size) {
  if (listed_.Agrees(item.CameraPath(), size).value_or(true)) return;
  throw CameraError("its key in the catalogue is not its SHA-1, and its folder gives it another size");
}

void Sync::Count(bool unlikeKey, bool resumed) {
  totals_.unlikeKey += unlikeKey ? 1U : 0U;
  totals_.resumed += resumed ? 1U : 0U;
}

// Parts of files that are whole by now, or that the camera no longer has.
void Sync::DropGone(const SyncPlan& plan) {
  const std::string& serial = plan.source->serial;
  cuts_.DropIf([&](const ManifestKey& key) {
    if (key.serial != serial) return false;
    const auto& catalogue = plan.source->catalogue;
    const bool isListed = std::any_of(catalogue.begin(), catalogue.end(), [&](const DcfObj& picture) {
      const std::vector<int> types = FileTypes(picture);
      return std::find(types.begin(), types.end(), key.type) != types.end() && KeyOf(picture, key.type, serial) == key;
    });
    return !isListed || manifest_.Find(key).has_value();
  });
}

void Sync::OnOutcome(const WriteOutcome& outcome) {
  if (!outcome.row && outcome.unlikeKey.empty()) return Fail(*outcome.item, outcome.error);
  const std::scoped_lock lock(mutex_);
  if (!outcome.row) {
    doubtful_.emplace_back(outcome.item, outcome.unlikeKey);
    return;
  }
  CountStored(outcome);
  if (!context_.Json()) return;
  Json members = Json::Object().SetBytes("path", outcome.item->CameraPath()).SetBytes("file", outcome.row->path);
  members.Set("size", outcome.row->size).Set("sha1", outcome.row->sha1).Set("verified", outcome.row->verified);
  members.Set("was_here", outcome.wasThere).Set("numbered", IsNumbered(outcome));
  context_.Event("stored", std::move(members), "");
}

void Sync::CountStored(const WriteOutcome& outcome) {
  const ManifestRow& row = *outcome.row;
  const bool asKey = row.sha1 == outcome.item->ExpectedSha1();
  totals_.bytes += row.size;
  ++totals_.stored;
  if (outcome.wasThere) ++totals_.alreadyHere;
  if (!outcome.isDated) ++totals_.undated;
  if (asKey) ++totals_.checked;
  if (row.verified) ++totals_.readTwice;
  if (!asKey && !row.verified) {
    ++totals_.sizeOnly;
    onceRead_.insert(outcome.item);
  }
  if (!IsNumbered(outcome)) return;
  ++totals_.numbered;
  if (context_.reporter.Style().verbose && !context_.Json()) {
    context_.reporter.Note(ShownPath(outcome.item->CameraPath()) + " is " + Printable(row.path) +
                           ", because its name was taken.");
  }
}

void Sync::Fail(const SyncItem& item, const std::string& sentence) {
  const std::scoped_lock lock(mutex_);
  if (context_.guard != nullptr && !context_.guard->TakeReport(TokenOf(item))) return;
  ++totals_.failed;
  context_.reporter.Error(sentence, ExitCode::kPartial);
  if (!context_.Json()) return;
  context_.Event("failed", Json::Object().SetBytes("path", item.CameraPath()).Set("error", sentence), "");
}

// What is on disk here, stored by this run or by an earlier one.
std::vector<const SyncItem*> Sync::Fetched(const SyncPlan& plan) {
  std::vector<const SyncItem*> items;
  for (const SyncItem& item : plan.items) {
    if (!item.IsDeleted() && manifest_.Find(item.Key())) items.push_back(&item);
  }
  return items;
}

std::optional<Outcome> Sync::DeleteVerified(const SyncPlan& plan) {
  Deletions deletions(*camera_, folder_, manifest_, [this](const SyncItem& item) { return HashOnCamera(item); });
  progress_.Phase("deleting");
  readBytes_ = 0;
  unsigned long long done = 0;
  const DcfObj* picture = nullptr;
  try {
    const std::vector<const SyncItem*> items = Fetched(plan);
    for (const SyncItem* item : items) {
      context_.stop.Check();
      // All files of a picture go in one turn.
      if (picture != &item->Picture() && LetOthers(context_)) deletions.Renew();
      picture = &item->Picture();
      ShowProgress(done++, items.size(), *item);
      if (context_.guard != nullptr && LeaveOut(*item)) continue;
      context_.Doing("delete " + ShownPath(item->CameraPath()));
      Try(*item, [&] { DeleteOne(*item, deletions); });
    }
    deletions.Finish();
  } catch (const CameraError& error) {
    return Explain(error, context_);
  } catch (const Failure& failure) {
    return Outcome{failure.Code(), failure.what()};
  }
  return std::nullopt;
}

void Sync::DeleteOne(const SyncItem& item, Deletions& deletions) {
  context_.reporter.HearCamera();
  const std::string why = deletions.Delete(item);
  if (!why.empty()) return Fail(item, why);
  ++totals_.deleted;
  if (onceRead_.erase(&item) != 0) {  // it was read once more, with the same content
    --totals_.sizeOnly;
    ++totals_.readTwice;
  }
  if (context_.Json()) context_.Event("deleted", Json::Object().SetBytes("path", item.CameraPath()), "");
}

void Sync::ShowProgress(unsigned long long done, unsigned long long count, const SyncItem& item) {
  if (!progress_.IsDue()) return;
  progress_.Name(item.LocalText());
  progress_.Files(done, count);
  progress_.At(readBytes_);
}

}  // namespace apps
