// zel info: the library that is in use, the processor, the module state, the algorithms.
#include <array>

#include "base/cpu.hpp"
#include "tools/zel/ciphers.hpp"
#include "tools/zel/command.hpp"
#include "tools/zel/json.hpp"
#include "tools/zel/module_file.hpp"
#include "tools/zel/schemes.hpp"
#include "tools/zel/strong_rand.h"
#include "zel_cc/state.h"

namespace zel::tool {
namespace {

struct NamedFeature {
  cpu::Feature feature;
  const char *name;
  const char *meaning;
};

constexpr std::array kFeatures{
    NamedFeature{cpu::Feature::kSha, "sha", "SHA-1 and SHA-256 instructions"},
    NamedFeature{cpu::Feature::kAesni, "aesni", "AES and carry-less multiplication"},
    NamedFeature{cpu::Feature::kAvx2, "avx2", "256-bit integers"},
    NamedFeature{cpu::Feature::kVaes, "vaes", "AES on 256-bit registers"},
    NamedFeature{cpu::Feature::kBmi2, "bmi2", "rotation and multiplication without flags"},
    NamedFeature{cpu::Feature::kAdx, "adx", "two carry chains"},
};

std::vector<Scheme> all_schemes() {
  std::vector<Scheme> all = hash_schemes();
  for (Scheme &scheme : hmac_schemes({}))
    all.push_back(std::move(scheme));
  return all;
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

std::string row(const std::string &name, const std::string &value) {
  return padded(name, 16) + value + "\n";
}

std::string standing(bool approved) { return approved ? "approved" : "not approved: --legacy"; }

std::string table(int state) {
  std::string text =
      row("version", ZEL_CC_VERSION) + row("library", library_path()) +
      row("module state", std::to_string(state) + ", " + state_name(state)) +
      row("rand and srand", zel_strong_rand_in_force() != 0 ? "the kernel's generator"
                                                            : "NOT the kernel's generator");
  text += "\nprocessor\n";
  for (const NamedFeature &item : kFeatures) {
    text += "  " + padded(item.name, 14) + padded(cpu::has(item.feature) ? "yes" : "no", 5) +
            item.meaning + "\n";
  }
  text += "\nalgorithms\n";
  for (const Scheme &scheme : all_schemes()) {
    text += "  " + padded(scheme.name, 14) + " " +
            padded(std::to_string(8 * scheme.digest_len), 4) + "bits  " +
            standing(scheme.approved) + "\n";
  }
  for (const Cipher &cipher : all_ciphers()) {
    text += "  " + padded(std::string(cipher.name), 14) + " " +
            padded(std::to_string(8 * cipher.max_key), 4) + "bits  " + standing(cipher.approved) +
            "\n";
  }
  return text;
}

void fill(Json &object, int state) {
  object["version"] = ZEL_CC_VERSION;
  object["library"] = library_path();
  object["state"] = {{"value", state}, {"name", state_name(state)}};
  object["strong_rand"] = zel_strong_rand_in_force() != 0;
  for (const NamedFeature &item : kFeatures)
    object["processor"][item.name] = cpu::has(item.feature);
  for (const Scheme &scheme : all_schemes()) {
    object["algorithms"].push_back(
        {{"name", scheme.name}, {"bits", 8 * scheme.digest_len}, {"approved", scheme.approved}});
  }
  for (const Cipher &cipher : all_ciphers()) {
    object["ciphers"].push_back({{"name", std::string(cipher.name)},
                                 {"key_bits", 8 * cipher.max_key},
                                 {"approved", cipher.approved},
                                 {"standard", std::string(cipher.standard)}});
  }
}

}  // namespace

Command info_command() {
  Command command{
      "info",
      "Version, processor features, module state and algorithms",
      "Shows which library file is in use, what the processor can do for it, the state of the "
      "module, and every algorithm with its standing: the approved ones run as they are, the "
      "others "
      "want --legacy.",
      {{"all there is to know", "zel info"}, {"the same for a program", "zel info --json"}}};
  command.run = [](Session &session) {
    const int state = KZEL_CC_GetState();
    fill(session.result(), state);
    session.print(table(state));
  };
  return command;
}

}  // namespace zel::tool
