// The verbs batch get, batch rm and raw, which name files by SHA-1.
#include <algorithm>
#include <string>
#include <vector>

#include "apps/camera/Advice.h"
#include "apps/camera/FilesByKey.h"
#include "apps/camera/ReadLimit.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"
#include "apps/commandline/Words.h"
#include "apps/files/SafeName.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/verbs/Consent.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/Ascii.h"

namespace apps {
namespace {

// "KEY" or "KEY.RAW": a key and what is sent right after it.
struct Request {
  std::string key;
  std::string qualifier;
};

Request Understand(const std::string& word) {
  const std::size_t dot = std::min(word.find('.'), word.size());
  Request request{word.substr(0, dot), word.substr(dot)};
  if (!IsKey(request.key)) {
    throw Failure(ExitCode::kUsage, "\"" + Printable(word) +
                                        "\" is not a key; a key is the SHA-1 of a file, 40 hexadecimal digits, as "
                                        "`kelva pictures --json` shows them.");
  }
  return request;
}

Failure NotThere(const std::string& key) {
  return Failure(ExitCode::kFailed, "The camera has no file with the key " + Printable(key) +
                                        "; `kelva pictures --json` shows the keys of the pictures it has.");
}

_Sha1obj Fetch(Context& context, Camera& camera, const Request& request) {
  Progress progress(context.reporter, context.stop, request.key, 0);
  ReadLimit limit = ReadLimit::OfBundle("a file by its key", kMostUnlisted, Progress::Callback, progress);
  std::vector<_Sha1obj> files =
      camera.ReadFilesBySha1({request.key}, {request.qualifier}, ReadLimit::Check, &limit, true);
  if (files.size() != 1) {
    throw NotThere(request.key + request.qualifier);
  }
  return std::move(files.front());
}

Json BatchGetOne(Context& context, Camera& camera, const TargetFolder& folder, const std::string& word) {
  const Request request = Understand(word);
  context.Doing("fetch " + Printable(word));
  context.stop.Check();
  const _Sha1obj file = Fetch(context, camera, request);
  const std::string sha1 = Sha1(file.data);
  if (request.qualifier.empty() && sha1 != base::Lower(request.key)) {
    throw Failure(ExitCode::kFailed, "What the camera sent for the key " + request.key +
                                         " has another SHA-1 and was not stored; repeat the command.");
  }
  const Stored stored = StoreBeside(folder, SafeName(word), file.data, sha1);
  folder.Sync();
  Json members = Json::Object().Set("key", request.key).Set("qualifier", request.qualifier);
  members.SetBytes("file", folder.PathOf(stored.name));
  return members.Set("size", file.data.size()).Set("sha1", sha1);
}

TargetFolder Into(const Context& context) {
  return TargetFolder::OpenOrMakeMissing(context.call.Value("into").value_or("."));
}

ExitCode RunBatchGet(Context& context) {
  for (const std::string& word : context.call.words) Understand(word);
  const Session camera(context, "fetch files by key");
  const TargetFolder folder = Into(context);
  Each each(context, "files", CameraResult(camera));
  for (const std::string& word : context.call.words) {
    LetOthers(context);
    each.Try(word, [&] { return BatchGetOne(context, *camera, folder, word); });
  }
  return each.Finish(CameraResult(camera));
}

void DeleteByKey(Context& context, Camera& camera, const std::vector<std::string>& keys) {
  if (keys.empty()) return;
  FewOf shown;
  for (const std::string& key : keys) shown.Add(key);
  AskOnTerminal(context,
                {Counted(keys.size(), "file") + " to delete on the camera:", "Delete?", "nothing was deleted", shown});
  context.Doing("delete files by key");
  if (!camera.DeleteBatch(keys, true)) {
    throw Failure(ExitCode::kRefused, "The camera refused to delete the files.");
  }
}

ExitCode RunBatchRm(Context& context) {
  for (const std::string& word : context.call.words) {
    if (!Understand(word).qualifier.empty()) {
      throw Failure(ExitCode::kUsage, "`kelva batch rm` takes keys without an extension.");
    }
  }
  const Session camera(context, "ask for files by key");
  const std::vector<bool> there = HasFiles(*camera, context.call.words);
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < there.size(); ++i) {
    if (there[i]) keys.push_back(context.call.words[i]);
  }
  const bool dry = context.call.Has("dry-run");
  if (!dry) DeleteByKey(context, *camera, keys);
  Each each(context, "files", CameraResult(camera));
  for (std::size_t i = 0; i < there.size(); ++i) {
    const std::string& key = context.call.words[i];
    each.Try(key, [&] {
      if (!there[i]) throw NotThere(key);
      if (dry && !context.Json()) context.out.Add(key + "\n");
      return Json::Object().Set("key", key);
    });
  }
  Json result = CameraResult(camera).Set("keys", keys.size());
  return dry ? each.FinishDry(std::move(result), "file") : each.Finish(std::move(result));
}

// Nothing when the camera has none: it refuses then, or sends an empty answer.
std::vector<_Sha1obj> FetchRaw(Context& context, Camera& camera, const std::string& key) {
  Progress progress(context.reporter, context.stop, key, 0);
  ReadLimit limit = ReadLimit::OfBundle("compressed raw data", kMostUnlisted, Progress::Callback, progress);
  try {
    return camera.ReadCompressedRaw(key, ReadLimit::Check, &limit, true);
  } catch (const CameraTransferError& error) {
    if (!RefusesWhatWasAsked(error.what())) throw;
    return {};
  }
}

ExitCode RunRaw(Context& context) {
  const std::string key = Understand(context.call.words[0]).key;
  const Session camera(context, "fetch the compressed raw data of " + key);
  const TargetFolder folder = Into(context);
  const std::vector<_Sha1obj> parts = FetchRaw(context, *camera, key);
  if (parts.empty()) throw Failure(ExitCode::kFailed, "The camera has no compressed raw data for the key " + key + ".");
  Json list = Json::Array();
  for (std::size_t i = 0; i < parts.size(); ++i) {
    // With one part alone the camera does not say which of the two it is.
    const std::string name = key + (parts.size() == 1 ? ".raw" : ".raw" + std::to_string(i + 1));
    const Stored stored = StoreBeside(folder, name, parts[i].data, Sha1(parts[i].data));
    list.Push(Json::Object().SetBytes("file", folder.PathOf(stored.name)).Set("size", parts[i].data.size()));
  }
  folder.Sync();
  return context.Result(CameraResult(camera).Set("key", key).Set("parts", std::move(list)), "");
}

constexpr Argument kKeys[] = {{"KEY", "A file's SHA-1, 40 hexadecimal digits; KEY.RAW is the raw file of its picture.",
                               Argument::Count::kOneOrMore}};
constexpr Argument kPlainKeys[] = {{"KEY", "A file's SHA-1, 40 hexadecimal digits.", Argument::Count::kOneOrMore}};
constexpr Argument kKey[] = {{"KEY", "The picture's SHA-1, 40 hexadecimal digits."}};
constexpr Option kInto[] = {{"into", 'd', "FOLDER",
                             "Write into this folder, which is made if need be, instead of the current one.",
                             Offer::kFolder}};
constexpr Option kRmOptions[] = {kDryRunOption, kYesOption};
constexpr Example kGetExamples[] = {
    {"kelva batch get a9993e364706816aba3e25717850c26c9cd0d89d", "Fetch a file whatever its name is."}};
constexpr Example kRmExamples[] = {
    {"kelva batch rm a9993e364706816aba3e25717850c26c9cd0d89d", "Delete a file whatever its name is."},
    {"kelva batch rm -n a9993e364706816aba3e25717850c26c9cd0d89d", "See whether the camera has it."}};
constexpr Example kRawExamples[] = {{"kelva raw a9993e364706816aba3e25717850c26c9cd0d89d --into raw",
                                     "Fetch a picture's raw data into the folder raw."}};

constexpr Verb kVerbs[] = {
    {"batch get", "Fetch files by their SHA-1", kKeys, kInto,
     R"(What arrives is checked against its key before it is stored. An existing file with other content is kept,
and the new file gets a number. Of a file 256 MiB are read at most.)",
     "files: array of key, qualifier, file, size, sha1, or of path and error\nfailed: how many were not fetched",
     kGetExamples, RunBatchGet},
    {"batch rm", "Delete files by their SHA-1", kPlainKeys, kRmOptions,
     R"(On a terminal it names the keys and asks first; elsewhere the command itself is consent. Asks the camera first which of the files it has, and sends their keys in one command. A key that it does not have
fails, and so does that of an empty file, which looks the same. The camera does not report each deletion; `kelva pictures`
shows what is left.)",
     "keys: how many were sent, or would be\nfiles: array of key, or of path and error\nfailed: how many the camera "
     "does "
     "not have\ndry_run: true with --dry-run",
     kRmExamples, RunBatchRm},
    {"raw", "Fetch the compressed raw data of a picture", kKey, kInto,
     R"(The data has up to two parts, stored as KEY.raw1 and KEY.raw2; an empty part is left out. A single part is
stored as KEY.raw, because the camera does not say which of the two it is. 256 MiB are read at most.)",
     "key: of the picture\nparts: array of file and size", kRawExamples, RunRaw},
};

}  // namespace

std::span<const Verb> KeyVerbs() {
  return kVerbs;
}

}  // namespace apps
