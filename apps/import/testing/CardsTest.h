#ifndef KELVA_APPS_IMPORT_TESTING_CARDS_TEST_H_
#define KELVA_APPS_IMPORT_TESTING_CARDS_TEST_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/Picture.h"
#include "apps/camera/testing/FakeCamera.h"
#include "apps/camera/testing/MadePicture.h"
#include "apps/commandline/testing/SilentContext.h"
#include "apps/files/Sha1.h"
#include "apps/import/Sync.h"
#include "base/testing/ScratchFolder.h"

namespace apps {

/// Cameras whose pictures come into one folder under their plain names.
class CardsTest : public testing::Test, protected SilentContext {
 protected:
  struct Card {
    std::string serial;
    FakeCamera camera;

    explicit Card(std::string name) : serial(std::move(name)) {
      camera.open = true;
      camera.folder = "I:\\DCIM\\100ABCDE";
    }
    /// A picture with these files; the first one's SHA-1 is in the catalogue if it `hasKey`.
    void Put(int number, const std::map<int, std::string>& files, bool hasKey) {
      DcfObj picture = MadePicture(number, 100, hasKey ? Sha1(files.begin()->second) : "");
      picture.hasJpg = 0;
      picture.value9 = ++made_;
      for (const auto& [type, text] : files) {
        (type == 1 ? picture.hasJpg : type == 2 ? picture.hasRaw : type == 3 ? picture.hasTxt : picture.has128) = 1;
      }
      for (int type = kFirstFileType; type <= kLastFileType; ++type) camera.files.erase(PictureFileName(picture, type));
      for (const auto& [type, text] : files) camera.files[PictureFileName(picture, type)] = text;
      std::erase_if(camera.catalogue, [number](const DcfObj& other) { return other.fileNumber == number; });
      camera.catalogue.push_back(picture);
    }

   private:
    unsigned made_ = 0;
  };

  CardsTest() { LoseList(); }

  void LoseList() {
    manifest_.reset();
    std::filesystem::remove(path_ / Manifest::kName);
    manifest_ = std::make_unique<Manifest>(folder_, true);
  }
  void PutHere(const std::string& name, const std::string& text) const { std::ofstream(path_ / name) << text; }
  std::string Here(const std::string& name) const {
    std::ifstream file(path_ / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  SyncTotals Run(Card& card, const std::vector<int>& types = {1, 2, 3, 4}) {
    const SyncPlan plan = MakePlan(card.camera.catalogue, card.serial, types, Pattern("{name}"), *manifest_, &folder_);
    const auto sync = std::make_unique<Sync>(context_, Shared(card.camera), folder_, *manifest_, SyncOptions{});
    EXPECT_FALSE(sync->Run(plan).has_value());
    EXPECT_EQ(sync->Totals().failed, 0U) << Said();
    return sync->Totals();
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      const std::string name = entry.path().filename();
      if (!name.starts_with(".")) names.push_back(name);
    }
    return names;
  }

  const base::ScratchFolder scratch_;
  const std::filesystem::path path_ = scratch_.Path();
  const TargetFolder folder_ = TargetFolder::Open(path_);
  std::unique_ptr<Manifest> manifest_;
  Card card_{"K1"};
};

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_TESTING_CARDS_TEST_H_
