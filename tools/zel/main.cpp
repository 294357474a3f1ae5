// The zel command: what the library can do, for people and scripts.
#include "tools/zel/program.hpp"

int main(int argc, char **argv) {
  using namespace zel::tool;
  Commands commands;
  commands.push_back(hash_command());
  commands.push_back(mac_command());
  commands.push_back(encrypt_command());
  commands.push_back(decrypt_command());
  commands.push_back(raw_command());
  commands.push_back(rand_command());
  commands.push_back(prime_command());
  commands.push_back(split_command());
  commands.push_back(combine_command());
  commands.push_back(reissue_command());
  commands.push_back(selftest_command());
  commands.push_back(integrity_command());
  commands.push_back(keygen_command());
  commands.push_back(key_command());
  commands.push_back(sign_command());
  commands.push_back(verify_command());
  commands.push_back(info_command());
  commands.push_back(completion_command(commands));
  commands.push_back(manual_command(commands));
  return run_program(commands, argc, argv);
}
