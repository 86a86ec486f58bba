// The layers of a processor put together; private to the files that make the classes.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

#include "h264/macroblock/decompressor.h"
#include "h264/macroblock/frame_processor.h"
#include "h264/macroblock/mbaff_processor.h"
#include "h264/macroblock/parser_cabac.h"
#include "h264/macroblock/parser_cavlc.h"
#include "h264/motion/decompressor_template.h"
#include "h264/reconstruction/constructor_high.h"
#include "h264/reconstruction/motion_compensation.h"

namespace KorvaneSoftware {

template <unsigned P, unsigned S, unsigned C, unsigned M, class Sample>
struct TH264Layers {
    using Base = std::conditional_t<S == 0, CH264Decompressor,
                                    std::conditional_t<S == 1, CH264DecompressorField, CH264DecompressorMBAFF>>;
    using Decompressor = TH264DecompressorTemplate<P, S, C, Sample, Base>;
    using MotionCompensation = TH264MotionCompensation<S, C, Sample, Decompressor>;
    template <unsigned kProfile, class = void>
    struct Construction {
        using Type = CH264ConstructorHigh<S, C, M, Sample, MotionCompensation>;
    };
    template <class Unused>
    struct Construction<1, Unused> {
        using Type = CH264Constructor<1, S, Sample, MotionCompensation>;
    };
    using Constructor = typename Construction<P>::Type;
    template <class Parser>
    using Processor =
        std::conditional_t<S == 2, TH264ProcessorMBAFF<P, Sample, Parser>, TH264Processor<P, Sample, Parser>>;
    using Cabac = Processor<TH264ParserCABAC<P, S, C, Sample, Constructor>>;
    using Cavlc = Processor<TH264ParserCAVLC<P, S, C, Sample, Constructor>>;
};

/// The six processors of a profile, format and depth. @param form  bits 0 to 2 of the index
/// @return null for a form that does not exist
template <unsigned P, unsigned C, unsigned M, class Sample>
std::unique_ptr<IH264Processor> MakeH264Processor(std::uint32_t form) {
    switch (form) {
        case 0:
            return std::make_unique<typename TH264Layers<P, 0, C, M, Sample>::Cavlc>();
        case 1:
            return std::make_unique<typename TH264Layers<P, 1, C, M, Sample>::Cavlc>();
        case 2:
            return std::make_unique<typename TH264Layers<P, 2, C, M, Sample>::Cavlc>();
        case 4:
            return std::make_unique<typename TH264Layers<P, 0, C, M, Sample>::Cabac>();
        case 5:
            return std::make_unique<typename TH264Layers<P, 1, C, M, Sample>::Cabac>();
        case 6:
            return std::make_unique<typename TH264Layers<P, 2, C, M, Sample>::Cabac>();
        default:
            return nullptr;
    }
}

/// Each in a file of its own, so that they compile side by side.
std::unique_ptr<IH264Processor> MakeMainProcessor(std::uint32_t form);
std::unique_ptr<IH264Processor> MakeHigh420Processor(std::uint32_t form, bool matrices);
std::unique_ptr<IH264Processor> MakeHigh422Processor(std::uint32_t form, bool matrices);
std::unique_ptr<IH264Processor> MakeDeep420Processor(std::uint32_t form, bool matrices);
std::unique_ptr<IH264Processor> MakeDeep422Processor(std::uint32_t form, bool matrices);

}  // namespace KorvaneSoftware
