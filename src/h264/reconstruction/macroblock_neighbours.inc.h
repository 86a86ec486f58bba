// Included inside an unnamed namespace by the plain forms of prediction of whole macroblocks and by the vector ones.

bool HasTop(std::uint32_t neighbours) { return (neighbours & NEIGHBOUR_TOP) != 0; }
bool HasLeft(std::uint32_t neighbours) { return (neighbours & NEIGHBOUR_LEFT) == NEIGHBOUR_LEFT; }
bool HasAll(std::uint32_t neighbours) {
    return HasTop(neighbours) && HasLeft(neighbours) && (neighbours & NEIGHBOUR_TOP_LEFT) != 0;
}

// Slope of a row or column of neighbours, in 32nds of a step. `at(-1)` is the corner.
template <int kLength, class At>
int Slope(At at) {
    int sum = 0;
    for (int i = 1; i <= kLength / 2; ++i) sum += i * (at(kLength / 2 - 1 + i) - at(kLength / 2 - 1 - i));
    return ((kLength == 16 ? 5 : 34) * sum + 32) >> 6;
}

// A plane through the neighbours: 32 times the sample at 0, 0 with the rounding, and the slopes.
struct Plane {
    int origin, across, down;
};

template <int kWidth, int kHeight, class Sample>
Plane PlaneOf(const Sample* samples, std::ptrdiff_t stride) {
    const auto above = [=](int x) { return int{samples[x - stride]}; };
    const auto left = [=](int y) { return int{samples[y * stride - 1]}; };
    Plane plane = {16 * (left(kHeight - 1) + above(kWidth - 1)) + 16, Slope<kWidth>(above), Slope<kHeight>(left)};
    plane.origin -= plane.across * (kWidth / 2 - 1) + plane.down * (kHeight / 2 - 1);
    return plane;
}
