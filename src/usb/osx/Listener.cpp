// Reports cameras to function objects: each listener has a notification port and registrations of its own.

#include "Listener.h"

#include <boost/weak_ptr.hpp>
#include <list>
#include <optional>
#include <utility>
#include <vector>

#include "IoKitOwners.h"
#include "RegistryText.h"
#include "Services.h"
#include "base/FirstException.h"
#include "wire/RegistryNames.h"

namespace kelva {

/// The handlers of the system's notifications hold a second pointer to this object while they run. So a listener may go
/// inside its own function: handles, port and function objects live until the handler has ended.
class Listener::Registrations : public std::enable_shared_from_this<Registrations> {
 public:
  explicit Registrations(Functions functions) : functions_(std::move(functions)) {}

  void Start() {
    if (functions_.attached || functions_.lost) {
      for (const char* driver : {wire::kDriverClass, wire::kMassStorageDriverClass}) Register(driver, OnAttach);
    }
    if (functions_.badCamera) Register(wire::kCompactDiscClass, OnCompactDisc);
    // The first drain reports what is there, and arms the notification.
    base::FirstException exceptions;
    for (const auto& [handler, iterator] : registrations_) {
      exceptions.Try([&, handle = iterator.Get(), report = handler] { report(this, handle); });
    }
    exceptions.Rethrow();
  }

  void Stop() { stopped_ = true; }

 private:
  struct Registration {
    IOServiceMatchingCallback handler;
    IoObject iterator;
  };

  struct Watched {
    boost::weak_ptr<Camera> camera;
    std::string serial;
    IoObject notification;
  };
  /// What the system's messages about one camera name. It lives as long as the port that delivers them: a second message may
  /// wait there when the first is handled. So a listener keeps some bytes for each camera that has come.
  struct Watch {
    Registrations* owner;
    std::optional<Watched> camera;  // until its loss is reported
  };

  void Register(const char* className, IOServiceMatchingCallback handler) {
    registrations_.push_back({handler, RegisterFirstMatch(port_.Get(), className, handler, this)});
  }

  static void OnAttach(void* context, io_iterator_t iterator) {
    const auto self = static_cast<Registrations*>(context)->shared_from_this();
    Drain(iterator, [&self](IoObject service) {
      if (!self->stopped_) self->ReportAttached(MakeCamera(std::move(service)));
    });
  }

  static void OnCompactDisc(void* context, io_iterator_t iterator) {
    const auto self = static_cast<Registrations*>(context)->shared_from_this();
    Drain(iterator, [&self](const IoObject& service) {
      if (!self->stopped_ && IsBadCamera(service.Get())) self->functions_.badCamera();
    });
  }

  static void OnMessage(void* context, io_service_t, uint32_t messageType, void*) {
    if (messageType != kServiceIsTerminated) return;
    auto* watch = static_cast<Watch*>(context);
    const auto self = watch->owner->shared_from_this();
    if (self->stopped_ || !watch->camera) return;
    // Released when its report has been made.
    const Watched gone = *std::exchange(watch->camera, std::nullopt);
    self->ReportLost(gone.camera.lock(), gone.serial);
  }

  void ReportAttached(const boost::shared_ptr<Camera>& camera) {
    const io_service_t service = ServiceOf(*camera);
    const std::string serial = TextPropertyAbove(service, wire::kSerialName);
    const bool isThere = !functions_.lost || StartWatch(camera, service, serial);
    base::FirstException exceptions;
    exceptions.Try([&] {
      if (functions_.attached) functions_.attached(camera, serial);
    });
    exceptions.Try([&] {
      if (!isThere && !stopped_) ReportLost(camera, serial);
    });
    exceptions.Rethrow();
  }

  void ReportLost(const boost::shared_ptr<Camera>& camera, const std::string& serial) const {
    functions_.lost(camera, serial);
  }

  /// False when the service has gone already: the system then takes no interest in it.
  bool StartWatch(const boost::shared_ptr<Camera>& camera, io_service_t service, const std::string& serial) {
    watches_.push_back({this, Watched{camera, serial, {}}});
    io_object_t notification = 0;
    if (IOServiceAddInterestNotification(port_.Get(), service, wire::kGeneralInterestType, OnMessage, &watches_.back(),
                                         &notification) != kIOReturnSuccess) {
      watches_.pop_back();
      return false;
    }
    watches_.back().camera->notification.Reset(notification);
    return true;
  }

  // In this order: handles are given back before the port that they send to goes, and the functions last.
  const Functions functions_;
  const NotificationPort port_;
  std::vector<Registration> registrations_;
  std::list<Watch> watches_;  // the notifications hold the addresses of its elements
  bool stopped_ = false;
};

Listener::Listener(Functions functions) : registrations_(std::make_shared<Registrations>(std::move(functions))) {
  registrations_->Start();
}

Listener::~Listener() {
  registrations_->Stop();
}

}  // namespace kelva
