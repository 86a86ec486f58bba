// The pipeline over the stand-in for the macroblock layer, one sample a call.
#pragma once

#include <gtest/gtest.h>

#include "h264/pipeline/fusion_core.h"
#include "support/h264_samples.h"
#include "support/h264_stand_in.h"

namespace h264 {

struct Core {
    explicit Core(unsigned threads) : core(layers, threads) { EXPECT_EQ(core.Initialize({}), IMG_OK); }

    Status Decode(const std::vector<std::uint8_t>& bytes, double time = 0) {
        CodedSample coded(bytes.data(), bytes.size(), time);
        const Status status = core.Decode(&picture, &coded);
        left = coded.GetDataSize();
        return status;
    }
    Status Flush() { return core.Decode(&picture, nullptr); }

    StandInLayers layers;
    CH264FusionCore core;
    PictureSample picture;
    std::uint64_t left = 0;
};

}  // namespace h264
