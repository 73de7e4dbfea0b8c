// Lays out answers that carry several files: a table of sizes and names, then the files themselves.
#include "vcam/device/Bundles.h"

#include <algorithm>

namespace vcam {
namespace {

constexpr std::size_t kEntryLength = 36;
constexpr std::size_t kNameLength = 32;
constexpr std::size_t kCountLength = 4;

void AppendSize(base::Bytes& table, Marks& marks, std::uint64_t size) {
  marks.counts.push_back(table.size());
  base::Append(table, static_cast<std::uint32_t>(size));
}

void AppendEntry(base::Bytes& table, Marks& marks, const BundleFile& file) {
  AppendSize(table, marks, file.size);
  marks.names.push_back({table.size(), kNameLength});
  const std::size_t end = table.size() + kNameLength;
  base::AppendText(table, std::string_view(file.name).substr(0, kNameLength - 1));
  table.resize(end);
}

DataSet Assemble(DataSet bundle, base::Bytes table, const std::vector<BundleFile>& files) {
  bundle.AddBytes(std::move(table));
  for (const BundleFile& file : files) bundle.AddFile(file.path, file.size);
  return bundle;
}

}  // namespace

DataSet BuildCrashLogBundle(const std::vector<BundleFile>& files) {
  DataSet bundle;
  base::Bytes table;
  AppendSize(table, bundle.marks, files.size());
  for (const BundleFile& file : files) AppendEntry(table, bundle.marks, file);
  if (!files.empty()) {
    table.resize(table.size() - kCountLength);
    bundle.marks.names.back().length -= kCountLength;
  }
  return Assemble(std::move(bundle), std::move(table), files);
}

DataSet BuildCalibrationBundle(const std::vector<BundleFile>& files) {
  DataSet bundle;
  base::Bytes table;
  for (const BundleFile& file : files) AppendEntry(table, bundle.marks, file);
  table.resize(kCalibrationEntries * kEntryLength);
  return Assemble(std::move(bundle), std::move(table), files);
}

DataSet BuildBatchBundle(const std::vector<BundleFile>& files) {
  DataSet bundle;
  base::Bytes table;
  for (const BundleFile& file : files) AppendSize(table, bundle.marks, file.size);
  return Assemble(std::move(bundle), std::move(table), files);
}

DataSet BuildCompressedRawBundle(const BundleFile& file) {
  DataSet bundle;
  base::Bytes table;
  AppendSize(table, bundle.marks, file.size - file.size / 2);
  AppendSize(table, bundle.marks, file.size / 2);
  return Assemble(std::move(bundle), std::move(table), {file});
}

}  // namespace vcam
