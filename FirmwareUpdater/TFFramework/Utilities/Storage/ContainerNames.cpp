#include "TFFramework/Utilities/Storage/ContainerNames.h"

#include <fmt/format.h>

#include "TFFramework/ObjectBase/Exception.h"

namespace TF {

std::string ContainerOperationName(std::string_view container, const std::type_info& element,
                                   std::initializer_list<std::int64_t> numbers, std::string_view operation) {
  std::string name = fmt::format("TF::{}<class {}", container, DemangledName(element.name()));
  for (const std::int64_t number : numbers) name += fmt::format(",{}", number);
  return name + fmt::format(">::{}", operation);
}

}  // namespace TF
