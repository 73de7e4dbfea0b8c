// Stores bytes under a free name, beside files that exist.
#include "apps/files/StoreFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FileCalls.h"
#include "apps/files/Sha1.h"

namespace apps {
namespace {

bool HoldsTheSame(const TargetFolder& folder, const std::string& name, unsigned long long size,
                  const std::string& sha1) {
  const base::FileDescriptor file(OpenBeneath(folder.Fd(), name, O_RDONLY | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  if (static_cast<unsigned long long>(status.st_size) != size || Sha1OfFile(file.Get()) != sha1) return false;
  // Flushed here, because its writer may not have done so, and the camera's file may be deleted once this one exists.
  return UntilDone([&] { return FileCalls::Current().Flush(file.Get()); }) == 0;
}

}  // namespace

std::string Numbered(const std::string& name, int number) {
  if (number <= 1) return name;
  const std::size_t dot = name.rfind('.');
  const std::size_t stem = dot == std::string::npos || dot == 0 ? name.size() : dot;
  return name.substr(0, stem) + "-" + std::to_string(number) + name.substr(stem);
}

void NameNew(const TargetFolder& folder, NewFile& file, const std::string& name) {
  file.Flush();
  if (!file.TakeName(name)) {
    throw Failure(ExitCode::kFailed, "There is a " + Printable(folder.PathOf(name)) +
                                         " already, and it was kept; --force replaces it, --output chooses "
                                         "another name.");
  }
  folder.Sync();
}

void NameReplacing(const TargetFolder& folder, NewFile& file, const std::string& name) {
  file.Flush();
  file.ReplaceName(name);
  folder.Sync();
}

void StoreNew(const TargetFolder& folder, const std::string& name, std::span<const char> bytes, Readers readers) {
  NewFile file(folder, readers);
  file.Write(bytes);
  NameNew(folder, file, name);
}

BesideFile::BesideFile(const TargetFolder& folder, const std::string& name, int first, int most)
    : folder_(folder), name_(name), number_(first), last_(first + most) {}

BesideFile::BesideFile(const TargetFolder& folder, const std::string& name, std::span<const char> bytes,
                       const std::string& sha1, int first, int before, int most)
    : BesideFile(folder, name, first, most) {
  // Files that are there already are looked at before anything is written.
  isThere_ = IsThere(first, before, bytes.size(), sha1);
  if (isThere_) return;
  file_ = std::make_unique<NewFile>(folder_);
  file_->Write(bytes);
  file_->BeginFlush();
}

BesideFile::BesideFile(const TargetFolder& folder, const std::string& name, std::unique_ptr<NewFile> written,
                       unsigned long long size, const std::string& sha1, int first, int before, int most)
    : BesideFile(folder, name, first, most) {
  isThere_ = IsThere(first, before, size, sha1);
  if (!isThere_) file_ = std::move(written);
}

// Leaves the number at the file that is there, or at the first free one.
bool BesideFile::IsThere(int first, int before, unsigned long long size, const std::string& sha1) {
  for (number_ = std::max(1, first - before); number_ <= last_; ++number_) {
    const std::string name = Numbered(name_, number_);
    const bool has = folder_.Has(name);
    if (has && HoldsTheSame(folder_, name, size, sha1)) return true;
    if (!has && number_ >= first) break;
  }
  return false;
}

void BesideFile::SetTime(std::time_t changed) {
  if (file_) file_->SetTime(changed);
}

void BesideFile::Flush() {
  if (file_) file_->Flush();
}

Stored BesideFile::TakeName() {
  if (isThere_) return {Numbered(name_, number_), true};
  for (; number_ <= last_; ++number_) {
    const std::string candidate = Numbered(name_, number_);
    if (file_->TakeName(candidate)) return {candidate, false};
  }
  throw Failure(ExitCode::kFailed, "There are too many files named like " + Printable(folder_.PathOf(name_)) +
                                       "; move some of them elsewhere.");
}

Stored StoreBeside(const TargetFolder& folder, const std::string& name, std::span<const char> bytes,
                   const std::string& sha1) {
  BesideFile file(folder, name, bytes, sha1);
  file.Flush();
  return file.TakeName();
}

}  // namespace apps
