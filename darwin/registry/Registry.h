#ifndef KELVA_DARWIN_REGISTRY_REGISTRY_H_
#define KELVA_DARWIN_REGISTRY_REGISTRY_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

// The far side of the substitute: what a back end (udev, a virtual bus, a test) fills and what IOKitLib.h reads.

namespace darwin {

/// The driver's end of one connection, made by IOServiceOpen. Destroyed after IOServiceClose or the end of the service,
/// once no call is in progress. Called on the thread that makes the call. Return codes are kern_return_t values.
class UserClient {
 public:
  virtual ~UserClient() = default;
  /// IOConnectCallScalarMethod without scalars in or out.
  virtual int CallScalar(std::uint32_t selector) = 0;
  /// IOConnectCallStructMethod; outSize: on entry the capacity, on return the bytes produced.
  virtual int CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out,
                         std::size_t* outSize) = 0;
};

using PropertyValue = std::variant<std::string, std::uint64_t, bool>;

/// Makes the user client of one connection, or returns null and sets the error. Called outside of the registry's lock, on
/// the thread that opens.
using UserClientFactory = std::function<std::unique_ptr<UserClient>(int& error)>;

/// A registry entry as a back end describes it.
struct EntryDescription {
  /// The class, most derived first, then its superclasses; a class match accepts any of them.
  std::vector<std::string> classNames;
  /// The entry's own properties; texts are UTF-8.
  std::map<std::string, PropertyValue> properties;
  /// When empty, IOServiceOpen answers kIOReturnUnsupported.
  UserClientFactory openUserClient;
};

using EntryId = std::uint64_t;

class Registry;

/// What fills the registry. Chosen by the program before its first look at the registry, or by the build
/// (DefaultSource.h); there is no silent fallback.
/// Never called by two threads at once.
class RegistrySource {
 public:
  virtual ~RegistrySource() = default;
  /// Called once, at the first look at the registry; publishes what is present now. An exception makes that look fail
  /// with kIOReturnError, and the next look calls it again.
  virtual void Start(Registry& registry) = 0;
  /// A descriptor that is readable when Dispatch has something to do; -1 for none. Asked again before each wait, and not
  /// at all while nobody has a notification port to wait with.
  virtual int Descriptor() const = 0;
  /// Milliseconds until Dispatch wants to be called although nothing is readable; -1 for never.
  virtual int TimeoutMs() const { return -1; }
  /// Publishes and terminates what has changed. Never blocks. Called from the run loop, and before each enumeration.
  /// An exception makes that look fail, and run loops wait for the source again only after a call that succeeds.
  virtual void Dispatch(Registry& registry) = 0;
  /// Why changes go unnoticed although no call fails, in one sentence; empty when they are noticed.
  virtual std::string WhyDeaf() const { return {}; }
};

/// The process's I/O registry. Every operation may be called from any thread.
class Registry {
 public:
  static Registry& Shared();

  /// Replaces the source, also the default one; only before the first look at the registry. Null names none.
  void SetSource(std::unique_ptr<RegistrySource> source);

  /// Why the source's latest call failed, in one sentence; empty when that call succeeded. An IOKit call that fails for
  /// this reason returns kIOReturnError.
  std::string LastSourceError() const;
  /// What the source says of itself (RegistrySource::WhyDeaf) once it has started; empty without a source.
  std::string WhyDeaf() const;

  EntryId Root() const;
  /// Adds an entry below `parent`. It is seen by parent walks and property reads, not by matching, until it is
  /// registered. Returns 0 when the parent has gone.
  EntryId Add(EntryId parent, EntryDescription description);
  /// Makes an entry a service that matching finds, and reports it, once, to armed notifications.
  void RegisterService(EntryId entry);
  /// Sends a message of this type to everyone interested in the entry.
  void SendMessage(EntryId entry, std::uint32_t messageType);
  /// Ends an entry and everything below it: matching no longer finds it, its connections die, and those interested in
  /// it are told.
  void Terminate(EntryId entry);

  // The near side: what IOKitLib.h is written over.
  struct State;
  State& GetState() { return *state_; }
  /// Has the source publish what is present, at the first call; later calls let it publish what has changed.
  /// False when the source failed.
  bool LookAgain();
  /// What a run loop waits for on behalf of the source.
  int SourceDescriptor() const;
  int SourceTimeoutMs() const;

 private:
  Registry();
  ~Registry();

  std::unique_ptr<State> state_;
};

}  // namespace darwin

#endif  // KELVA_DARWIN_REGISTRY_REGISTRY_H_
