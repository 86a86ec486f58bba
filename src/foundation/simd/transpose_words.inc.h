// Included inside the unnamed namespace of a set. In registers wider than 16 bytes each 16 bytes are a block of their own.

/// Transposes 8x8 words, one row to a register.
void TransposeWords(Vec* v) {
    Vec a[8], b[8];
    for (int i = 0; i < 4; ++i) {
        a[2 * i] = UnpackLow16(v[2 * i], v[2 * i + 1]);
        a[2 * i + 1] = UnpackHigh16(v[2 * i], v[2 * i + 1]);
    }
    for (int i = 0; i < 2; ++i) {
        b[4 * i] = UnpackLow32(a[4 * i], a[4 * i + 2]);
        b[4 * i + 1] = UnpackHigh32(a[4 * i], a[4 * i + 2]);
        b[4 * i + 2] = UnpackLow32(a[4 * i + 1], a[4 * i + 3]);
        b[4 * i + 3] = UnpackHigh32(a[4 * i + 1], a[4 * i + 3]);
    }
    for (int i = 0; i < 4; ++i) {
        v[2 * i] = UnpackLow64(b[i], b[i + 4]);
        v[2 * i + 1] = UnpackHigh64(b[i], b[i + 4]);
    }
}
