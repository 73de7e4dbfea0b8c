// Crash logs and calibration data: whole collections of small files, one bulk read each.

#include "BulkRead.h"
#include "BundleTables.h"
#include "Camera.h"
#include "VscRegister.h"

std::vector<_Sha1obj> Camera::ReadCrashLogs(void (*progress)(void*, float), void* context, bool deleteAfterRead,
                                            bool transferFlag) {
  kelva::BundleSplitter bundle(kelva::DecodeCrashLogTable);
  if (!kelva::ReadBundle(*this, chunkSize_, {kelva::select::kCrashLogs, std::nullopt, progress, context, transferFlag},
                         bundle)) {
    return {};
  }
  std::vector<_Sha1obj> logs = bundle.TakeFiles();
  if (deleteAfterRead) {
    for (const _Sha1obj& log : logs) DeleteFile(log.name.c_str());
  }
  return logs;
}

std::vector<_Sha1obj> Camera::ReadCalibration(void (*progress)(void*, float), void* context, bool transferFlag) {
  kelva::BundleSplitter bundle(kelva::DecodeCalibrationTable);
  if (!kelva::ReadBundle(*this, chunkSize_,
                         {kelva::select::kCalibration, std::nullopt, progress, context, transferFlag}, bundle)) {
    return {};
  }
  return bundle.TakeFiles();
}
