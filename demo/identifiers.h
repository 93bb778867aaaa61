// Indian tax and vehicle identifiers with their check characters: GSTINs, VINs, and the
// invoice reference number (IRN) of an e-invoice, with the digest and encoding its signed QR code
// is made of.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_DEMO_IDENTIFIERS_H_
#define VANTOREL_DEMO_IDENTIFIERS_H_

#include <string>
#include <string_view>

namespace vantorel::demo {

// The 15th character of a GSTIN from its first 14: the code points 0-9, A-Z (0 to 35) weighted
// 1 and 2 alternately from the left, each product folded as (p / 36 + p % 36), and the check
// character is (36 - sum % 36) % 36.
char GstinCheckCharacter(std::string_view first14);

// "27" + PAN + entity number + "Z" + check character.
std::string MakeGstin(std::string_view state_code, std::string_view pan, char entity = '1');

// The ninth character of a 17-character VIN (the ISO 3779 weighted check: 0-9 or X).
char VinCheckDigit(std::string_view vin);

// The SHA-256 digest of "data": 32 bytes, and as 64 lower-case hex digits.
std::string Sha256(std::string_view data);
std::string Sha256Hex(std::string_view data);

// "bytes" in the URL-safe base64 alphabet (A-Z a-z 0-9 - _) without padding, as the parts of a
// JSON Web Token are written.
std::string Base64Url(std::string_view bytes);

// The signed QR code of an e-invoice as the invoice registration portal returns it: a JSON Web
// Token (header.payload.signature, each base64url) signed with the portal's key (RS256), its
// payload holding the invoice's particulars as a JSON text under "data". The demo cannot sign as
// the portal does: its signature is 256 bytes, as long as the portal's, drawn from digests of the
// header and payload, so the same invoice always gets the same code.
std::string SignedQr(const std::string& data);

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_IDENTIFIERS_H_
