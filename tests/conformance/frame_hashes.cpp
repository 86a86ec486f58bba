#include "conformance/frame_hashes.h"

#include <openssl/evp.h>

#include <fstream>
#include <stdexcept>

namespace h264 {

std::string Md5(const std::uint8_t* data, std::size_t size) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned length = 0;
    if (EVP_Digest(data, size, digest, &length, EVP_md5(), nullptr) != 1) throw std::runtime_error("no MD5");
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        static constexpr char kDigits[] = "0123456789abcdef";
        text += kDigits[digest[i] >> 4];
        text += kDigits[digest[i] & 15];
    }
    return text;
}

std::vector<std::string> ReadFrameHashes(const std::filesystem::path& stream) {
    std::ifstream list(stream.string() + ".framemd5");
    std::vector<std::string> hashes;
    for (std::string line; std::getline(list, line);) {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        hashes.push_back(line.substr(line.find_last_of(", \t") + 1));
    }
    return hashes;
}

}  // namespace h264
