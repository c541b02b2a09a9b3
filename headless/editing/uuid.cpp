#include "headless/editing/uuid.h"

#include <array>
#include <random>

namespace vell::headless {

std::string newUuid() {
  std::random_device random;
  std::array<unsigned, 16> bytes{};
  for (unsigned& byte : bytes) byte = random() & 0xFFU;
  bytes[6] = (bytes[6] & 0x0FU) | 0x40U;
  bytes[8] = (bytes[8] & 0x3FU) | 0x80U;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += "0123456789ABCDEF"[bytes[i] >> 4U];
    text += "0123456789ABCDEF"[bytes[i] & 15U];
  }
  return text;
}

}  // namespace vell::headless
