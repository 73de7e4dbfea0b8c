// Carries a file's bytes from the thread that reads to the one that writes.
#include "apps/import/FileStream.h"

#include <utility>

namespace apps {

std::span<char> FileStream::Room() {
  std::unique_lock lock(mutex_);
  forReader_.wait(lock, [this] { return gaveUp_ || room_ || !free_.empty() || made_ < kMostPieces; });
  if (gaveUp_) return {};
  if (!room_ && free_.empty()) {
    ++made_;
    room_.reset(new char[kPiece + 2]);
  } else if (!room_) {
    room_ = std::move(free_.back());
    free_.pop_back();
  }
  return {room_.get(), kPiece + 2};
}

void FileStream::Put(What what, std::size_t count) {
  const std::scoped_lock lock(mutex_);
  queue_.push_back({std::move(room_), count, what, false});
  forWriter_.notify_one();
}

void FileStream::End(What what, bool verified) {
  const std::scoped_lock lock(mutex_);
  queue_.push_back({nullptr, 0, what, verified});
  forWriter_.notify_one();
}

std::optional<FileStream::Here> FileStream::WhatIsHere() {
  std::unique_lock lock(mutex_);
  forReader_.wait(lock, [this] { return gaveUp_ || here_; });
  return gaveUp_ ? std::nullopt : here_;
}

std::optional<std::string> FileStream::Sha1() {
  std::unique_lock lock(mutex_);
  forReader_.wait(lock, [this] { return gaveUp_ || sha1_; });
  return gaveUp_ ? std::nullopt : sha1_;
}

std::optional<bool> FileStream::IsEqual() {
  std::unique_lock lock(mutex_);
  forReader_.wait(lock, [this] { return gaveUp_ || equal_; });
  return gaveUp_ ? std::nullopt : std::exchange(equal_, std::nullopt);
}

FileStream::Piece FileStream::Next() {
  std::unique_lock lock(mutex_);
  if (taken_.bytes) {
    free_.push_back(std::move(taken_.bytes));
    forReader_.notify_one();
  }
  forWriter_.wait(lock, [this] { return !queue_.empty(); });
  taken_ = std::move(queue_.front());
  queue_.pop_front();
  return {taken_.what, {taken_.bytes.get(), taken_.count}, taken_.verified};
}

bool FileStream::Await(std::chrono::milliseconds patience) {
  std::unique_lock lock(mutex_);
  return forWriter_.wait_for(lock, patience, [this] { return !queue_.empty(); });
}

void FileStream::PutHere(Here here) {
  const std::scoped_lock lock(mutex_);
  here_ = here;
  forReader_.notify_one();
}

void FileStream::PutSha1(std::string sha1) {
  const std::scoped_lock lock(mutex_);
  sha1_ = std::move(sha1);
  forReader_.notify_one();
}

void FileStream::PutEqual(bool equal) {
  const std::scoped_lock lock(mutex_);
  equal_ = equal;
  forReader_.notify_one();
}

void FileStream::Free() {
  const std::scoped_lock lock(mutex_);
  free_.clear();
  taken_ = {};
}

void FileStream::GiveUp() {
  const std::scoped_lock lock(mutex_);
  gaveUp_ = true;
  forReader_.notify_one();
}

}  // namespace apps
