// Samples of a row in lanes of twice their width. Included inside the unnamed namespace of a set.

struct ByteLanes {
    using Sample = std::uint8_t;
    static constexpr int kSamples = static_cast<int>(kVecBytes / 2);

    // Four samples are the only count below that of a register.
    template <int kCount>
    static Vec LoadSamples(const Sample* p) {
        if constexpr (kCount < kSamples) {
            int bytes;
            __builtin_memcpy(&bytes, p, sizeof(bytes));
            return UnpackLow8(Set32(bytes), Zero());
        } else {
            return LoadWiden8(p);
        }
    }
    template <int kCount>
    static void StoreSamples(Sample* p, Vec v) {
        if constexpr (kCount < kSamples) {
            const Vec bytes = Pack16To8u(v, v);
            __builtin_memcpy(p, &bytes, kCount);
        } else {
            StoreNarrow16To8(p, v);
        }
    }
    // A row as it is, the means of two, two rows as pairs of samples, and the sums of pairs' products with two small
    // weights, one to a lane.
    template <int kCount>
    static Vec LoadRow(const Sample* p) {
        if constexpr (kCount < kSamples) {
            int bytes;
            __builtin_memcpy(&bytes, p, sizeof(bytes));
            return Set32(bytes);
        } else {
            return PreUnpack(LoadHalf(p));
        }
    }
    static Vec MeanOfRows(Vec a, Vec b) { return Avg8(a, b); }
    static Vec Pairs(Vec upper, Vec lower) { return UnpackLow8(upper, lower); }
    static Vec PairWeights(int first, int second) { return Set16((first & 0xFF) | second * 256); }
    static Vec MultiplyPairs(Vec pairs, Vec weights) { return MulAddPairs8(pairs, weights); }
    static Vec Add(Vec a, Vec b) { return Add16(a, b); }
    static Vec Sub(Vec a, Vec b) { return Sub16(a, b); }
    template <int N>
    static Vec ShiftLeft(Vec a) {
        return ShiftLeft16<N>(a);
    }
    template <int N>
    static Vec ShiftRight(Vec a) {
        return ShiftRight16s<N>(a);
    }
    static Vec Set(int value) { return Set16(value); }
    static Vec Clip(Vec v, Vec maxSample) { return Min16s(Max16s(v, Zero()), maxSample); }
    static Vec Multiply(Vec values, Vec weights) { return MulLow16(values, weights); }
};

struct WordLanes {
    using Sample = std::uint16_t;
    static constexpr int kSamples = static_cast<int>(kVecBytes / 4);

    template <int kCount>
    static Vec LoadSamples(const Sample* p) {
        return LoadWiden16(p);
    }
    template <int kCount>
    static void StoreSamples(Sample* p, Vec v) {
        StoreNarrow32To16(p, v);
    }
    template <int kCount>
    static Vec LoadRow(const Sample* p) {
        return PreUnpack(LoadHalf(p));
    }
    static Vec MeanOfRows(Vec a, Vec b) { return Avg16(a, b); }
    static Vec Pairs(Vec upper, Vec lower) { return UnpackLow16(upper, lower); }
    static Vec PairWeights(int first, int second) { return Set32((first & 0xFFFF) | second * 65536); }
    static Vec MultiplyPairs(Vec pairs, Vec weights) { return MulAddPairs16(pairs, weights); }
    static Vec Add(Vec a, Vec b) { return Add32(a, b); }
    static Vec Sub(Vec a, Vec b) { return Sub32(a, b); }
    template <int N>
    static Vec ShiftLeft(Vec a) {
        return ShiftLeft32<N>(a);
    }
    template <int N>
    static Vec ShiftRight(Vec a) {
        return ShiftRight32s<N>(a);
    }
    static Vec Set(int value) { return Set32(value); }
    static Vec Clip(Vec v, Vec maxSample) { return Min32s(Max32s(v, Zero()), maxSample); }
    static Vec Multiply(Vec values, Vec weights) { return MulLow32(values, weights); }
};
