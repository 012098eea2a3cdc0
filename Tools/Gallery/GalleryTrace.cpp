#include "Tools/Gallery/GalleryTrace.h"

#include <iostream>

void TraceLine(std::string_view text) {
  std::cout << text << std::endl;
}
