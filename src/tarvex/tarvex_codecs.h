// What the alpha family offers: encoders and decoders of TRVD and TRVT for the codec table. A factory returns an object
// with one reference, or null.
#pragma once

#include "foundation/basic_interface.h"

namespace KorvaneSoftware {

IBasicInterface* CreateTRVDEncoder();
IBasicInterface* CreateTRVDDecoder();
IBasicInterface* CreateTRVTEncoder();
IBasicInterface* CreateTRVTDecoder();

}  // namespace KorvaneSoftware
