// Pixmorph for C++20: pictures as typed views, objects that own their component, results that say why. Header only; all
// of it calls the component interface of pixmorph.h, which stays the contract below and at hand through Get().
//
//   std::vector<std::uint8_t> memory(pixmorph::MemoryBytes(pixmorph::Format::UYVY, {1920, 1080}));
//   const pixmorph::View<pixmorph::Format::UYVY> video(memory, {1920, 1080});
//
// A call that cannot work does not compile (a conversion that does not exist, a const picture to write to); one that
// turns out wrong returns a Status that names the method and the reason.
#ifndef PIXMORPH_PIXMORPH_HPP
#define PIXMORPH_PIXMORPH_HPP

#include <pixmorph/cpp/codec.hpp>
#include <pixmorph/cpp/converter.hpp>
#include <pixmorph/cpp/deinterlacer.hpp>
#include <pixmorph/cpp/format.hpp>
#include <pixmorph/cpp/picture.hpp>
#include <pixmorph/cpp/status.hpp>
#include <pixmorph/cpp/title_mixer.hpp>

#endif  // PIXMORPH_PIXMORPH_HPP
