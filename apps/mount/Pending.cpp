// Requests of the kernel that wait for the camera.
#include "apps/mount/Pending.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace apps {

Pending::Ticket Pending::Add(fuse_req_t request) {
  // First, because whoever answers the request frees it, as soon as it waits. An interrupt comes on the thread of Add.
  fuse_req_interrupt_func(request, OnInterrupt, this);
  Ticket ticket = 0;
  int ended = 0;
  {
    const std::scoped_lock lock(mutex_);
    ticket = next_++;
    ended = ended_;
    if (ended == 0) waiting_[ticket] = request;
  }
  if (ended != 0) fuse_reply_err(request, ended);
  return ticket;
}

std::optional<fuse_req_t> Pending::Take(Ticket ticket) {
  const std::scoped_lock lock(mutex_);
  const auto found = waiting_.find(ticket);
  if (found == waiting_.end()) return std::nullopt;
  fuse_req_t request = found->second;
  waiting_.erase(found);
  return request;
}

void Pending::Fail(Ticket ticket, int error) {
  if (const auto request = Take(ticket)) fuse_reply_err(*request, error);
}

void Pending::FailAll(int error) {
  std::map<Ticket, fuse_req_t> all;
  {
    const std::scoped_lock lock(mutex_);
    ended_ = error;
    all.swap(waiting_);
  }
  for (const auto& [ticket, request] : all) fuse_reply_err(request, error);
}

// By its address, which is another request's only after this one was taken.
void Pending::OnInterrupt(fuse_req_t request, void* self) {
  auto& pending = *static_cast<Pending*>(self);
  {
    const std::scoped_lock lock(pending.mutex_);
    const auto same = [request](const auto& one) { return one.second == request; };
    const auto found = std::find_if(pending.waiting_.begin(), pending.waiting_.end(), same);
    if (found == pending.waiting_.end()) return;
    pending.waiting_.erase(found);
  }
  fuse_reply_err(request, EINTR);
}

}  // namespace apps
