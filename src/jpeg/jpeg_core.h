// What the JPEG family offers to the codecs that share its parts: block transforms and their dispatch, the store of an
// MCU, qualities, bits, and the readers and writers that carry MCUs between pictures and blocks.
#pragma once

#include "jpeg/bit_reader.h"
#include "jpeg/bit_writer.h"
#include "jpeg/block_coder.h"
#include "jpeg/block_transforms.h"
#include "jpeg/image_reader.h"
#include "jpeg/image_writer.h"
#include "jpeg/mcu.h"
#include "jpeg/quality.h"
#include "jpeg/standard_tables.h"
