// What the deinterlacing engine offers: a frame out of one field and its neighbours (CDeinterlacer), intermediate fields
// and mixes (CVideoInterpolator), and the deinterlacer of whole frames (CDeinterlaceFilterYADIF).
#pragma once

#include "deinterlace/deinterlace_filter_yadif.h"
#include "deinterlace/field_restoration.h"
#include "deinterlace/inward_video_deinterlacer.h"
#include "deinterlace/video_interpolator.h"
