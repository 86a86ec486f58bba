// Streams with known frames through the decoder: those that lie beside the source tree, a selection that has every tool
// of the standard, and one that the test makes itself.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "conformance/generated_stream.h"
#include "conformance/stream_check.h"
#include "support/features.h"

namespace h264 {
namespace {

/// Streams by what only they, or they first of all, show. All of the small ones are run besides.
const std::set<std::string> kSelection = {
    "BA1_Sony_D.jsv",                            // CAVLC, one slice
    "BA3_SVA_C.264",                             // Extended profile
    "BAMQ2_JVC_C.264",                           // mb_qp_delta
    "CVSE2_Sony_B.jsv",                          // SEI
    "CVSEFDFT3_Sony_E.jsv",                      // a lone field
    "CVBS3_Sony_C.jsv",                          // B pictures, direct modes
    "CAQP1_Sony_B.jsv",                          // chroma_qp_index_offset
    "HCBP2_HHI_A.264",                           // hierarchical coding
    "MIDR_MW_D.264",                             // several IDR pictures
    "MPS_MW_A.264",                              // several parameter sets
    "MR1_BT_A.h264",                             // several references
    "MR2_TANDBERG_E.264",                        // reordered lists
    "NRF_MW_E.264",                              // pictures that are no reference
    "SL1_SVA_B.264",                             // several slices
    "CABACI3_Sony_B.jsv",                        // CABAC, I_PCM and constrained intra prediction
    "FRExt1_Panasonic.avc",                      // 8x8 transform
    "FRExt_MMCO4_Sony_B.264",                    // long-term references, gaps in frame_num
    "HCAFF1_HHI.264",                            // field pictures
    "HCAMFF1_HHI.264",                           // MBAFF
    "Freh7_B.264",                               // PAFF and MBAFF
    "CVPCMNL1_SVA_C_t4.264",                     // I_PCM in CAVLC
    "PPH10I1_Panasonic_A_t2.264",                // 10 bits
    "field_cabac_poc1.264",                      // pic_order_cnt_type 1
    "field_cavlc_wpb_implicit.264",              // implicit weights of fields
    "mbaff_cabac_wp_explicit.264",               // explicit weights in MBAFF
    "mbaff_cavlc_constrained_intra_slices.264",  // constrained intra prediction and slices in MBAFF
    "paff_mbaff_cabac_hier_mmco.264",            // commands of reference marking over all structures
    "high_mbaff_cabac_8x8_scaling.264",          // scaling matrices
    "high_paff_mbaff_cabac_8x8_chromaqp.264",    // second_chroma_qp_index_offset
    "hi422_10_paff_mbaff_cabac.264",             // 4:2:2 of 10 bits in all structures
    "hi422_10_field_cavlc.264",                  // the same in CAVLC
    "hi422_intra10_frame_cavlc_sd.264",          // intra profile
    "hi422_8_cabac.264",                         // 4:2:2 of 8 bits
    "high_intra_refresh_slicesize.264",          // many slices, no IDR pictures after the first
    "high_mbaff_tff_temporal.264",               // temporal direct in MBAFF
    "MVCDS-4.264",                               // units of other views
    "edge264_pps_scaling_fallback.264",          // fall-back rule B
    "openh264_SarVui.264",                       // cropping
    "HPCVMOLQ_BRCM_B_t31.264",                   // monochrome, to be refused
};
constexpr std::uintmax_t kSmallStream = 20000;

#ifdef PIXMORPH_THREAD_SANITIZER
// All that is small, at one level: the instrumented build takes twenty times as long.
constexpr std::uintmax_t kLargestStream = 40000;
#else
constexpr std::uintmax_t kLargestStream = UINTMAX_MAX;
#endif

const std::set<std::string> kRefused = {"HPCAMOLQ_BRCM_B_t31.264", "HPCVMOLQ_BRCM_B_t31.264"};

void CheckSelection(const std::vector<Way>& ways) {
    for (const auto& file : StreamFiles()) {
        const std::string name = file.filename().string();
        const std::uintmax_t size = std::filesystem::file_size(file);
        if (size > (kSelection.count(name) == 0 ? kSmallStream : kLargestStream)) continue;
        StreamCheck check(file);
        EXPECT_EQ(check.IsRefused(), kRefused.count(name) != 0) << name;
        const std::size_t expected = check.IsRefused() ? 0 : check.ExpectedFrames();
        for (const Way& way : ways) {
            const Outcome outcome = check.Decode(way);
            EXPECT_TRUE(outcome.Matches(expected)) << name << ", " << way.name << ": " << outcome.Text(expected);
        }
    }
}

TEST(H264Conformance, LibraryOnOneTwoAndFourThreads) {
    const ClassEntry entry = LoadClassEntry(PIXMORPH_LIBRARY_FILE);
    ASSERT_NE(entry, nullptr);
    CheckSelection({{"1 thread", entry, 1}, {"2 threads", entry, 2}, {"4 threads", entry, 4}});
}

class H264ConformanceAtLevel : public testing::TestWithParam<std::uint32_t> {};

TEST_P(H264ConformanceAtLevel, TwoThreads) {
    CheckSelection({{"features " + std::to_string(GetParam()), LinkedClassEntry(), 2, GetParam()}});
}

std::vector<std::uint32_t> Levels() {
    std::vector<std::uint32_t> levels = pixmorph_test::FeatureLevels();
#ifdef PIXMORPH_THREAD_SANITIZER
    levels.erase(levels.begin(), levels.end() - 1);
#endif
    return levels;
}
INSTANTIATE_TEST_SUITE_P(Each, H264ConformanceAtLevel, testing::ValuesIn(Levels()));

TEST(H264Conformance, AStreamOfTheTestsOwn) {
    const GeneratedStream generated;
    const Stream stream = MakeStream(generated.bytes);
    EXPECT_EQ(stream.shape.width, 42u);
    EXPECT_EQ(stream.shape.height, 24u);
    ASSERT_EQ(stream.samples.size(), generated.frames.size());
    std::vector<unsigned> presented;
    for (unsigned threads : {1u, 2u, 4u}) {
        presented.clear();
        std::vector<Bytes> frames;
        const FrameSink sink = [&](const Bytes& picture) { frames.push_back(picture); };
        EXPECT_EQ(DecodeInward(stream, {threads}, sink, &presented), "");
        EXPECT_EQ(frames, generated.frames) << threads << " threads";
        EXPECT_EQ(presented, std::vector<unsigned>(generated.frames.size(), 1));
    }
    const ClassEntry library = LoadClassEntry(PIXMORPH_LIBRARY_FILE);
    for (const ClassEntry entry : {library, LinkedClassEntry()}) {
        ASSERT_NE(entry, nullptr);
        for (unsigned threads : {1u, 2u, 4u}) {
            std::vector<Bytes> frames;
            PretendProcessors(threads);
            const std::string error = DecodeThroughComponent(stream, entry, presented, generated.frames.size(),
                                                             [&](const Bytes& picture) { frames.push_back(picture); });
            PretendProcessors(0);
            EXPECT_EQ(error, "");
            EXPECT_EQ(frames, generated.frames);
        }
    }
}

}  // namespace
}  // namespace h264
