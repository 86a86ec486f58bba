#include <cstdio>
#include <pixmorph/pixmorph.hpp>
#include <vector>

int main() {
    using namespace pixmorph;
    constexpr Size size{1920, 1080};
    std::vector<std::uint8_t> video(MemoryBytes(Format::UYVY, size), 128), screen(MemoryBytes(Format::BGRA, size));

    const Status status =
        Converter().Convert(View<Format::UYVY_BT709>(video, size), MutableView<Format::BGRA>(screen, size));
    std::printf("%s: blue %d, green %d, red %d\n", status.Message(), screen[0], screen[1], screen[2]);
    return status ? 0 : 1;
}
