#include "tools/printer-app/Password.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <random>
#include <string_view>

namespace quordalvane::printer_app {
namespace {

constexpr char separator = '~';

// Returns a random text, which gives equal passwords different hashes.
std::string newNonce() {
  std::random_device random;
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%08x%08x", random(), random());
  return text.data();
}

// Returns the nonce, the separator, and the hash of the nonce and the password.
std::string hashOf(const std::string& password, const std::string& nonce) {
  const std::string salted = nonce + ':' + password;
  std::array<unsigned char, 32> hash{};
  cupsHashData("sha2-256", salted.data(), salted.size(), hash.data(), hash.size());
  std::array<char, 2 * hash.size() + 1> digits{};
  cupsHashString(hash.data(), hash.size(), digits.data(), digits.size());
  return nonce + separator + digits.data();
}

// Returns the nonce in `salt` if `salt` is a result of `hashOf`; otherwise returns a new nonce.
std::string nonceOf(std::string_view salt) {
  const std::size_t end = salt.find(separator);
  return end == std::string_view::npos ? newNonce() : std::string(salt.substr(0, end));
}

}  // namespace

bool setPassword(pappl_system_t* system, const std::string& file) {
  std::string password;
  if (!std::getline(std::ifstream(file), password) || password.empty()) {
    return false;
  }
  papplSystemSetPassword(system, hashOf(password, newNonce()).c_str());
  return true;
}

}  // namespace quordalvane::printer_app

extern "C" [[gnu::visibility("default")]] char* papplSystemHashPassword(pappl_system_t* /*system*/,
                                                                        const char* salt,
                                                                        const char* password,
                                                                        char* buffer,
                                                                        std::size_t size) {
  using namespace quordalvane::printer_app;
  std::snprintf(buffer, size, "%s", hashOf(password, nonceOf(salt == nullptr ? "" : salt)).c_str());
  return buffer;
}
