// Pictures from a general media tool (ffmpeg), which is run as a program of its own: clips to test with, and what the
// tool itself makes of them.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace interop {

/// A clip that the tool can read.
struct Clip {
    std::string name;
    std::string input;  ///< Options of the tool that name the clip.
    /// Pixels; 0 for a clip in a file, which is asked for them when they are first wanted.
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::string path = {};
};
/// How a test that fails names its clip.
inline void PrintTo(const Clip& clip, std::ostream* out) { *out << clip.name; }

/// Two clips that the tool draws: moving geometry in strong colours, and a zoom into fine detail.
std::vector<Clip> DrawnClips();

/// The clips of the directory that PIXMORPH_FOOTAGE names, or of the footage directory beside the source tree. Where
/// there are none, those that the tool draws.
std::vector<Clip> Clips();

/// Raw frames as the tool writes them: planes without padding, one after the other.
using Frames = std::vector<std::vector<std::uint8_t>>;

/// Decodes a clip, cut to a size of which every format takes a multiple (see CutWidth), through a chain of filters.
/// @param filters      what to do with it, in the tool's language; may be empty.
/// @param pixelFormat  the tool's name of the format wanted.
/// @param frameBytes   bytes of one frame of it.
/// @param frames       how many; fewer come only when the clip has no more.
Frames Decode(const Clip& clip, const std::string& filters, const std::string& pixelFormat, std::size_t frameBytes,
              std::size_t frames);

/// What the tool writes to its output for `options`.
/// @param complaints  receives what it says about errors.
std::vector<std::uint8_t> Output(const std::string& options, std::string& complaints);

/// What a command writes to its standard output. A command that fails is a failure of the test.
std::vector<std::uint8_t> OutputOf(const std::string& command);

/// Size of the part of a clip that tests work on: multiples of 32 and 8. 0 where the tool cannot tell.
std::uint32_t CutWidth(const Clip& clip);
std::uint32_t CutHeight(const Clip& clip);

/// Peak signal-to-noise ratio in decibels of `size` bytes; 100 for equal ones.
double Psnr(const std::uint8_t* a, const std::uint8_t* b, std::size_t size);

}  // namespace interop
