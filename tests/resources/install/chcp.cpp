// Stands in for Windows' chcp.com: notes its arguments, or a question mark for none, one a line in chcp.calls in the
// current folder, and answers as on a German system.
#include <cstdio>

int main(int argc, char** argv) {
  std::FILE* calls = std::fopen("chcp.calls", "a");
  if (calls == nullptr) return 1;
  std::fprintf(calls, "%s\n", argc > 1 ? argv[1] : "?");
  std::fclose(calls);
  std::puts("Aktive Codepage: 850.");
  return 0;
}
