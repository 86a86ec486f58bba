// The forms of the block operations.
#pragma once

#include "foundation/block_ops.h"

namespace KorvaneSoftware {

PIXMORPH_FORMS(CopySignature, CopyCached, CopyStreaming)
PIXMORPH_FORMS(FillBytesSignature, FillBytesCached, FillBytesStreaming)
PIXMORPH_FORMS(FillWordsSignature, FillWordsCached, FillWordsStreaming)
PIXMORPH_FORMS(FillDwordsSignature, FillDwordsCached, FillDwordsStreaming)

}  // namespace KorvaneSoftware
