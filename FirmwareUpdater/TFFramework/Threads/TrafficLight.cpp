#include "TFFramework/Threads/TrafficLight.h"

namespace TF {

TrafficLight::TrafficLight() : Event(false) {}

}  // namespace TF
