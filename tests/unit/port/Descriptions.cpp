#include "tests/unit/port/Descriptions.h"

#include <atomic>
#include <string>
#include <vector>

namespace quordalvane::test {
namespace {

std::atomic<std::uint64_t> made{0};

}  // namespace

std::uint64_t descriptionsMade() {
  return made;
}

// The names that the linker gives the two functions and their replacements (--wrap).
std::string realOfBuffer(const std::vector<std::uint8_t>& data) asm(
    "__real__ZN11quordalvane9LogWriter26createByteArrayDescriptionB5cxx11ERKSt6vectorIhSaIhEE");
std::string ofBuffer(const std::vector<std::uint8_t>& data) asm(
    "__wrap__ZN11quordalvane9LogWriter26createByteArrayDescriptionB5cxx11ERKSt6vectorIhSaIhEE");
std::string realOfBytes(const std::uint8_t* bytes, std::uint64_t size) asm(
    "__real__ZN11quordalvane9LogWriter26createByteArrayDescriptionB5cxx11EPKhm");
std::string ofBytes(const std::uint8_t* bytes, std::uint64_t size) asm(
    "__wrap__ZN11quordalvane9LogWriter26createByteArrayDescriptionB5cxx11EPKhm");

std::string ofBuffer(const std::vector<std::uint8_t>& data) {
  ++made;
  return realOfBuffer(data);
}

std::string ofBytes(const std::uint8_t* bytes, std::uint64_t size) {
  ++made;
  return realOfBytes(bytes, size);
}

}  // namespace quordalvane::test
