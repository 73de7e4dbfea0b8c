#ifndef KELVA_BENCHMARKS_MEMORY_CAMERA_H_
#define KELVA_BENCHMARKS_MEMORY_CAMERA_H_

#include <map>
#include <string>

#include "src/wifi/Camera.h"

namespace bench {

/// A camera whose storage is this process's memory, so that a measurement holds the library's own cost and one copy for
/// each chunk, which a real transport has as well. It answers the commands that read, and nothing else.
class MemoryCamera : public Camera {
 public:
  MemoryCamera();

  /// What is read after a path was opened: a file or a directory listing.
  void PutFile(const std::string& path, std::string bytes);
  void PutListing(const std::string& path, std::string bytes);
  /// What is read after the data set of this sub-code was opened: catalogue or bundle.
  void PutDataSet(unsigned char subCode, std::string bytes);

  std::string Name() const override { return "memory"; }
  std::string MountPath() const override { return {}; }
  bool Open() override { return true; }
  void Close() override {}
  void ListenForCameraLost(void (*)(void*), void*) override {}
  bool WasDisconnected() override { return false; }
  bool IsScsiInquiryCorrect() const override { return true; }
  bool Cancel(bool, bool) override { return true; }
  void ClearCancel(bool) override {}
  bool IsOpen() override { return true; }
  bool Transfer(const _VscCdb& cdb, int direction, int& size, char* buffer, bool flag) override;
  bool CompareSn(const char*) const override { return false; }

 private:
  bool Select(unsigned char subCode, const char* path);
  void AnswerSize(int& size, char* buffer) const;
  void AnswerChunk(const _VscCdb& cdb, int& size, char* buffer) const;

  std::map<std::string, std::string> files_;
  std::map<std::string, std::string> listings_;
  std::map<unsigned char, std::string> dataSets_;
  const std::string* selected_ = nullptr;
};

}  // namespace bench

#endif  // KELVA_BENCHMARKS_MEMORY_CAMERA_H_
