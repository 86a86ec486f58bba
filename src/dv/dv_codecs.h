// What the DV family offers: encoders and decoders of KVDV, KV25, KV50 and KVH1 for the codec table. A factory returns
// an object with one reference, or null.
#pragma once

#include "foundation/basic_interface.h"

namespace KorvaneSoftware {

IBasicInterface* CreateDVEncoder();
IBasicInterface* CreateDVDecoder();
IBasicInterface* CreateDVCPROEncoder();
IBasicInterface* CreateDVCPRODecoder();
IBasicInterface* CreateDVCPRO50Encoder();
IBasicInterface* CreateDVCPRO50Decoder();
/// At 100 Mbit the encoder is made for one frame system; the decoder reads both.
IBasicInterface* CreateDVCPRO100Encoder50Hz();
IBasicInterface* CreateDVCPRO100Encoder60Hz();
IBasicInterface* CreateDVCPRO100Decoder();

}  // namespace KorvaneSoftware
