#include "vcam/device/Sha1.h"

#include <gmock/gmock.h>

namespace {

int freedContexts = 0;

}  // namespace

// The linker puts this in the place of OpenSSL's (--wrap).
extern "C" {
void __real_EVP_MD_CTX_free(void* context);
void __wrap_EVP_MD_CTX_free(void* context) {
  ++freedContexts;
  __real_EVP_MD_CTX_free(context);
}
}

namespace vcam {
namespace {

TEST(Sha1, GivesItsMemoryBack) {
  const int before = freedContexts;
  Sha1().Hex();
  EXPECT_EQ(freedContexts, before + 1);
}

TEST(Sha1, KnowsThePublishedExamples) {
  EXPECT_EQ(Sha1().Hex(), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
  Sha1 digest;
  const std::uint8_t first[] = {'a'};
  const std::uint8_t rest[] = {'b', 'c'};
  digest.Update(first);
  digest.Update(rest);
  EXPECT_EQ(digest.Hex(), "a9993e364706816aba3e25717850c26c9cd0d89d");
}

TEST(Sha256, KnowsThePublishedExample) {
  EXPECT_EQ(Sha256Hex("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace vcam
