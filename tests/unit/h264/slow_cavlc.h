// Writes residual blocks of CAVLC the slow way: the rules of ITU-T H.264 clause 9.2 turned round, by search.
#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

#include "h264/parsing/cavlc_codes.h"
#include "support/h264_bits.h"

namespace h264 {

inline void WriteCode(BitWriter& writer, const char* code) {
    for (; *code != 0; ++code) writer.Flag(*code == '1');
}

/// Finds the level_prefix under which the decoder's formula of clause 9.2.2.1 reaches `level`.
inline void WriteLevel(BitWriter& writer, int level, unsigned suffixLength, bool lessTwo) {
    const int code = (level > 0 ? 2 * level - 2 : -2 * level - 1) - (lessTwo ? 2 : 0);
    for (int prefix = 0; prefix < 32; ++prefix) {
        int size = static_cast<int>(suffixLength);
        if (prefix == 14 && suffixLength == 0) size = 4;
        if (prefix >= 15) size = prefix - 3;
        int base = (prefix < 15 ? prefix : 15) << suffixLength;
        if (prefix >= 15 && suffixLength == 0) base += 15;
        if (prefix >= 16) base += (1 << (prefix - 3)) - 4096;
        if (code < base || code >= base + (1 << size)) continue;
        for (int i = 0; i < prefix; ++i) writer.Flag(false);
        writer.Flag(true).U(static_cast<unsigned>(size), static_cast<std::uint32_t>(code - base));
        return;
    }
    std::abort();
}

/// `levels` in scan order, 4, 8, 15 or 16 of them; `codeClass` numbers the columns of coeff_token.
inline unsigned WriteCavlcBlock(BitWriter& writer, const std::vector<int>& levels, unsigned codeClass) {
    namespace cavlc = KorvaneSoftware::cavlc;
    std::vector<int> values;
    std::vector<unsigned> runs;
    unsigned run = 0;
    for (int level : levels) {
        if (level == 0) {
            ++run;
            continue;
        }
        values.insert(values.begin(), level);
        runs.insert(runs.begin(), run);
        run = 0;
    }
    const unsigned total = static_cast<unsigned>(values.size());
    unsigned ones = 0;
    while (ones < 3 && ones < total && std::abs(values[ones]) == 1) ++ones;
    WriteCode(writer, cavlc::kCoeffTokenCodes[codeClass][total][ones]);
    if (total == 0) return 0;
    unsigned suffixLength = total > 10 && ones < 3 ? 1 : 0;
    for (unsigned i = 0; i < total; ++i) {
        if (i < ones) {
            writer.Flag(values[i] < 0);
            continue;
        }
        WriteLevel(writer, values[i], suffixLength, i == ones && ones < 3);
        if (suffixLength == 0) suffixLength = 1;
        if (std::abs(values[i]) > (3 << (suffixLength - 1)) && suffixLength < 6) ++suffixLength;
    }
    unsigned zeros = 0;
    for (unsigned r : runs) zeros += r;
    if (total < levels.size()) {
        const char* code = levels.size() == 4   ? cavlc::kTotalZerosCodes420[total - 1][zeros]
                           : levels.size() == 8 ? cavlc::kTotalZerosCodes422[total - 1][zeros]
                                                : cavlc::kTotalZerosCodes[total - 1][zeros];
        WriteCode(writer, code);
    }
    for (unsigned i = 0; i + 1 < total && zeros > 0; ++i) {
        WriteCode(writer, cavlc::kRunBeforeCodes[zeros < 7 ? zeros - 1 : 6][runs[i]]);
        zeros -= runs[i];
    }
    return total;
}

}  // namespace h264
