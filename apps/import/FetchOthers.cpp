// Fetches the files of a camera that its catalogue does not have.
#include "apps/import/FetchOthers.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/DiskErrors.h"
#include "apps/files/FileCalls.h"
#include "apps/files/NewFile.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"
#include "src/wifi/CameraError.h"

namespace apps {
namespace {

// What a camera's transport moves at once, four times.
constexpr std::size_t kPieceOfOther = std::size_t{256} << 10;

std::string TokenOf(const OtherFile& file) {
  return "other " + file.path;
}

}  // namespace

FetchOthers::FetchOthers(Context& context, boost::shared_ptr<Camera> camera, std::string serial,
                         const TargetFolder& folder, Manifest& manifest, const CutFiles& cuts, SyncOptions options,
                         SyncTally& tally)
    : context_(context),
      camera_(std::move(camera)),
      serial_(std::move(serial)),
      folder_(folder),
      manifest_(manifest),
      options_(options),
      tally_(tally),
      folders_(folder, [&cuts](const std::string& path) { return cuts.Keeps(path); }),
      progress_(context.reporter, context.stop, "", 0) {}

std::optional<Outcome> FetchOthers::Run(const OtherFiles& files) {
  std::optional<Outcome> ended;
  try {
    ForEach(files.fresh, "reading", [this](const OtherFile& file) { Fetch(file); });
    if (options_.deleteAfter) {
      ForEach(files.known, "deleting", [this](const OtherFile& file) { Delete(file); });
      ForEach(std::exchange(stored_, {}), "deleting", [this](const OtherFile& file) {
        if (!Delete(file) || options_.verify) return;
        --tally_.sizeOnly;
        ++tally_.readTwice;
      });
    }
    MarkDeleted();
  } catch (const std::exception& error) {
    ended = Explain(error, context_);
    MarkDeleted();
  }
  progress_.Clear();
  return ended;
}

void FetchOthers::ForEach(const std::vector<OtherFile>& files, const std::string& phase,
                          const std::function<void(const OtherFile&)>& work) {
  if (files.empty()) return;
  progress_.Phase(phase);
  readBytes_ = 0;
  unsigned long long done = 0;
  for (const OtherFile& file : files) {
    context_.stop.Check();
    LetOthers(context_);
    progress_.Name(file.Local().Text());
    progress_.Files(done++, files.size());
    progress_.At(readBytes_);
    if (LeaveOut(file)) continue;
    context_.Doing((phase == "deleting" ? "delete " : "read ") + ShownPath(file.path));
    try {
      work(file);
    } catch (const CameraError& error) {
      const Outcome outcome = Explain(error, context_);
      if (EndsAll(outcome.code)) throw;
      Fail(file, outcome.sentence);
    } catch (const Failure& failure) {
      if (EndsAllWriting(failure.SystemError())) throw;
      Fail(file, failure.what());
    }
  }
}

// True for a file that failed in an earlier process of this run, or ended one.
bool FetchOthers::LeaveOut(const OtherFile& file) {
  if (context_.guard == nullptr) return false;
  const std::string token = TokenOf(file);
  if (context_.guard->WasReported(token)) return true;
  if (context_.guard->FateOf(token) == Guard::Fate::kUnknown) return false;
  Fail(file, "Two processes that read " + ShownPath(file.path) +
                 " ended, so the file was left out; run the same command again.");
  return true;
}

kelva::FileReader FetchOthers::Open(const OtherFile& file) {
  kelva::FileReader reader(camera_, file.path);
  if (reader.Size() == file.size) return reader;
  throw CameraError("the folder gives it " + std::to_string(file.size) + " bytes, and the camera announces " +
                    std::to_string(reader.Size()));
}

void FetchOthers::Read(kelva::FileReader& reader, const Take& take) {
  std::vector<char> piece(kPieceOfOther);
  for (std::uint64_t at = 0; at < reader.Size();) {
    const std::size_t count = reader.Read(at, piece);
    LetOthers(context_, reader, std::span(piece).first(count));
    context_.reporter.AwaitCamera(false);
    take(at, std::span(piece).first(count));
    context_.reporter.AwaitCamera(true);
    at += count;
    readBytes_ += count;
    progress_.At(readBytes_);
  }
}

void FetchOthers::Fetch(const OtherFile& file) {
  const InItem inItem(context_.guard, TokenOf(file), ShownPath(file.path));
  kelva::FileReader reader = Open(file);
  const LocalPath local = file.Local();
  const auto folder = folders_.For(local);
  auto written = std::make_unique<NewFile>(*folder);
  Sha1Sum sum;
  Read(reader, [&](std::uint64_t, std::span<const char> bytes) {
    written->Write(bytes);
    sum.Add(bytes);
  });
  written->BeginFlush();
  if (options_.verify) {
    bool equal = true;
    reader.Select();
    Read(reader, [&](std::uint64_t at, std::span<const char> bytes) { equal = equal && written->HoldsAt(at, bytes); });
    if (!equal) {
      return Fail(file, "Two reads of " + ShownPath(file.path) +
                            " differ, so it was not stored; check the cable and the card.");
    }
  }
  const std::string sha1 = sum.Take();
  BesideFile beside(*folder, local.name, std::move(written), file.size, sha1);
  beside.Flush();
  const Stored stored = beside.TakeName();
  folders_.Flush({local.folders});
  Record(file, stored, sha1);
}

void FetchOthers::Record(const OtherFile& file, const Stored& stored, const std::string& sha1) {
  LocalPath local = file.Local();
  const bool isNumbered = !stored.wasThere && stored.name != local.name;
  local.name = stored.name;
  manifest_.Record({{file.Key(serial_), local.Text(), sha1, file.size, options_.verify, false}});
  tally_.bytes += file.size;
  ++tally_.stored;
  ++(options_.verify ? tally_.readTwice : tally_.sizeOnly);
  ++(stored.wasThere ? tally_.alreadyHere : tally_.undated);
  if (isNumbered) ++tally_.numbered;
  if (options_.deleteAfter) stored_.push_back(file);
  if (isNumbered && context_.reporter.Style().verbose && !context_.Json()) {
    context_.reporter.Note(ShownPath(file.path) + " is " + Printable(local.Text()) + ", because its name was taken.");
  }
  if (!context_.Json()) return;
  Json members = Json::Object().SetBytes("path", file.path).SetBytes("file", local.Text()).Set("size", file.size);
  members.Set("sha1", sha1).Set("verified", options_.verify).Set("was_here", stored.wasThere);
  context_.Event("stored", std::move(members.Set("numbered", isNumbered)), "");
}

// In one turn with the camera: what was compared is what is deleted.
bool FetchOthers::Delete(const OtherFile& file) {
  std::string why = WhyNotDelete(file);
  if (why.empty() && !camera_->DeleteFile(file.path.c_str())) why = "The camera refused to delete it.";
  if (!why.empty()) return Fail(file, ShownPath(file.path) + " was not deleted: " + why), false;
  unmarked_.push_back(file.Key(serial_));
  ++tally_.deleted;
  if (context_.Json()) context_.Event("deleted", Json::Object().SetBytes("path", file.path), "");
  return true;
}

std::string FetchOthers::HashOnCamera(const OtherFile& file) {
  const InItem inItem(context_.guard, TokenOf(file), ShownPath(file.path));
  kelva::FileReader reader = Open(file);
  HoldForLong(context_);
  return Sha1OfRemote(reader, [this](std::size_t count) {
    readBytes_ += count;
    progress_.At(readBytes_);
  });
}

// Looks at both files once more: only what is still what was fetched may go on the camera.
std::string FetchOthers::WhyNotDelete(const OtherFile& file) {
  const auto row = manifest_.Find(file.Key(serial_));
  if (!row) return "it was not fetched.";
  const base::FileDescriptor here(OpenBeneath(folder_.Fd(), row->path, O_RDONLY | O_NONBLOCK));
  struct stat status {};
  if (!here || ::fstat(here.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return Printable(row->path) + " is not where it was stored.";
  }
  const bool same = static_cast<unsigned long long>(status.st_size) == row->size && Sha1OfFile(here.Get()) == row->sha1;
  if (!same) return Printable(row->path) + " was edited after it was fetched.";
  return HashOnCamera(file) == row->sha1 ? "" : "it is no longer what was fetched from there.";
}

// At the end: a file that a killed process did not mark is no longer on the camera, and costs nothing but its mark.
void FetchOthers::MarkDeleted() {
  manifest_.MarkDeleted(std::exchange(unmarked_, {}));
}

void FetchOthers::Fail(const OtherFile& file, const std::string& sentence) {
  if (context_.guard != nullptr && !context_.guard->TakeReport(TokenOf(file))) return;
  ++tally_.failed;
  context_.reporter.Error(sentence, ExitCode::kPartial);
  if (!context_.Json()) return;
  context_.Event("failed", Json::Object().SetBytes("path", file.path).Set("error", sentence), "");
}

}  // namespace apps
