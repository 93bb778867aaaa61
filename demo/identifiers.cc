#include "demo/identifiers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <stdexcept>

namespace vantorel::demo {
namespace {

constexpr std::string_view kCodePoints = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

int CodePoint(char c) {
  const size_t at = kCodePoints.find(c);
  if (at == std::string_view::npos) throw std::invalid_argument("not a GSTIN character");
  return static_cast<int>(at);
}

// ISO 3779 transliteration: letters map to digits, skipping I, O and Q.
int VinValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  constexpr std::string_view kLetters = "ABCDEFGHJKLMNPRSTUVWXYZ";
  constexpr int kValues[] = {1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 7, 9, 2, 3, 4, 5, 6, 7, 8, 9};
  const size_t at = kLetters.find(c);
  if (at == std::string_view::npos) throw std::invalid_argument("not a VIN character");
  return kValues[at];
}

uint32_t Rotr(uint32_t x, int n) { return (x >> n) | (x << (32 - n)); }

}  // namespace

char GstinCheckCharacter(std::string_view first14) {
  if (first14.size() != 14)
    throw std::invalid_argument("a GSTIN has 14 characters before its check");
  int sum = 0;
  for (size_t i = 0; i < first14.size(); ++i) {
    const int product = CodePoint(first14[i]) * (i % 2 == 0 ? 1 : 2);
    sum += product / 36 + product % 36;
  }
  return kCodePoints[static_cast<size_t>((36 - sum % 36) % 36)];
}

std::string MakeGstin(std::string_view state_code, std::string_view pan, char entity) {
  std::string gstin = std::string(state_code) + std::string(pan) + entity + 'Z';
  return gstin + GstinCheckCharacter(gstin);
}

char VinCheckDigit(std::string_view vin) {
  if (vin.size() != 17) throw std::invalid_argument("a VIN has 17 characters");
  constexpr int kWeights[] = {8, 7, 6, 5, 4, 3, 2, 10, 0, 9, 8, 7, 6, 5, 4, 3, 2};
  int sum = 0;
  for (size_t i = 0; i < vin.size(); ++i) sum += VinValue(vin[i]) * kWeights[i];
  const int check = sum % 11;
  return check == 10 ? 'X' : static_cast<char>('0' + check);
}

std::string Sha256(std::string_view data) {
  static constexpr std::array<uint32_t, 64> k = {
      0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4,
      0xab1c5ed5, 0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe,
      0x9bdc06a7, 0xc19bf174, 0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f,
      0x4a7484aa, 0x5cb0a9dc, 0x76f988da, 0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7,
      0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967, 0x27b70a85, 0x2e1b2138, 0x4d2c6dfc,
      0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85, 0xa2bfe8a1, 0xa81a664b,
      0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070, 0x19a4c116,
      0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
      0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7,
      0xc67178f2};
  std::array<uint32_t, 8> h = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                               0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

  std::string message(data);
  const uint64_t bits = static_cast<uint64_t>(message.size()) * 8;
  message += static_cast<char>(0x80);
  while (message.size() % 64 != 56) message += '\0';
  for (int shift = 56; shift >= 0; shift -= 8) message += static_cast<char>(bits >> shift);

  for (size_t block = 0; block < message.size(); block += 64) {
    std::array<uint32_t, 64> w{};
    for (size_t i = 0; i < 16; ++i) {
      for (size_t j = 0; j < 4; ++j) {
        w[i] = (w[i] << 8) | static_cast<unsigned char>(message[block + i * 4 + j]);
      }
    }
    for (size_t i = 16; i < 64; ++i) {
      const uint32_t s0 = Rotr(w[i - 15], 7) ^ Rotr(w[i - 15], 18) ^ (w[i - 15] >> 3);
      const uint32_t s1 = Rotr(w[i - 2], 17) ^ Rotr(w[i - 2], 19) ^ (w[i - 2] >> 10);
      w[i] = w[i - 16] + s0 + w[i - 7] + s1;
    }
    std::array<uint32_t, 8> v = h;
    for (size_t i = 0; i < 64; ++i) {
      const uint32_t s1 = Rotr(v[4], 6) ^ Rotr(v[4], 11) ^ Rotr(v[4], 25);
      const uint32_t choice = (v[4] & v[5]) ^ (~v[4] & v[6]);
      const uint32_t t1 = v[7] + s1 + choice + k[i] + w[i];
      const uint32_t s0 = Rotr(v[0], 2) ^ Rotr(v[0], 13) ^ Rotr(v[0], 22);
      const uint32_t majority = (v[0] & v[1]) ^ (v[0] & v[2]) ^ (v[1] & v[2]);
      const uint32_t t2 = s0 + majority;
      v = {t1 + t2, v[0], v[1], v[2], v[3] + t1, v[4], v[5], v[6]};
    }
    for (size_t i = 0; i < 8; ++i) h[i] += v[i];
  }

  std::string digest;
  for (uint32_t word : h) {
    for (int shift = 24; shift >= 0; shift -= 8) digest += static_cast<char>(word >> shift);
  }
  return digest;
}

std::string Sha256Hex(std::string_view data) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string hex;
  for (const char byte : Sha256(data)) {
    const auto value = static_cast<unsigned char>(byte);
    hex += kHex[value >> 4];
    hex += kHex[value & 0xf];
  }
  return hex;
}

std::string Base64Url(std::string_view bytes) {
  static constexpr char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  std::string text;
  for (size_t at = 0; at < bytes.size(); at += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - at);
    uint32_t group = 0;
    for (size_t i = 0; i < 3; ++i) {
      group = (group << 8) | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0u);
    }
    for (size_t i = 0; i <= count; ++i) text += kAlphabet[(group >> (18 - 6 * i)) & 0x3f];
  }
  return text;
}

std::string SignedQr(const std::string& data) {
  static const std::string kHeader = [] {
    const std::string key = Sha256("Invoice registration portal, signing certificate 2024");
    std::string kid;
    for (char c : Sha256Hex(key).substr(0, 40)) {
      kid += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    const std::string thumbprint = Base64Url(key.substr(0, 20));
    return Base64Url("{\"alg\":\"RS256\",\"kid\":\"" + kid + "\",\"typ\":\"JWT\",\"x5t\":\"" +
                     thumbprint + "\"}");
  }();
  std::string quoted;
  for (char c : data) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  const std::string signed_part =
      kHeader + "." + Base64Url("{\"data\":\"" + quoted + "\",\"iss\":\"NIC\"}");
  std::string signature;
  for (char block = 0; block < 8; ++block) signature += Sha256(signed_part + block);
  return signed_part + "." + Base64Url(signature);
}

}  // namespace vantorel::demo
