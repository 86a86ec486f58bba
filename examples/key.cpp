// Keys a title into the run-length stream that keying hardware takes, and walks through the stream.
#include <pixmorph/pixmorph.h>

#include <cstdio>
#include <cstring>
#include <vector>

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

int main() {
    constexpr std::uint32_t width = 720, height = 576, stride = 4 * width;

    // A premultiplied title that is empty but for an opaque white box of 160 by 100 pixels.
    std::vector<std::uint8_t> title(stride * height);
    for (std::uint32_t y = 300; y < 400; ++y) std::memset(&title[y * stride + 4 * 320], 255, 4 * 160);

    ComPtr<ITitleMixer> mixer;
    if (FAILED(CreateInstance(CLSID_TitleMixer, mixer))) return 1;

    // Room for the worst case, every group of 16 pixels visible and in a run of its own. The first counter cell is the
    // caller's and starts at 0; the write position comes right after it.
    std::vector<std::uint8_t> stream(4 + width / 16 * height * (48 + 4));
    auto* counter = reinterpret_cast<std::int32_t*>(stream.data());
    std::uint8_t* write = stream.data() + 4;
    // Lines go into the stream in memory order. A title lies bottom-up, and the device wants the top line first, so it
    // is handed over from its last line in memory, with a negative stride.
    if (FAILED(mixer->CompressToRLE(&write, &title[(height - 1) * stride], width, height,
                                    -static_cast<std::int32_t>(stride), &counter)))
        return 1;
    const auto size = static_cast<std::size_t>(write - stream.data());

    // Reading: a positive counter is followed by so many records of 48 bytes, a negative one counts empty groups.
    std::uint32_t visible = 0, empty = 0, runs = 0, firstRow = height;
    for (std::size_t at = 0; at < size; ++runs) {
        std::int32_t count = 0;
        std::memcpy(&count, &stream[at], 4);
        at += 4;
        if (count > 0) {
            if (visible == 0) firstRow = empty / (width / 16);
            visible += static_cast<std::uint32_t>(count);
            at += 48 * static_cast<std::size_t>(count);
        } else {
            empty += static_cast<std::uint32_t>(-count);
        }
    }
    std::printf("%zu bytes in %u runs: %u visible groups, %u empty ones, the first visible in line %u\n", size, runs,
                visible, empty, firstRow);
    const bool right = visible == 10 * 100 && empty == 45 * 576 - 1000 && firstRow == height - 400 && runs == 201;
    return right ? 0 : 1;
}
