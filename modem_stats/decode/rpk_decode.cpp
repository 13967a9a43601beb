// Placeholder until the decoding tool lands.
#include <cstdio>

int main() {
  std::puts("rpk-decode: not built yet");
  return 0;
}
