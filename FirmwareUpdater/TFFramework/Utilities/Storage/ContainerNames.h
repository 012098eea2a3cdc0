#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <typeinfo>

namespace TF {

// "TF::Container<class Element,1,0>::Operation": how an exception's text names an operation
// of a container class template with a counted element type.
std::string ContainerOperationName(std::string_view container, const std::type_info& element,
                                   std::initializer_list<std::int64_t> numbers, std::string_view operation);

}  // namespace TF
