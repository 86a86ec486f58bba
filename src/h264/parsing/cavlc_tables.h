// Look-up tables of CAVLC, made from its codes when the library is compiled.
#pragma once

#include <bit>
#include <cstdint>

#include "h264/parsing/cavlc_codes.h"

namespace KorvaneSoftware::cavlc {

/// What a code stands for; `length` is 0 where there is no code.
struct Symbol {
    std::uint8_t length;
    std::uint8_t value;
};

/// Finds a code by its leading zeros and the bits behind its first one. The codes of CAVLC that are rare are long for
/// their zeros, so that a table stays within a few cache lines.
template <unsigned MostZeros, unsigned TailBits>
struct TPrefixTable {
    Symbol symbols[MostZeros + 1][1 << TailBits];

    /// `bits` are the next 32 of the stream.
    Symbol Find(std::uint32_t bits) const {
        const unsigned zeros = static_cast<unsigned>(std::countl_zero(bits | 1u << (31 - MostZeros)));
        return symbols[zeros][bits << zeros << 1 >> (32 - TailBits)];
    }

    /// Compiles only with codes that fit and of which none begins another one.
    consteval void Add(const char* code, unsigned value) {
        unsigned zeros = 0;
        while (code[zeros] == '0') ++zeros;
        unsigned length = zeros;
        unsigned tail = 0;
        unsigned tailBits = 0;
        const bool allZeros = code[zeros] == 0;
        if (!allZeros) {
            for (length = zeros + 1; code[length] != 0; ++length, ++tailBits) {
                tail = tail * 2 + (code[length] == '1' ? 1 : 0);
            }
        }
        if (zeros > MostZeros || tailBits > TailBits) throw "the code does not fit";
        const unsigned open = TailBits - tailBits;
        for (unsigned z = zeros; z <= (allZeros ? MostZeros : zeros); ++z) {
            for (unsigned i = 0; i < 1u << open; ++i) {
                Symbol& symbol = symbols[z][(tail << open) + i];
                if (symbol.length != 0) throw "the code begins another one";
                symbol = {static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(value)};
            }
        }
    }
};

/// Values are TotalCoeff x 4 + TrailingOnes.
template <unsigned MostZeros, unsigned TailBits>
consteval TPrefixTable<MostZeros, TailBits> MakeCoeffToken(unsigned codeClass) {
    TPrefixTable<MostZeros, TailBits> table = {};
    for (unsigned total = 0; total <= 16; ++total) {
        for (unsigned ones = 0; ones < 4; ++ones) {
            const char* const code = kCoeffTokenCodes[codeClass][total][ones];
            if (code != nullptr) table.Add(code, total * 4 + ones);
        }
    }
    return table;
}

template <unsigned MostZeros, unsigned TailBits, unsigned Values>
consteval TPrefixTable<MostZeros, TailBits> MakeTable(const char* const (&codes)[Values]) {
    TPrefixTable<MostZeros, TailBits> table = {};
    for (unsigned value = 0; value < Values; ++value) {
        if (codes[value] != nullptr) table.Add(codes[value], value);
    }
    return table;
}

template <unsigned MostZeros, unsigned TailBits, unsigned Rows>
struct TTableRows {
    TPrefixTable<MostZeros, TailBits> rows[Rows];
};

template <unsigned MostZeros, unsigned TailBits, unsigned Rows, unsigned Values>
consteval TTableRows<MostZeros, TailBits, Rows> MakeRows(const char* const (&codes)[Rows][Values]) {
    TTableRows<MostZeros, TailBits, Rows> made = {};
    for (unsigned row = 0; row < Rows; ++row) made.rows[row] = MakeTable<MostZeros, TailBits>(codes[row]);
    return made;
}

inline constexpr TPrefixTable<15, 3> kCoeffToken[3] = {MakeCoeffToken<15, 3>(0), MakeCoeffToken<15, 3>(1),
                                                       MakeCoeffToken<15, 3>(2)};
inline constexpr TPrefixTable<6, 5> kCoeffTokenFixed = MakeCoeffToken<6, 5>(3);
inline constexpr TPrefixTable<7, 2> kCoeffToken420 = MakeCoeffToken<7, 2>(4);
inline constexpr TPrefixTable<11, 3> kCoeffToken422 = MakeCoeffToken<11, 3>(5);
inline constexpr auto kTotalZeros = MakeRows<9, 2>(kTotalZerosCodes);
inline constexpr auto kTotalZeros420 = MakeRows<3, 1>(kTotalZerosCodes420);
inline constexpr auto kTotalZeros422 = MakeRows<5, 2>(kTotalZerosCodes422);
inline constexpr auto kRunBefore = MakeRows<11, 2>(kRunBeforeCodes);

/// coded_block_pattern of me(v), Table 9-4 for 4:2:0 and 4:2:2: [Intra_4x4 and Intra_8x8, inter].
inline constexpr std::uint8_t kCodedBlockPattern[2][48] = {
    {47, 31, 15, 0,  23, 27, 29, 30, 7, 11, 13, 14, 39, 43, 45, 46, 16, 3,  5,  10, 12, 19, 21, 26,
     28, 35, 37, 42, 44, 1,  2,  4,  8, 17, 18, 20, 24, 6,  9,  22, 25, 32, 33, 34, 36, 40, 38, 41},
    {0,  16, 1,  2,  4,  8,  32, 3,  5,  10, 12, 15, 47, 7,  11, 13, 14, 6,  9,  31, 35, 37, 42, 44,
     33, 34, 36, 40, 39, 43, 45, 46, 17, 18, 20, 24, 19, 21, 26, 28, 23, 27, 29, 30, 22, 25, 38, 41}};

}  // namespace KorvaneSoftware::cavlc
