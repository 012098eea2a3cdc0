#pragma once

#include "TFFramework/ControlBase/LayoutDescriptor.h"
#include "TFFramework/ControlBase/XmlReader.h"

namespace TF {

// Takes what the attributes of a control say about its layout; what they do not say stays as it is.
// The class that stands for a whole application has no visibility and no tab stop.
void ReadLayout(const XmlAttributes& attributes, bool isApplication, LLayoutDescriptor& layout);

}  // namespace TF
