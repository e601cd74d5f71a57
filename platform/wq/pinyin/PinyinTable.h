#pragma once

#include <cstdint>

/// Tables written by GeneratePinyinTable at build time.
namespace WQ::pinyin
{

/// The characters that `Readings` covers, one entry each.
constexpr char16_t FirstCharacter = 0x3400;
constexpr char16_t LastCharacter = 0x9FFF;

/// A reading: index of the syllable << 3 | tone (1 to 4, 5 none); index 0 is the empty syllable, that is none. In
/// `Readings` the upper bits say whether a phrase begins with the character, whether it is a surname with its own
/// reading, whether it makes a given name alone and whether it is part of given names.
constexpr std::uint16_t PhraseBit = 0x8000;
constexpr std::uint16_t SurnameBit = 0x4000;
constexpr std::uint16_t GivenNameBit = 0x2000;
constexpr std::uint16_t PartOfGivenNameBit = 0x1000;
constexpr std::uint16_t ReadingMask = 0x0FFF;

struct Surname {
    std::uint16_t character;
    std::uint16_t reading;
};

/// Sorted, so that readings compare as pinyin does.
extern const char* const Syllables[];
extern const std::uint16_t Readings[];
/// Phrase i stands at PhraseOffsets[i] up to PhraseOffsets[i + 1]; phrases are sorted by their UTF-16 code units.
extern const std::uint16_t PhraseTexts[];
extern const std::uint16_t PhraseReadings[];
extern const std::uint16_t PhraseOffsets[];
/// Per character of `Readings` and one more: the first phrase that begins with it or with a later one.
extern const std::uint16_t FirstPhrases[];
extern const Surname Surnames[];
extern const int SurnameCount;

} // namespace WQ::pinyin
