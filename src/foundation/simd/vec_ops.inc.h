// Operations that have the same name at every register width; included by vec_sse41.h, vec_avx2.h and vec_avx512.h.
// Unpacks, packs, byte shuffles and byte shifts work within 128-bit lanes; FixPack, PreUnpack and FixUnpack restore
// memory order where it matters.

#define PIXMORPH_VEC_UNARY(name, op) \
    static inline Vec name(Vec a) { return {op(a.v)}; }
#define PIXMORPH_VEC_BINARY(name, op) \
    static inline Vec name(Vec a, Vec b) { return {op(a.v, b.v)}; }
#define PIXMORPH_VEC_SHIFT(name, op) \
    template <int N>                 \
    static inline Vec name(Vec a) {  \
        return {op(a.v, N)};         \
    }

PIXMORPH_VEC_BINARY(Add8, PIXMORPH_VEC_OP(add_epi8))
PIXMORPH_VEC_BINARY(Add16, PIXMORPH_VEC_OP(add_epi16))
PIXMORPH_VEC_BINARY(Add32, PIXMORPH_VEC_OP(add_epi32))
PIXMORPH_VEC_BINARY(Sub8, PIXMORPH_VEC_OP(sub_epi8))
PIXMORPH_VEC_BINARY(Sub16, PIXMORPH_VEC_OP(sub_epi16))
PIXMORPH_VEC_BINARY(Sub32, PIXMORPH_VEC_OP(sub_epi32))
PIXMORPH_VEC_BINARY(AddSat8u, PIXMORPH_VEC_OP(adds_epu8))
PIXMORPH_VEC_BINARY(SubSat8u, PIXMORPH_VEC_OP(subs_epu8))
PIXMORPH_VEC_BINARY(AddSat16s, PIXMORPH_VEC_OP(adds_epi16))
PIXMORPH_VEC_BINARY(SubSat16s, PIXMORPH_VEC_OP(subs_epi16))
PIXMORPH_VEC_BINARY(AddSat16u, PIXMORPH_VEC_OP(adds_epu16))
PIXMORPH_VEC_BINARY(SubSat16u, PIXMORPH_VEC_OP(subs_epu16))
PIXMORPH_VEC_BINARY(Avg8, PIXMORPH_VEC_OP(avg_epu8))    // (a + b + 1) >> 1
PIXMORPH_VEC_BINARY(Avg16, PIXMORPH_VEC_OP(avg_epu16))  // (a + b + 1) >> 1
PIXMORPH_VEC_BINARY(Max8u, PIXMORPH_VEC_OP(max_epu8))
PIXMORPH_VEC_BINARY(Max16s, PIXMORPH_VEC_OP(max_epi16))
PIXMORPH_VEC_BINARY(Min16s, PIXMORPH_VEC_OP(min_epi16))
PIXMORPH_VEC_BINARY(Max16u, PIXMORPH_VEC_OP(max_epu16))
PIXMORPH_VEC_BINARY(Min16u, PIXMORPH_VEC_OP(min_epu16))
PIXMORPH_VEC_BINARY(Max32s, PIXMORPH_VEC_OP(max_epi32))
PIXMORPH_VEC_BINARY(Min32s, PIXMORPH_VEC_OP(min_epi32))
PIXMORPH_VEC_BINARY(MulLow16, PIXMORPH_VEC_OP(mullo_epi16))
PIXMORPH_VEC_BINARY(MulHigh16s, PIXMORPH_VEC_OP(mulhi_epi16))
PIXMORPH_VEC_BINARY(MulHigh16u, PIXMORPH_VEC_OP(mulhi_epu16))
PIXMORPH_VEC_BINARY(MulHighRound16, PIXMORPH_VEC_OP(mulhrs_epi16))  // (a * b + 0x4000) >> 15
PIXMORPH_VEC_BINARY(MulLow32, PIXMORPH_VEC_OP(mullo_epi32))
PIXMORPH_VEC_BINARY(MulAddPairs16, PIXMORPH_VEC_OP(madd_epi16))    // i16 pairs to i32
PIXMORPH_VEC_BINARY(MulAddPairs8, PIXMORPH_VEC_OP(maddubs_epi16))  // u8 * i8 pairs to saturated i16
PIXMORPH_VEC_BINARY(Pack16To8s, PIXMORPH_VEC_OP(packs_epi16))
PIXMORPH_VEC_BINARY(Pack16To8u, PIXMORPH_VEC_OP(packus_epi16))
PIXMORPH_VEC_BINARY(Pack32To16s, PIXMORPH_VEC_OP(packs_epi32))
PIXMORPH_VEC_BINARY(Pack32To16u, PIXMORPH_VEC_OP(packus_epi32))
PIXMORPH_VEC_BINARY(UnpackLow8, PIXMORPH_VEC_OP(unpacklo_epi8))
PIXMORPH_VEC_BINARY(UnpackHigh8, PIXMORPH_VEC_OP(unpackhi_epi8))
PIXMORPH_VEC_BINARY(UnpackLow16, PIXMORPH_VEC_OP(unpacklo_epi16))
PIXMORPH_VEC_BINARY(UnpackHigh16, PIXMORPH_VEC_OP(unpackhi_epi16))
PIXMORPH_VEC_BINARY(UnpackLow32, PIXMORPH_VEC_OP(unpacklo_epi32))
PIXMORPH_VEC_BINARY(UnpackHigh32, PIXMORPH_VEC_OP(unpackhi_epi32))
PIXMORPH_VEC_BINARY(UnpackLow64, PIXMORPH_VEC_OP(unpacklo_epi64))
PIXMORPH_VEC_BINARY(UnpackHigh64, PIXMORPH_VEC_OP(unpackhi_epi64))
PIXMORPH_VEC_BINARY(Shuffle8, PIXMORPH_VEC_OP(shuffle_epi8))  // within 128-bit lanes
PIXMORPH_VEC_BINARY(And, PIXMORPH_VEC_BITOP(and))
PIXMORPH_VEC_BINARY(Or, PIXMORPH_VEC_BITOP(or))
PIXMORPH_VEC_BINARY(Xor, PIXMORPH_VEC_BITOP(xor))
PIXMORPH_VEC_BINARY(AndNot, PIXMORPH_VEC_BITOP(andnot))  // ~a & b
PIXMORPH_VEC_UNARY(Abs16, PIXMORPH_VEC_OP(abs_epi16))
PIXMORPH_VEC_UNARY(Abs32, PIXMORPH_VEC_OP(abs_epi32))
PIXMORPH_VEC_SHIFT(ShiftLeft16, PIXMORPH_VEC_OP(slli_epi16))
PIXMORPH_VEC_SHIFT(ShiftLeft32, PIXMORPH_VEC_OP(slli_epi32))
PIXMORPH_VEC_SHIFT(ShiftRight16u, PIXMORPH_VEC_OP(srli_epi16))
PIXMORPH_VEC_SHIFT(ShiftRight16s, PIXMORPH_VEC_OP(srai_epi16))
PIXMORPH_VEC_SHIFT(ShiftRight32u, PIXMORPH_VEC_OP(srli_epi32))
PIXMORPH_VEC_SHIFT(ShiftRight32s, PIXMORPH_VEC_OP(srai_epi32))

// Absolute difference of unsigned bytes.
static inline Vec AbsDiff8u(Vec a, Vec b) { return Or(SubSat8u(a, b), SubSat8u(b, a)); }

// Bytes (a, b, ...) shifted so that the register starts N bytes later within each lane, filled from `high`.
template <int N>
static inline Vec AlignRight(Vec high, Vec low) {
    return {PIXMORPH_VEC_OP(alignr_epi8)(high.v, low.v, N)};
}

// A shift whose count is known at run time only.
static inline Vec ShiftRight16uBy(Vec a, int count) {
    return {PIXMORPH_VEC_OP(srl_epi16)(a.v, _mm_cvtsi32_si128(count))};
}
static inline Vec ShiftRight32sBy(Vec a, int count) {
    return {PIXMORPH_VEC_OP(sra_epi32)(a.v, _mm_cvtsi32_si128(count))};
}

#undef PIXMORPH_VEC_OP
#undef PIXMORPH_VEC_BITOP
#undef PIXMORPH_VEC_UNARY
#undef PIXMORPH_VEC_BINARY
#undef PIXMORPH_VEC_SHIFT
