// Random numbers that are the same on every machine, as unsigned.
#pragma once

#include <random>

namespace h264 {

class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    unsigned operator()() { return static_cast<unsigned>(engine_()); }
    unsigned Below(unsigned limit) { return (*this)() % limit; }

private:
    std::mt19937 engine_;
};

}  // namespace h264
