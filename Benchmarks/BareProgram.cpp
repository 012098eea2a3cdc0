#include <alsa/asoundlib.h>
#include <fmt/format.h>

#include <string>

// Touches each library of the updater, so that none is left out at link time, and returns.
int main(int argc, char**) {
  const std::string text = fmt::format("{}", argc);
  return text.empty() || snd_strerror(0) == nullptr ? 1 : 0;
}
