#pragma once

#include <string_view>

namespace fleetwise {

/// The public key that this program was built with, in the form that isValidLicence takes; empty
/// where it was built without one.
std::string_view licencePublicKey();

/// Whether `text` is a licence signed with the private half of `publicKey`: the payload, a dot and
/// the Ed25519 signature (RFC 8032) of the payload's bytes, all in base64 for URLs, as the key's
/// 32 bytes are. With an empty key, or one that is none, no licence is valid.
bool isValidLicence(std::string_view text, std::string_view publicKey);

}  // namespace fleetwise
