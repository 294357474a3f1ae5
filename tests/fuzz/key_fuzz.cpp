// Whatever bytes claim to be a key: the readers either refuse them or read what they can write
// back.
#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "tools/zel/key_der.hpp"
#include "tools/zel/pbes2.hpp"
#include "tools/zel/pem.hpp"

namespace {

using namespace zel::tool;

KeyForm written_form(const Key &key) {
  if (key.part == KeyPart::kParameters) return KeyForm::kParameters;
  return key.is_private() ? KeyForm::kPrivateKeyInfo : KeyForm::kPublicKeyInfo;
}

/// DER has one encoding for a value: what was read is written with the same bytes, but for what the
/// reader passes over (attributes) and the forms that are not written.
void read_and_write_back(KeyForm form, std::optional<KeyType> type, der::View content) {
  const KeyPointer key = parse_key(form, type, content);
  der::Writer first(kKeyDerMost);
  write_key(first, written_form(*key), *key);
  const KeyPointer again = parse_key(written_form(*key), key->type, first.bytes());
  der::Writer second(kKeyDerMost);
  write_key(second, written_form(*again), *again);
  if (!std::ranges::equal(first.bytes(), second.bytes())) std::abort();
  const bool same_form = form == written_form(*key) && first.bytes().size() == content.size();
  if (same_form && !std::ranges::equal(first.bytes(), content)) std::abort();
}

void read_content(KeyForm form, std::optional<KeyType> type, der::View content) {
  if (form != KeyForm::kEncryptedPrivateKeyInfo) return read_and_write_back(form, type, content);
  const Pbes2 encrypted = pbes2_read(content);
  if (encrypted.prf == nullptr || encrypted.rounds == 0 || encrypted.sealed.empty()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t len) {
  const std::string_view text(reinterpret_cast<const char *>(data), len);
  try {
    if (pem::has_block(text)) {
      const pem::Block block = pem::read(text);
      const KeyLabel &label = key_label(block.label);
      read_content(label.form, label.type, block.content.bytes());
    } else {
      const der::View content(data, len);
      read_content(guess_form(content), std::nullopt, content);
    }
  } catch (const Malformed &) {
    return -1;  // not worth keeping in a corpus; the replay counts it
  }
  return 0;
}
