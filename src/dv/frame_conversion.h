// Changes of format and width between a caller's picture and the store that macroblocks are read from or written to,
// field by field: the caller's thread takes one field, a further worker the other.
#pragma once

#include "foundation/worker_team.h"
#include "resize/image_converter.h"

namespace KorvaneSoftware {

class FieldConverter {
public:
    /// Converts both fields. Planes must be complete and heights even.
    /// @param dst  its first and second field
    /// @param src  the same of the source
    Status Convert(ImageDescriptor (&dst)[2], const ImageDescriptor (&src)[2]);

private:
    Status MakeReady();

    WorkerTeam team_;
    ImageConverterPtr converters_[2];
};

/// Views of the fields of a picture whose planes need not be complete: [0] the first line's.
Status FieldViews(ImageDescriptor (&fields)[2], const ImageDescriptor& frame);

}  // namespace KorvaneSoftware
