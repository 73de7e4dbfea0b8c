// Offers the camera on loopback, one attached host at a time.
#include "vcam/usbip/Server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "base/SendAll.h"

namespace vcam::usbip {
namespace {

constexpr int kBacklog = 8;

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno) + ".");
}

sockaddr* Generic(sockaddr_in& address) {
  return reinterpret_cast<sockaddr*>(&address);
}

base::FileDescriptor Listen(std::uint16_t port) {
  base::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int yes = 1;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (!socket) Fail("Cannot make a socket");
  ::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
  if (::bind(socket.Get(), Generic(address), sizeof(address)) != 0 || ::listen(socket.Get(), kBacklog) != 0) {
    Fail("Cannot listen on port " + std::to_string(port) + " of loopback; choose another one with --port");
  }
  return socket;
}

std::uint16_t PortOf(const base::FileDescriptor& socket) {
  sockaddr_in address{};
  socklen_t size = sizeof(address);
  if (::getsockname(socket.Get(), Generic(address), &size) != 0) Fail("Cannot tell the port of a socket");
  return ntohs(address.sin_port);
}

/// Fills `bytes`. False when the peer has gone, or has not sent them all at the deadline.
bool ReceiveBefore(Clock::time_point deadline, int socket, std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd wait{socket, POLLIN, 0};
    if (left <= 0) return false;
    if (::poll(&wait, 1, static_cast<int>(left)) <= 0) continue;
    const ssize_t count = ::recv(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

Server::Server(Offer offer, CameraModel model, std::uint16_t port)
    : offer_(std::move(offer)),
      model_(std::move(model)),
      listener_(Listen(port)),
      port_(PortOf(listener_)),
      gone_(::eventfd(0, EFD_CLOEXEC)) {
  if (!gone_) Fail("Cannot make an event descriptor");
}

Server::~Server() {
  EndHost();
}

void Server::Run(int stop) {
  std::array<pollfd, 3> waits{pollfd{stop, POLLIN, 0}, {listener_.Get(), POLLIN, 0}, {gone_.Get(), POLLIN, 0}};
  while (true) {
    waits[1].fd = pause_.Awaited(listener_.Get());
    if (::poll(waits.data(), waits.size(), pause_.TimeoutMs()) < 0) {
      if (errno == EINTR) continue;
      Fail("Cannot wait for hosts");
    }
    if (waits[0].revents != 0 || waits[2].revents != 0) break;
    if (waits[1].revents != 0) Accept();
  }
  EndHost();
}

void Server::Accept() {
  base::FileDescriptor socket(::accept4(listener_.Get(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!socket) return pause_.NoteFailure(errno);
  if (!Admits(socket.Get())) return;
  try {
    Greet(std::move(socket));
  } catch (const ProtocolError& error) {
    onComplaint(error.what());
  } catch (const std::exception& error) {
    onComplaint(std::string("Cannot serve a host: ") + error.what() + ".");
  }
}

bool Server::Admits(int socket) {
  const std::optional<uid_t> user = userOf(socket);
  if (user && (*user == 0 || *user == ::geteuid())) return true;
  // Said once: whoever tries again and again must not fill the terminal.
  if (!std::exchange(hasRefused_, true)) {
    onComplaint("Refused a connection of " + (user ? "user " + std::to_string(*user) : std::string("an unknown user")) +
                "; only user " + std::to_string(::geteuid()) +
                " and root may use this camera. Further refusals are not reported.");
  }
  return false;
}

void Server::Greet(base::FileDescriptor socket) {
  const int yes = 1;
  ::setsockopt(socket.Get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof(yes));
  const auto deadline = Clock::now() + greetingTime;
  std::array<std::uint8_t, kRequestSize> head;
  if (!ReceiveBefore(deadline, socket.Get(), head)) return;
  switch (DecodeRequest(head)) {
    case Request::kListDevices:
      base::SendAll(socket.Get(), EncodeDeviceList(offer_));
      return;
    case Request::kImportDevice:
      Import(std::move(socket), deadline);
      return;
  }
}

void Server::Import(base::FileDescriptor socket, Clock::time_point deadline) {
  std::array<std::uint8_t, kBusIdSize> field;
  if (!ReceiveBefore(deadline, socket.Get(), field)) return;
  const bool exists = DecodeBusId(field) == offer_.busId;
  const Outcome outcome = !exists ? Outcome::kNoDevice : HostAttached() ? Outcome::kBusy : Outcome::kOk;
  if (base::SendAll(socket.Get(), EncodeImport(outcome, offer_)) && outcome == Outcome::kOk) Attach(std::move(socket));
}

void Server::Attach(base::FileDescriptor socket) {
  EndHost();
  {
    const std::lock_guard lock(mutex_);
    session_ = nullptr;
  }
  auto camera = std::make_unique<UsbCamera>(model_);
  auto session = std::make_unique<Session>(std::move(socket), offer_.DeviceId(), *camera);
  Session* const begun = session.get();
  // Held until both are set: the thread may end at once.
  const std::lock_guard lock(mutex_);
  host_ = std::thread([this, camera = std::move(camera), session = std::move(session)] {
    try {
      session->Run();
    } catch (const ProtocolError& error) {
      onComplaint(error.what());
    }
    session->Pull();
    // Under the lock, because EndHost may be about to pull the cable of this session.
    const std::lock_guard ending(mutex_);
    session_ = nullptr;
    if (camera->Unplugged(Clock::now())) ::eventfd_write(gone_.Get(), 1);
  });
  session_ = begun;
}

bool Server::HostAttached() {
  const std::lock_guard lock(mutex_);
  return session_ != nullptr;
}

void Server::EndHost() {
  {
    const std::lock_guard lock(mutex_);
    if (session_ != nullptr) session_->Pull();
  }
  if (host_.joinable()) host_.join();
}

}  // namespace vcam::usbip
