#include <vector>

/// Inputs are small, so whoever asks for this much memory at once has believed a number in the file. Stands
/// in front of the arguments given, which can change it.
extern "C" int LLVMFuzzerInitialize(int* count, char*** words) {
  static char limit[] = "-malloc_limit_mb=64";
  static std::vector<char*> arguments;
  arguments.assign(*words, *words + *count);
  arguments.insert(arguments.begin() + 1, limit);
  arguments.push_back(nullptr);
  ++*count;
  *words = arguments.data();
  return 0;
}
