// Motion-JPEG for the codec table. A factory returns an object with one reference, or null.
#pragma once

#include "foundation/basic_interface.h"

namespace KorvaneSoftware {

IBasicInterface* CreateMJPGEncoder();
IBasicInterface* CreateMJPGDecoder();

}  // namespace KorvaneSoftware
