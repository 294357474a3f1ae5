// The secret of a container under the RSA key of its recipient: RSAES-OAEP with SHA-256 (RFC 8017,
// section 7.1), preceded by what tells which key it is.
#pragma once

#include <span>
#include <string>

#include "tools/zel/hex.hpp"
#include "tools/zel/secret.hpp"
#include "tools/zel/session.hpp"

namespace zel::tool {

/// The secret for the owner of the RSA key in the file `path`.
Bytes wrap_for_recipient(const Session &session, const std::string &path,
                         std::span<const std::uint8_t> secret);

/// The secret again, by the private key in the file `path`. `container` is for messages.
Secret unwrap_as_recipient(const Session &session, const std::string &path,
                           const std::string &container, std::span<const std::uint8_t> recipient);

}  // namespace zel::tool
