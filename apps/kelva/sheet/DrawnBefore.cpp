// Keeps thumbnails from one contact sheet to the next.
#include "apps/kelva/sheet/DrawnBefore.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <vector>

#include "apps/commandline/Failure.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"
#include "base/Ascii.h"
#include "base/Bytes.h"

namespace apps {
namespace {

// A record: a head, then the content. The head has the key, the SHA-1 of the content, and the content's size in 4 bytes.
// The content has width and height in 2 bytes each, a time or as many zeros, and a JPEG file.
constexpr std::string_view kStart = "KTHC0001";
constexpr std::size_t kKeyDigits = 40;
constexpr std::size_t kRecordHead = 2 * kKeyDigits + 4;
constexpr std::size_t kTime = 19;
constexpr std::size_t kBeforeJpeg = 4 + kTime;
constexpr std::size_t kMostContent = std::size_t{1} << 20;

// Nothing when they are not all there.
std::optional<base::Bytes> ReadAt(int file, unsigned long long offset, std::size_t size) {
  base::Bytes bytes(size);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count =
        UntilDone([&] { return ::pread(file, bytes.data() + done, size - done, static_cast<off_t>(offset + done)); });
    if (count <= 0) return std::nullopt;
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

std::string Text(const base::Bytes& bytes, std::size_t at, std::size_t size) {
  const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
  return {begin, begin + static_cast<std::ptrdiff_t>(size)};
}

std::span<const char> Chars(const base::Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::optional<Thumbnail> Decode(const base::Bytes& content) {
  if (content.size() <= kBeforeJpeg) return std::nullopt;
  Thumbnail thumbnail{base::Load<std::uint16_t>(content, 0), base::Load<std::uint16_t>(content, 2),
                      Text(content, kBeforeJpeg, content.size() - kBeforeJpeg), std::nullopt, ""};
  const auto fits = [](int side) { return side >= 1 && side <= kThumbnailSide; };
  if (!fits(thumbnail.width) || !fits(thumbnail.height) || !thumbnail.jpeg.starts_with("\xFF\xD8")) return std::nullopt;
  std::string time = Text(content, 4, kTime);
  if (base::HasShape(time, "0000-00-00 00:00:00")) thumbnail.time = std::move(time);
  return thumbnail;
}

base::Bytes Encode(const Thumbnail& thumbnail) {
  base::Bytes content;
  base::Append(content, static_cast<std::uint16_t>(thumbnail.width), static_cast<std::uint16_t>(thumbnail.height));
  std::string time = thumbnail.time.value_or("");
  time.resize(kTime);
  base::AppendText(content, time);
  base::AppendText(content, thumbnail.jpeg);
  return content;
}

}  // namespace

std::string DrawnBefore::Folder() {
  // A path that is not absolute counts as none.
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && cache[0] == '/') return std::string(cache) + "/kelva";
  const char* home = std::getenv("HOME");
  return home != nullptr && home[0] == '/' ? std::string(home) + "/.cache/kelva" : "";
}

DrawnBefore::DrawnBefore(const std::string& folder, const std::string& serial)
    : name_("sheet-" + Sha1(serial).substr(0, 16)) {
  if (folder.empty()) return;
  try {
    folder_ = TargetFolder::OpenOrMake(folder);
    RemoveLeftovers(*folder_);
    file_ = base::FileDescriptor(OpenBeneath(folder_->Fd(), name_, O_RDONLY | O_NONBLOCK));
    if (file_) Index();
    next_ = std::make_unique<NewFile>(*folder_, Readers::kOwner);
    next_->Write(kStart);
  } catch (const Failure&) {
    next_.reset();
  }
}

void DrawnBefore::Index() {
  const auto start = ReadAt(file_.Get(), 0, kStart.size());
  if (!start || Text(*start, 0, kStart.size()) != kStart) return;
  unsigned long long at = kStart.size();
  while (const auto head = ReadAt(file_.Get(), at, kRecordHead)) {
    const auto size = base::Load<std::uint32_t>(*head, 2 * kKeyDigits);
    if (size > kMostContent) return;
    places_[Text(*head, 0, kKeyDigits)] = {at, size};
    at += kRecordHead + size;
  }
}

std::optional<Thumbnail> DrawnBefore::Find(const std::string& key) const {
  const auto place = places_.find(key);
  if (place == places_.end()) return std::nullopt;
  const auto head = ReadAt(file_.Get(), place->second.offset, kRecordHead);
  const auto content = ReadAt(file_.Get(), place->second.offset + kRecordHead, place->second.size);
  if (!head || !content || Text(*head, kKeyDigits, kKeyDigits) != Sha1(Chars(*content))) return std::nullopt;
  return Decode(*content);
}

void DrawnBefore::Keep(const std::string& key, const Thumbnail& thumbnail) noexcept {
  if (!next_) return;
  try {
    const base::Bytes content = Encode(thumbnail);
    if (key.size() != kKeyDigits || content.size() > kMostContent) return;
    base::Bytes head;
    base::AppendText(head, key + Sha1(Chars(content)));
    base::Append(head, static_cast<std::uint32_t>(content.size()));
    next_->Write(Chars(head));
    next_->Write(Chars(content));
  } catch (const std::exception&) {
    next_.reset();
  }
}

void DrawnBefore::Finish() noexcept {
  if (!next_) return;
  try {
    NameReplacing(*folder_, *next_, name_);
  } catch (const std::exception&) {
    // The next sheet draws more.
  }
  next_.reset();
}

}  // namespace apps
