// A camera around another one, which tells of each transfer.

#include "Traced.h"

#include <boost/make_shared.hpp>
#include <exception>
#include <string>
#include <utility>

#include "Command.h"
#include "TransferReport.h"
#include "TransferSizes.h"

namespace kelva {
namespace {

/// Names a member that Camera keeps for its derived classes. A pointer to a member reads it in any camera.
struct Members : Camera {
  static bool HexDumpOf(const Camera& camera) { return camera.*(&Members::hexDump_); }
};

std::span<const char> Moved(const char* buffer, int count, int capacity) {
  if (buffer == nullptr || capacity <= 0) return {};
  return {buffer, BytesArrived(count, static_cast<std::size_t>(capacity))};
}

class TracedCamera final : public Camera {
 public:
  TracedCamera(boost::shared_ptr<Camera> camera, TraceFunctions functions)
      : Camera(TransferSizes::ChunkSize(*camera), TransferSizes::ProgressInterval(*camera)),
        camera_(std::move(camera)),
        functions_(std::move(functions)) {
    hexDump_ = Members::HexDumpOf(*camera_);
  }

  std::string Name() const override { return camera_->Name(); }
  std::string MountPath() const override { return camera_->MountPath(); }
  bool Open() override { return camera_->Open(); }
  void Close() override { camera_->Close(); }
  void ListenForCameraLost(void (*callback)(void*), void* context) override {
    camera_->ListenForCameraLost(callback, context);
  }
  bool WasDisconnected() override { return camera_->WasDisconnected(); }
  bool IsScsiInquiryCorrect() const override { return camera_->IsScsiInquiryCorrect(); }
  bool Cancel(bool first, bool second) override { return camera_->Cancel(first, second); }
  void ClearCancel(bool flag) override { camera_->ClearCancel(flag); }
  bool IsOpen() override { return camera_->IsOpen(); }
  bool CompareSn(const char* serial) const override { return camera_->CompareSn(serial); }

  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override {
    camera_->setHexDump(hexDump_);
    Exchange exchange;
    exchange.block = cdb;
    exchange.direction = direction;
    exchange.asked = size;
    if (direction == kToCamera) exchange.payload = Moved(buffer, size, size);
    Tell(functions_.began, exchange);
    exchange.begin = std::chrono::steady_clock::now();
    bool done = false;
    try {
      done = camera_->Transfer(cdb, direction, size, buffer, flag);
    } catch (const std::exception& error) {
      Fail(exchange, error.what());
      throw;
    } catch (...) {
      Fail(exchange, {});
      throw;
    }
    Time(exchange);
    if (done) {
      exchange.moved = size;
      if (direction == kFromCamera) exchange.payload = Moved(buffer, size, exchange.asked);
    } else {
      exchange.result = Exchange::Result::kFalse;
    }
    Tell(functions_.ended, exchange);
    return done;
  }

 private:
  using Function = std::function<void(const Exchange&)>;

  static void Time(Exchange& exchange) { exchange.took = std::chrono::steady_clock::now() - exchange.begin; }

  void Fail(Exchange& exchange, std::string_view error) const {
    Time(exchange);
    exchange.result = Exchange::Result::kFailed;
    exchange.error = error;
    if (const auto report = ReadTransferReport(error)) exchange.codes = {report->returnCode, report->status};
    Tell(functions_.ended, exchange);
  }

  static void Tell(const Function& function, const Exchange& exchange) {
    if (!function) return;
    try {
      function(exchange);
    } catch (const std::exception&) {
      // Dropped: a command that is observed goes as one that is not.
    }
  }

  const boost::shared_ptr<Camera> camera_;
  const TraceFunctions functions_;
};

}  // namespace

boost::shared_ptr<Camera> Traced(boost::shared_ptr<Camera> camera, TraceFunctions functions) {
  return boost::make_shared<TracedCamera>(std::move(camera), std::move(functions));
}

}  // namespace kelva
