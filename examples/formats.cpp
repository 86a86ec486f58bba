// Prints, in Markdown, what the library answers about itself: its classes and their interfaces, which picture formats
// convert into which, and its codecs. docs/formats.md holds this output; "formats --check docs/formats.md" tells
// whether it still is right. "formats --check-classes README.md" tells the same of the states in a table of classes.
#include <pixmorph/pixmorph.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

using KorvaneSoftware::ComPtr;
using KorvaneSoftware::CreateInstance;

namespace {

struct Class {
    const char* name;
    GUID id;
};
constexpr Class kClasses[] = {{"Pixmorph", CLSID_Pixmorph},
                              {"StretchImage", CLSID_StretchImage},
                              {"CopyMemory", CLSID_CopyMemory},
                              {"TitleMixer", CLSID_TitleMixer},
                              {"TitleMixer2", CLSID_TitleMixer2},
                              {"TitleMixer3", CLSID_TitleMixer3},
                              {"Y16ARLECompressor", CLSID_Y16ARLECompressor},
                              {"DeinterlaceMaker", CLSID_DeinterlaceMaker},
                              {"VideoInterpolation", CLSID_VideoInterpolation},
                              {"VideoDeinterlacer", CLSID_VideoDeinterlacer},
                              {"VideoCodec", CLSID_VideoCodec}};
constexpr Class kInterfaces[] = {{"IPixmorph", IID_IPixmorph},
                                 {"IColorConversion", IID_IColorConversion},
                                 {"IPixmorphYUVPlanar", IID_IPixmorphYUVPlanar},
                                 {"IPixmorphGamma", IID_IPixmorphGamma},
                                 {"IPixmorphToYUV420Planar", IID_IPixmorphToYUV420Planar},
                                 {"IStretchImage", IID_IStretchImage},
                                 {"IResizeImage", IID_IResizeImage},
                                 {"ICopyMemory", IID_ICopyMemory},
                                 {"ITitleMixer", IID_ITitleMixer},
                                 {"ITitleMixer2", IID_ITitleMixer2},
                                 {"ITitleMixer3", IID_ITitleMixer3},
                                 {"ITitleMixer4", IID_ITitleMixer4},
                                 {"IY16ARLECompressor", IID_IY16ARLECompressor},
                                 {"IDeinterlaceMaker", IID_IDeinterlaceMaker},
                                 {"IVideoInterpolation", IID_IVideoInterpolation},
                                 {"IVideoInterpolation2", IID_IVideoInterpolation2},
                                 {"IVideoDeinterlacer", IID_IVideoDeinterlacer},
                                 {"IVideoCodecEnum", IID_IVideoCodecEnum},
                                 {"IVideoEncoder", IID_IVideoEncoder},
                                 {"IVideoDecoder", IID_IVideoDecoder}};

struct Format {
    const char* name;
    std::uint32_t number;
};
constexpr Format kFormats[] = {{"BGR", PIXMORPH_BGR},
                               {"BGRA", PIXMORPH_BGRA},
                               {"UYVY", PIXMORPH_UYVY},
                               {"YUY2", PIXMORPH_YUY2},
                               {"YVYU", PIXMORPH_YVYU},
                               {"Y422", PIXMORPH_Y422},
                               {"IYUV", PIXMORPH_IYUV},
                               {"YV12", PIXMORPH_YV12},
                               {"NV12", PIXMORPH_NV12},
                               {"IMC2", PIXMORPH_IMC2},
                               {"IMC4", PIXMORPH_IMC4},
                               {"Y16", PIXMORPH_Y16},
                               {"Y16A", PIXMORPH_Y16A},
                               {"Y32", PIXMORPH_Y32},
                               {"Y32, 2nd", PIXMORPH_Y32_SECOND},
                               {"Y32A", PIXMORPH_Y32A},
                               {"Y32A, 2nd", PIXMORPH_Y32A_SECOND},
                               {"P216", PIXMORPH_P216},
                               {"P016", PIXMORPH_P016},
                               {"P420", PIXMORPH_P420},
                               {"P422", PIXMORPH_P422}};

std::string Join(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) text += part;
    return text;
}

std::string ClassTable() {
    std::string text = "| class | interfaces |\n| --- | --- |\n";
    for (const Class& entry : kClasses) {
        ComPtr<IUnknown> object;
        std::string interfaces;
        if (CreateInstance(entry.id, object) == S_OK) {
            for (const Class& candidate : kInterfaces) {
                ComPtr<IUnknown> found;
                if (object->QueryInterface(candidate.id, found.Put()) != S_OK) continue;
                interfaces += Join({interfaces.empty() ? "`" : ", `", candidate.name, "`"});
            }
        } else {
            interfaces = "not in this library yet";
        }
        text += Join({"| `", entry.name, "` | ", interfaces, " |\n"});
    }
    return text;
}

// Memory for a picture of 16 by 2 pixels in any format, with all planes given.
struct Scratch {
    static constexpr std::int32_t kStride = 128;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(4 * 4 * kStride);
    std::array<std::uint8_t*, 4> planes{&bytes[0], &bytes[4 * kStride], &bytes[8 * kStride], &bytes[12 * kStride]};
    std::array<std::int32_t, 4> strides{kStride, kStride, kStride, kStride};
};

// The smallest multiples that both sides of a picture must have, found by trying.
std::string Condition(IColorConversion& conversion, const Format& to, const Format& from) {
    if (conversion.CheckConversion(to.number, from.number) != S_OK) return "";
    Scratch destination, source;
    for (const std::uint32_t height : {1u, 2u}) {
        for (const std::uint32_t width : {1u, 2u, 4u, 8u, 16u}) {
            if (conversion.Pixmorph(destination.planes.data(), destination.strides.data(), source.planes.data(),
                                    source.strides.data(), width, height, to.number, from.number) != S_OK)
                continue;
            return Join({std::to_string(width), height == 1 ? "" : "x2"});
        }
    }
    return "none";
}

std::string ConversionTable(IColorConversion& conversion) {
    std::string text = "| from \\ to |";
    std::string rule = "| --- |";
    for (const Format& to : kFormats) {
        text += Join({" ", to.name, " |"});
        rule += " --- |";
    }
    text += Join({"\n", rule, "\n"});
    for (const Format& from : kFormats) {
        text += Join({"| **", from.name, "** |"});
        for (const Format& to : kFormats) text += Join({" ", Condition(conversion, to, from), " |"});
        text += "\n";
    }
    return text;
}

std::string NumberTable(IColorConversion& conversion, IStretchImage& stretch) {
    std::string text = "| format | number | BT.709 | full range | FourCC | can be resized |\n";
    text += "| --- | --- | --- | --- | --- | --- |\n";
    for (const Format& format : kFormats) {
        const auto known = [&](std::uint32_t number) {
            std::uint32_t id = 0;
            return conversion.GetFormatId(&id, number) == S_OK;
        };
        const auto number = [&](std::uint32_t added) {
            return known(format.number + added) ? std::to_string(format.number + added) : std::string();
        };
        std::uint32_t code = 0;
        std::uint32_t id = 0;
        const std::string name = format.name;
        for (std::size_t i = 0; i < name.size() && name.size() <= 4; ++i)
            code |= static_cast<std::uint32_t>(static_cast<unsigned char>(name[i])) << 8 * i;
        const bool hasCode = code != 0 && conversion.GetFormatId(&id, code) == S_OK && id == format.number;
        Scratch small, large;
        const bool resizable = stretch.StretchImage(large.planes[0], small.planes[0], 16, 4, 8, 2, Scratch::kStride,
                                                    Scratch::kStride, format.number) == S_OK;
        text += Join({"| ", name, " | ", std::to_string(format.number), " | ", number(PIXMORPH_BT709), " | ",
                      number(PIXMORPH_FULL_RANGE), " | ", hasCode ? Join({"`", name, "`"}) : "", " | ",
                      resizable ? "yes" : "no", " |\n"});
    }
    return text;
}

// A codec is there unless setting a format, whatever it says to the size, answers that none can be made.
std::string CodecTable(IVideoCodecEnum& codecs) {
    std::string text = "| index | FourCC | codec | encoder | decoder |\n| --- | --- | --- | --- | --- |\n";
    ComPtr<IVideoEncoder> encoder;
    ComPtr<IVideoDecoder> decoder;
    std::uint32_t count = 0;
    if (FAILED(codecs.QueryInterface(IID_IVideoEncoder, encoder.Put())) ||
        FAILED(codecs.QueryInterface(IID_IVideoDecoder, decoder.Put())) || FAILED(codecs.Count(&count)))
        return {};
    for (std::int32_t index = 0; index < static_cast<std::int32_t>(count); ++index) {
        std::uint32_t fourCC = 0;
        wchar_t* wide = nullptr;
        if (FAILED(codecs.Info(&fourCC, &wide, index))) return {};
        std::string code, name;
        for (int shift = 0; shift < 32; shift += 8) code += static_cast<char>(fourCC >> shift & 0xFF);
        for (const wchar_t* letter = wide; *letter != 0; ++letter) name += static_cast<char>(*letter);
        CoTaskMemFree(wide);
        const auto state = [](HRESULT result) { return result == E_OUTOFMEMORY ? "no" : "yes"; };
        text += Join({"| ", std::to_string(index), " | `", code, "` | ", name, " | ",
                      state(encoder->EncSetFormat(index, 720, 576)), " | ",
                      state(decoder->DecSetFormat(index, 720, 576)), " |\n"});
    }
    return text;
}

// A page's table has a row for each class, or for several, whose first cell holds the names and whose last cell is
// "works" for those that the library can make.
int CheckClassStates(const char* path) {
    std::ifstream file(path);
    int wrong = 0;
    std::array<bool, std::size(kClasses)> found{};
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("| `", 0) != 0) continue;
        const std::string names = line.substr(0, line.find('|', 1));
        const bool works = line.size() > 8 && line.substr(line.size() - 8) == " works |";
        for (std::size_t i = 0; i < std::size(kClasses); ++i) {
            if (names.find(std::string("`").append(kClasses[i].name).append("`")) == std::string::npos) continue;
            ComPtr<IUnknown> object;
            found[i] = true;
            if (SUCCEEDED(CreateInstance(kClasses[i].id, object)) == works) continue;
            std::printf("%s is wrong about %s\n", path, kClasses[i].name);
            ++wrong;
        }
    }
    for (std::size_t i = 0; i < std::size(kClasses); ++i) {
        if (found[i]) continue;
        std::printf("%s says nothing about %s\n", path, kClasses[i].name);
        ++wrong;
    }
    return wrong == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    ComPtr<IColorConversion> conversion;
    ComPtr<IStretchImage> stretch;
    ComPtr<IVideoCodecEnum> codecs;
    if (FAILED(CreateInstance(CLSID_Pixmorph, conversion)) || FAILED(CreateInstance(CLSID_StretchImage, stretch)) ||
        FAILED(CreateInstance(CLSID_VideoCodec, codecs)))
        return 1;
    const std::string tables[] = {ClassTable(), NumberTable(*conversion, *stretch), ConversionTable(*conversion),
                                  CodecTable(*codecs)};

    if (argc == 3 && std::string(argv[1]) == "--check") {
        std::ifstream file(argv[2]);
        const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        int missing = 0;
        for (const std::string& table : tables) {
            if (page.find(table) != std::string::npos) continue;
            std::printf("%s does not hold this table:\n\n%s\n", argv[2], table.c_str());
            ++missing;
        }
        return missing == 0 ? 0 : 1;
    }
    if (argc == 3 && std::string(argv[1]) == "--check-classes") return CheckClassStates(argv[2]);
    for (const std::string& table : tables) std::printf("%s\n", table.c_str());
    return 0;
}
