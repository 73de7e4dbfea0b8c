// The verbs wifi name, passphrase, auth and off.
#include <string>

#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/kelva/verbs/Secret.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/Ascii.h"

namespace apps {
namespace {

constexpr std::string_view kPrefix = "kelva.camera.";
constexpr std::size_t kLongestName = 32 - kPrefix.size();
constexpr std::size_t kShortestPassphrase = 9;
constexpr std::size_t kLongestPassphrase = 63;

_VscWifiType TypeOf(const Context& context) {
  return static_cast<_VscWifiType>(ParseNumber(context.call.Value("setting").value_or("0"), "a Wi-Fi setting", 0, 1));
}

ExitCode Finish(Context& context, const Session& camera, bool taken, Json members) {
  if (!taken) throw Failure(ExitCode::kRefused, "The camera did not accept the Wi-Fi setting.");
  return context.Result(CameraResult(camera).Merge(std::move(members)), "");
}

ExitCode RunName(Context& context) {
  const std::string& name = context.call.words[0];
  if (name.size() > kLongestName) {
    throw Failure(ExitCode::kUsage, "The name has " + std::to_string(name.size()) + " bytes; with \"" +
                                        std::string(kPrefix) + "\" before it there is room for " +
                                        std::to_string(kLongestName) + ".");
  }
  const _VscWifiType type = TypeOf(context);
  const Session camera(context, "set the Wi-Fi name");
  const bool taken = camera->SetWifiSSID(type, name);
  Json members = Json::Object();
  members.Set("setting", static_cast<int>(type)).SetBytes("ssid", std::string(kPrefix) + name);
  const ExitCode code = Finish(context, camera, taken, std::move(members));
  context.reporter.Note("The network is now called " + std::string(kPrefix) + Printable(name) + ".");
  return code;
}

ExitCode RunPassphrase(Context& context) {
  const _VscWifiType type = TypeOf(context);
  const std::string passphrase = ReadSecret("New Wi-Fi passphrase: ", context.stop);
  if (passphrase.size() < kShortestPassphrase || passphrase.size() > kLongestPassphrase) {
    throw Failure(ExitCode::kUsage,
                  "A passphrase has 9 to 63 characters; this one has " + std::to_string(passphrase.size()) + ".");
  }
  const Session camera(context, "set the Wi-Fi passphrase");
  return Finish(context, camera, camera->SetWifiPassphrase(type, passphrase),
                Json::Object().Set("setting", static_cast<int>(type)));
}

_VscWifiAuthType AuthType(const std::string& word) {
  const std::string upper = base::Upper(word);
  if (upper == "WPA2") return kVscWifiAuthWpa2;
  if (upper == "WEP") return kVscWifiAuthWep;
  if (upper == "NONE") return kVscWifiAuthNone;
  throw Failure(ExitCode::kUsage, "The authentication is WPA2, WEP or NONE, not \"" + Printable(word) + "\".");
}

ExitCode RunAuth(Context& context) {
  const std::string& word = context.call.words[0];
  const _VscWifiAuthType auth = AuthType(word);
  const Session camera(context, "set the Wi-Fi authentication");
  const bool taken = camera->SetWifiAuthType(kVscWifiType1, auth);
  const ExitCode code =
      Finish(context, camera, taken, Json::Object().Set("auth", base::Upper(word)).Set("text_sent", false));
  context.reporter.Note("The camera accepted the command. The command carries no text, so \"" + word +
                        "\" itself does not reach the camera.");
  return code;
}

ExitCode RunOff(Context& context) {
  const Session camera(context, "switch Wi-Fi off");
  return Finish(context, camera, camera->DisableWifi(true), Json::Object());
}

constexpr Argument kName[] = {{"NAME", "At most 19 bytes; \"kelva.camera.\" is put before it."}};
constexpr Argument kAuth[] = {
    {"AUTH", "WPA2, WEP or NONE, in any case of letters.", Argument::Count::kOne, Offer::kWords, "WPA2 WEP NONE"}};
constexpr Option kSetting[] = {
    {"setting", 0, "0|1", "Which of the camera's two Wi-Fi settings; the default is 0.", Offer::kWords, "0 1"}};
constexpr Example kNameExamples[] = {{"kelva wifi name den", "Call the network kelva.camera.den."}};
constexpr Example kPassphraseExamples[] = {
    {"kelva wifi passphrase", "Ask for it, without showing it."},
    {"pass show camera | kelva wifi passphrase", "Take it from a password manager."},
};
constexpr Example kAuthExamples[] = {{"kelva wifi auth WPA2", "Send the command for setting 1."}};
constexpr Example kOffExamples[] = {{"kelva wifi off", "Switch it off."}};

constexpr Verb kVerbs[] = {
    {"wifi name", "Set the camera's network name", kName, kSetting, "", "setting: 0 or 1\nssid: the whole name",
     kNameExamples, RunName},
    {"wifi passphrase",
     "Set the camera's network passphrase",
     kNoArguments,
     kSetting,
     R"(The passphrase has 9 to 63 characters. It is asked for on the terminal without being shown, or read as the
first line of standard input. It is not taken from the command line, because other users could see it there.)",
     "setting: 0 or 1",
     kPassphraseExamples,
     RunPassphrase,
     false,
     {},
     {},
     true},
    {"wifi auth", "Send the command for the Wi-Fi authentication, which names none", kAuth, kNoOptions,
     R"(Sets the authentication of setting 1. The command has no data phase: the camera learns that it was sent, but
not which authentication it names. The tool says so and ends with exit status 0.)",
     "auth: the word given\ntext_sent: always false", kAuthExamples, RunAuth},
    {"wifi off", "Switch the camera's Wi-Fi off", kNoArguments, kNoOptions, "", "", kOffExamples, RunOff},
};

}  // namespace

std::span<const Verb> WifiVerbs() {
  return kVerbs;
}

}  // namespace apps
