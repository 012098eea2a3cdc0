#include <iostream>
#include <string>
#include <vector>

#include "Tools/Vbin/Commands.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status = Vbin::RunCommand(arguments, std::cout, std::cerr);
  if (!std::cout.flush()) return Vbin::kStatusTrouble;
  return status;
}
