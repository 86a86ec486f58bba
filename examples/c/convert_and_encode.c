/* Converts a frame of UYVY video and compresses the result as Motion-JPEG, in C11. */
#define COBJMACROS
#include <pixmorph/pixmorph.h>
#include <stdio.h>

enum { kWidth = 640, kHeight = 360, kRoom = 1 << 20, kMotionJpeg = 9 };

/* Vertical bars at 75%: U, Y, V, Y for each pair of pixels. */
static void DrawBars(uint8_t* uyvy) {
    static const uint8_t bars[][3] = {{128, 180, 128}, {44, 168, 136}, {63, 133, 52}, {109, 51, 212}, {212, 28, 120}};
    for (int y = 0; y < kHeight; ++y)
        for (int pair = 0; pair < kWidth / 2; ++pair) {
            const uint8_t* const bar = bars[pair * 5 / (kWidth / 2)];
            uint8_t* const to = uyvy + (y * kWidth / 2 + pair) * 4;
            to[0] = bar[0];
            to[1] = to[3] = bar[1];
            to[2] = bar[2];
        }
}

static HRESULT ConvertFrame(uint8_t* bgra, const uint8_t* uyvy) {
    IColorConversion* conversion = NULL;
    HRESULT result = PixmorphCreateInstance(&CLSID_Pixmorph, &IID_IColorConversion, (void**)&conversion);
    if (FAILED(result)) return result;
    const uint8_t* const from[4] = {uyvy};
    const int32_t fromStrides[4] = {kWidth * 2};
    uint8_t* const to[4] = {bgra};
    const int32_t toStrides[4] = {kWidth * 4};
    result = IColorConversion_Pixmorph(conversion, to, toStrides, from, fromStrides, kWidth, kHeight,
                                       PIXMORPH_BGRA_TOP_DOWN, PIXMORPH_UYVY + PIXMORPH_BT709);
    IColorConversion_Release(conversion);
    return result;
}

static HRESULT EncodeFrame(uint8_t* coded, uint32_t* codedSize, const uint8_t* bgra) {
    IVideoEncoder* encoder = NULL;
    HRESULT result = PixmorphCreateInstance(&CLSID_VideoCodec, &IID_IVideoEncoder, (void**)&encoder);
    if (FAILED(result)) return result;
    result = IVideoEncoder_EncSetFormat(encoder, kMotionJpeg, kWidth, kHeight);
    if (SUCCEEDED(result)) result = IVideoEncoder_EncSetQuality(encoder, 9000);
    if (SUCCEEDED(result)) {
        /* Codecs take RGB by its bottom line: of a top-down picture the last one, with a negative stride. */
        const uint8_t* const from[4] = {bgra + (kHeight - 1) * kWidth * 4};
        const int32_t fromStrides[4] = {-kWidth * 4};
        result = IVideoEncoder_Encode(encoder, coded, kRoom, codedSize, from, fromStrides, PIXMORPH_BGRA);
    }
    IVideoEncoder_Release(encoder);
    return result;
}

int main(void) {
    static uint8_t uyvy[kWidth * kHeight * 2], bgra[kWidth * kHeight * 4], coded[kRoom];
    uint32_t codedSize = 0;
    DrawBars(uyvy);
    if (FAILED(ConvertFrame(bgra, uyvy))) return 1;
    if (FAILED(EncodeFrame(coded, &codedSize, bgra))) return 1;
    printf("first pixel: blue %d, green %d, red %d; %u bytes of Motion-JPEG\n", bgra[0], bgra[1], bgra[2], codedSize);

    /* White at 75% comes out grey and the frame starts as every JPEG does. */
    const int isGrey = bgra[0] == bgra[1] && bgra[1] == bgra[2] && bgra[0] > 185 && bgra[0] < 197;
    return isGrey && codedSize > 2 && coded[0] == 0xFF && coded[1] == 0xD8 && DllCanUnloadNow() == S_OK ? 0 : 1;
}
