// Vector forms of the block operations, one file per instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

void CopyStreaming_Sse41(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);
void FillBytesStreaming_Sse41(std::uint8_t* dst, std::size_t count, std::uint8_t value);
void FillWordsStreaming_Sse41(std::uint16_t* dst, std::size_t count, std::uint16_t value);
void FillDwordsStreaming_Sse41(std::uint32_t* dst, std::size_t count, std::uint32_t value);

void CopyStreaming_Avx2(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);
void FillBytesStreaming_Avx2(std::uint8_t* dst, std::size_t count, std::uint8_t value);
void FillWordsStreaming_Avx2(std::uint16_t* dst, std::size_t count, std::uint16_t value);
void FillDwordsStreaming_Avx2(std::uint32_t* dst, std::size_t count, std::uint32_t value);

void CopyStreaming_Avx512(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);
void FillBytesStreaming_Avx512(std::uint8_t* dst, std::size_t count, std::uint8_t value);
void FillWordsStreaming_Avx512(std::uint16_t* dst, std::size_t count, std::uint16_t value);
void FillDwordsStreaming_Avx512(std::uint32_t* dst, std::size_t count, std::uint32_t value);

}  // namespace KorvaneSoftware
