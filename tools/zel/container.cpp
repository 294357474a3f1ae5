#include "tools/zel/container.hpp"

#include <algorithm>
#include <cstring>

#include "base/bytes.hpp"
#include "tools/zel/failure.hpp"
#include "zel_cc/bcipher_auth.h"
#include "zel_cc/errors.h"
#include "zel_cc/hmac.h"

namespace zel::tool {
namespace {

constexpr std::array<std::uint8_t, 4> kMagic{'Z', 'E', 'L', 'C'};
constexpr std::uint8_t kVersion = 1;
constexpr std::size_t kFixedLen = 40;
constexpr std::size_t kLongestModulus = 512;
constexpr std::size_t kShortestModulus = 256;
constexpr std::uint32_t kFewestRounds = 1'000;
constexpr std::uint32_t kMostRounds = 10'000'000;
constexpr std::string_view kSuffix = "-gcm";

/// Numbered from 1 in the header.
constexpr std::array<std::string_view, 6> kNumbered{"aria-256", "aria-192", "aria-128",
                                                    "seed",     "aes-256",  "aes-128"};

const Cipher &cipher_named(std::string_view name) {
  const auto all = all_ciphers();
  return *std::find_if(all.begin(), all.end(), [name](const Cipher &c) { return c.name == name; });
}

std::uint8_t number_of(const Cipher &cipher) {
  const auto found = std::find(kNumbered.begin(), kNumbered.end(), cipher.name);
  return static_cast<std::uint8_t>(found - kNumbered.begin() + 1);
}

[[noreturn]] void refuse(const std::string &path, const std::string &problem) {
  throw Failure(Exit::kMalformed, path, problem,
                "check that it is whole and made by 'zel encrypt'");
}

void read_exactly(Input &input, const std::string &path, std::span<std::uint8_t> out) {
  while (!out.empty()) {
    const std::size_t got = input.read(out);
    if (got == 0) refuse(path, "too short for a container");
    out = out.subspan(got);
  }
}

/// Length of the recipient part that goes with the source.
bool fits(const ContainerHeader &header, std::uint32_t recipient_len) {
  constexpr std::size_t kId = ContainerHeader::kKeyIdLen;
  switch (header.source) {
    case SecretSource::kPassphrase:
      return recipient_len == 0 && header.rounds >= kFewestRounds && header.rounds <= kMostRounds;
    case SecretSource::kKeyFile:
      return recipient_len == 0 && header.rounds == 0;
    case SecretSource::kRsa:
      return header.rounds == 0 && recipient_len >= kId + kShortestModulus &&
             recipient_len <= kId + kLongestModulus;
  }
  return false;
}

/// One round of the counter mode of SP 800-108, section 4.1, with HMAC-SHA-256.
Secret derive_key(std::span<const std::uint8_t> secret, const Bytes &header) {
  constexpr std::uint8_t kBefore[]{0,   0,   0,   1,   'z', 'e', 'l', ' ', 'c',
                                   'o', 'n', 't', 'a', 'i', 'n', 'e', 'r', 0};
  constexpr std::uint8_t kBits[]{0, 0, 1, 0};
  Wiped<HMAC_CONTEXT> context;
  const int code = HMAC_InitializeEx(&*context, secret.data(),
                                     static_cast<std::uint32_t>(secret.size()), &sha256);
  if (code != ZEL_OK) throw library_failure("HMAC-SHA-256", code);
  __HMAC_Update(&*context, kBefore, sizeof kBefore);
  __HMAC_Update(&*context, header.data(), static_cast<std::uint32_t>(header.size()));
  __HMAC_Update(&*context, kBits, sizeof kBits);
  Secret key(32);
  std::uint32_t len = 0;
  HMAC_Finalize(key.room().data(), &len, &*context);
  if (len != 32) throw library_failure("HMAC-SHA-256", ZEL_ERR_STATE);
  key.grow(len);
  return key;
}

}  // namespace

std::vector<std::string> container_ciphers() {
  std::vector<std::string> names;
  for (const std::string_view name : kNumbered)
    names.push_back(std::string(name) + std::string(kSuffix));
  return names;
}

const Cipher &find_container_cipher(const std::string &name) {
  std::string known;
  for (const std::string &item : container_ciphers()) {
    if (item == name) return cipher_named(name.substr(0, name.size() - kSuffix.size()));
    known += (known.empty() ? "" : ", ") + item;
  }
  throw Failure(Exit::kUsage, name, "not a cipher of containers", "choose one of " + known);
}

Bytes ContainerHeader::encode() const {
  Bytes bytes(kFixedLen + recipient.size());
  std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
  bytes[4] = kVersion;
  bytes[5] = number_of(*cipher);
  bytes[6] = static_cast<std::uint8_t>(source);
  store_be32(&bytes[8], rounds);
  std::copy(salt.begin(), salt.end(), bytes.begin() + 12);
  std::copy(prefix.begin(), prefix.end(), bytes.begin() + 28);
  store_be32(&bytes[36], static_cast<std::uint32_t>(recipient.size()));
  std::copy(recipient.begin(), recipient.end(), bytes.begin() + kFixedLen);
  return bytes;
}

ContainerHeader read_header(Input &input, const std::string &path) {
  std::array<std::uint8_t, kFixedLen> fixed{};
  read_exactly(input, path, fixed);
  if (!std::equal(kMagic.begin(), kMagic.end(), fixed.begin())) refuse(path, "not a container");
  if (fixed[4] != kVersion) {
    refuse(path, "a container of version " + std::to_string(fixed[4]) + ", which is not known");
  }
  if (fixed[5] == 0 || fixed[5] > kNumbered.size()) refuse(path, "an unknown cipher");
  if (fixed[7] != 0 || fixed[35] != 0) refuse(path, "a malformed header");
  ContainerHeader header;
  header.cipher = &cipher_named(kNumbered[fixed[5] - 1U]);
  header.source = SecretSource{fixed[6]};
  header.rounds = load_be32(&fixed[8]);
  std::copy_n(&fixed[12], header.salt.size(), header.salt.begin());
  std::copy_n(&fixed[28], header.prefix.size(), header.prefix.begin());
  const std::uint32_t recipient_len = load_be32(&fixed[36]);
  if (!fits(header, recipient_len)) refuse(path, "a malformed header");
  header.recipient.resize(recipient_len);
  read_exactly(input, path, header.recipient);
  return header;
}

ChunkCipher::ChunkCipher(const ContainerHeader &header, std::span<const std::uint8_t> secret)
    : header_(header), associated_(header.encode()) {
  const Secret key = derive_key(secret, associated_);
  const std::size_t len = header.cipher->max_key;
  key_ = load_key(*header.cipher, key.bytes().first(len), static_cast<std::uint32_t>(len));
}

std::array<std::uint8_t, 12> ChunkCipher::next_nonce(bool last) {
  if (number_ >> 32 != 0) {
    throw Failure(Exit::kUsage, "data", "more than 2^32 chunks of 64 KiB",
                  "put it into several containers");
  }
  std::array<std::uint8_t, 12> nonce{};
  std::copy(header_.prefix.begin(), header_.prefix.end(), nonce.begin());
  store_be32(&nonce[7], static_cast<std::uint32_t>(number_++));
  nonce[11] = last;
  return nonce;
}

std::int32_t ChunkCipher::run(bool sealing, std::span<const std::uint8_t> in, bool last,
                              std::span<std::uint8_t> out, std::uint32_t &len) {
  const auto nonce = next_nonce(last);
  Wiped<BCIPHER_CONTEXT> context;
  const int code = BCIPHER_Initialize(&*context, ZEL_MODE_GCM, nullptr, header_.cipher->descriptor);
  if (code != ZEL_OK) return code;
  const auto transform = sealing ? BCIPHER_EncryptAuth : BCIPHER_DecryptAuth;
  return transform(out.data(), &len, in.data(), static_cast<std::uint32_t>(in.size()),
                   associated_.data(), static_cast<std::uint32_t>(associated_.size()), nonce.data(),
                   nonce.size(), &*context, key_.get(), kTagLen);
}

std::span<const std::uint8_t> ChunkCipher::seal(std::span<const std::uint8_t> plain, bool last,
                                                std::span<std::uint8_t> out) {
  std::uint32_t len = 0;
  const int code = run(true, plain, last, out, len);
  if (code != ZEL_OK) throw library_failure(std::string(header_.cipher->name) + "-gcm", code);
  message_len_ += plain.size();
  return out.first(len);
}

std::optional<std::span<const std::uint8_t>> ChunkCipher::open(std::span<const std::uint8_t> sealed,
                                                               bool last,
                                                               std::span<std::uint8_t> out) {
  std::uint32_t len = 0;
  const int code = run(false, sealed, last, out, len);
  if (code == ZEL_ERR_TAG) {
    wipe(out.data(), out.size());  // GCM leaves what it deciphered
    return std::nullopt;
  }
  if (code != ZEL_OK) throw library_failure(std::string(header_.cipher->name) + "-gcm", code);
  message_len_ += len;
  return out.first(len);
}

}  // namespace zel::tool
