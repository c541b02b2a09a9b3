// Rewrites a JSON file to standard output with sorted keys and indentation, the everyday way.

#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

int main(int count, char** arguments) {
  if (count != 2) return 64;
  std::ifstream file(arguments[1], std::ios::binary);
  std::ios::sync_with_stdio(false);
  std::cout << nlohmann::json::parse(file).dump(2) << '\n';
}
