// Goes over the files of a sync, one after the other.
#include "apps/import/SyncWork.h"

#include <new>
#include <utility>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Explain.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Turns.h"
#include "src/wifi/CameraError.h"

namespace apps {

void SyncWork::ForEach(const std::vector<const SyncItem*>& items, const Pass& pass, const Each& work) {
  if (items.empty()) return;
  progress_.Phase(pass.phase, pass.bytes);
  bytes_ = 0;
  std::size_t done = 0;
  for (const SyncItem* const item : items) {
    context.stop.Check();
    if (pass.before) {
      pass.before(*item);
    } else {
      LetOthers(context);
    }
    Show(pass, done++, items.size(), *item);
    if (report.LeaveOut(*item)) continue;
    context.Doing(std::string(pass.verb) + " " + ShownPath(item->CameraPath()));
    Try(*item, [&] { work(*item); });
  }
}

void SyncWork::Try(const SyncItem& item, const std::function<void()>& work) {
  try {
    work();
  } catch (const CameraError& error) {
    const Outcome outcome = Explain(error, context);
    if (EndsAll(outcome.code)) throw;
    report.Fail(item, outcome.sentence, outcome.code);
  } catch (const std::bad_alloc& error) {
    report.Fail(item, Explain(error, context).sentence);
  }
}

std::string SyncWork::HashOnCamera(const SyncItem& item) {
  const InItem inItem = report.Begin(item);
  ShowComparing();
  kelva::FileReader reader = files.Open(item);
  HoldForLong(context);
  return Sha1OfRemote(reader, [this](std::size_t count) { Came(count); });
}

void SyncWork::Came(std::size_t bytes) {
  bytes_ += bytes;
  progress_.At(bytes_);
}

void SyncWork::Show(const Pass& pass, std::size_t done, std::size_t count, const SyncItem& item) {
  if (!progress_.IsShown()) return;
  progress_.Now(pass.phase);
  progress_.Name(item.LocalText());
  progress_.Files(done, count);
  progress_.At(bytes_);
}

}  // namespace apps
