// What the title engine offers: premultiplied overlays built and laid over video, and their run-length form.
#pragma once

#include "titles/title_mixer.h"
#include "titles/title_runs.h"
