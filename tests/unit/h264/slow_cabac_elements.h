// Writes the elements of CABAC slices from the standard's own tables: the strings of bins of ITU-T H.264 clause 9.3.2
// and, for each bin, the context of Table 9-39.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "slow_cabac.h"

namespace h264 {

/// mb_type of I slices but I_PCM, Table 9-36, put together from its columns; the second bin is the terminating one.
inline std::string IntraTypeBins(unsigned type) {
    if (type == 0) return "0";
    if (type == 25) return "11";
    static const char* const kChroma[3] = {"0", "10", "11"};
    static const char* const kMode[4] = {"00", "01", "10", "11"};
    std::string bins = type < 13 ? "100" : "101";
    bins += kChroma[(type - 1) / 4 % 3];
    bins += kMode[(type - 1) % 4];
    return bins;
}

inline const char* const kPTypeBins[4] = {"000", "011", "010", "001"};
inline const char* const kBTypeBins[23] = {"0",       "100",     "101",     "110000",  "110001",  "110010",
                                           "110011",  "110100",  "110101",  "110110",  "110111",  "111110",
                                           "1110000", "1110001", "1110010", "1110011", "1110100", "1110101",
                                           "1110110", "1110111", "1111000", "1111001", "111111"};
inline const char* const kPSubTypeBins[4] = {"1", "00", "011", "010"};
inline const char* const kBSubTypeBins[13] = {"0",      "100",    "101",    "11000",  "11001", "11010", "11011",
                                              "111000", "111001", "111010", "111011", "11110", "11111"};

/// Table 9-39 for an element whose contexts begin at `offset`; 276 is the terminating bin.
inline unsigned BinContext(unsigned offset, unsigned index, const std::string& bins, unsigned increment) {
    const auto b = [&](unsigned i) { return bins[i] == '1'; };
    const auto pick = [&](std::initializer_list<unsigned> increments) {
        return offset + *(increments.begin() + std::min<std::size_t>(index, increments.size() - 1));
    };
    switch (offset) {
        case 3:
            if (index == 1) return 276;
            if (index == 4) return offset + (b(3) ? 5 : 6);
            if (index == 5) return offset + (b(3) ? 6 : 7);
            return pick({increment, 0, 3, 4, 0, 0, 7});
        case 14:
            if (index == 2) return offset + (b(1) ? 3 : 2);
            return pick({0, 1});
        case 17:
        case 32:
            if (index == 1) return 276;
            if (index == 4) return offset + (b(3) ? 2 : 3);
            return pick({0, 0, 1, 2, 0, 3});
        case 21:
            return pick({0, 1, 2});
        case 27:
            if (index == 2) return offset + (b(1) ? 4 : 5);
            return pick({increment, 3, 0, 5});
        case 36:
            if (index == 2) return offset + (b(1) ? 2 : 3);
            return pick({0, 1, 0, 3});
        case 40:
        case 47:
            return pick({increment, 3, 4, 5, 6});
        case 54:
            return pick({increment, 4, 5});
        case 60:
            return pick({increment, 2, 3});
        case 64:
            return pick({increment, 3});
        case 68:
        case 69:
            return offset;
        default:
            return offset + increment;  // Flags of one bin.
    }
}

class SlowElementWriter {
public:
    explicit SlowElementWriter(const SlowContexts& start) : coder(start) {}

    void Bins(unsigned offset, const std::string& bins, unsigned increment = 0) {
        for (unsigned i = 0; i < bins.size(); ++i) {
            const unsigned context = BinContext(offset, i, bins, increment);
            if (context == 276) {
                coder.Terminate(bins[i] == '1');
            } else {
                coder.Bin(context, bins[i] == '1');
            }
        }
    }
    void MvdComponent(unsigned offset, int value, unsigned increment) {
        const unsigned magnitude = static_cast<unsigned>(std::abs(value));
        Bins(offset, std::string(std::min(magnitude, 9u), '1') + (magnitude < 9 ? "0" : ""), increment);
        if (magnitude >= 9) ExpGolomb(3, magnitude - 9);
        if (magnitude != 0) coder.Bypass(value < 0);
    }
    void QpDelta(int value, unsigned increment) {
        const unsigned code = static_cast<unsigned>(value > 0 ? 2 * value - 1 : -2 * value);
        Bins(60, std::string(code, '1') + "0", increment);
    }
    void RefIdx(unsigned value, unsigned increment) { Bins(54, std::string(value, '1') + "0", increment); }
    void ChromaMode(unsigned value, unsigned increment) {
        Bins(64, std::string(value, '1') + (value < 3 ? "0" : ""), increment);
    }
    void ExpGolomb(unsigned k, unsigned value) {
        for (; value >= 1u << k; ++k) {
            coder.Bypass(1);
            value -= 1u << k;
        }
        coder.Bypass(0);
        while (k-- > 0) coder.Bypass(value >> k & 1);
    }

    /// A block with a level that is not 0, behind its coded_block_flag. `category` is ctxBlockCat, `numC8x8` counts for
    /// chroma DC, the two functions give ctxIdxInc of Table 9-43 for category 5.
    template <class Significant, class Last>
    void Block(const std::vector<int>& levels, unsigned category, bool field, unsigned numC8x8,
               const Significant& significant8x8, const Last& last8x8) {
        static const unsigned kFlagOffset[6] = {0, 15, 29, 44, 47, 0};
        static const unsigned kLevelOffset[6] = {0, 10, 20, 30, 39, 0};
        const unsigned significant =
            (category == 5 ? (field ? 436 : 402) : (field ? 277 : 105)) + kFlagOffset[category];
        const unsigned last = (category == 5 ? (field ? 451 : 417) : (field ? 338 : 166)) + kFlagOffset[category];
        const unsigned level = (category == 5 ? 426 : 227) + kLevelOffset[category];
        const std::size_t size = levels.size();
        std::size_t lastIndex = 0;
        for (std::size_t i = 0; i < size; ++i) {
            if (levels[i] != 0) lastIndex = i;
        }
        for (unsigned i = 0; i + 1 < size; ++i) {
            const unsigned common = category == 3 ? std::min(i / numC8x8, 2u) : i;
            coder.Bin(significant + (category == 5 ? significant8x8(i, field) : common), levels[i] != 0);
            if (levels[i] == 0) continue;
            coder.Bin(last + (category == 5 ? last8x8(i) : common), i == lastIndex);
            if (i == lastIndex) break;
        }
        unsigned ones = 0;
        unsigned greater = 0;
        for (std::size_t i = size; i-- > 0;) {
            if (levels[i] == 0) continue;
            const unsigned minus1 = static_cast<unsigned>(std::abs(levels[i])) - 1;
            for (unsigned bin = 0; bin < 14; ++bin) {
                const unsigned increment = bin == 0 ? (greater != 0 ? 0 : std::min(4u, 1 + ones))
                                                    : 5 + std::min(4 - (category == 3 ? 1u : 0u), greater);
                coder.Bin(level + increment, bin < minus1);
                if (bin >= minus1) break;
            }
            if (minus1 >= 14) ExpGolomb(0, minus1 - 14);
            coder.Bypass(levels[i] < 0);
            if (minus1 == 0) {
                ++ones;
            } else {
                ++greater;
            }
        }
    }

    SlowCabacEncoder coder;
};

}  // namespace h264
