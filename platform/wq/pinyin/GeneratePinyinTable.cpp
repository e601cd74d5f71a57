// SPDX-License-Identifier: Apache-2.0
// Writes the tables of Pinyin.cpp at build time: the usual reading of every character from ICU, corrected by
// readings.txt, plus phrases.txt, surnames.txt and givennames.txt.
//     generator <folder of the text files> <output file>

#include "PinyinTable.h"

#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/uclean.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace WQ::pinyin;

constexpr int NoTone = 5;

struct Reading {
    std::string syllable;
    int tone = NoTone;
};

struct Entry {
    char16_t character;
    std::string syllable;
};

/// The lines that are no comments.
std::vector<std::string> readLines(const std::string& file)
{
    std::ifstream in(file);
    if (!in) {
        throw std::runtime_error("cannot read " + file);
    }
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] != '#') {
            lines.push_back(line);
        }
    }
    return lines;
}

std::u16string charactersOf(const std::string& text)
{
    const icu::UnicodeString characters = icu::UnicodeString::fromUTF8(text);
    for (int i = 0; i < characters.length(); ++i) {
        if (characters[i] < FirstCharacter || characters[i] > LastCharacter) {
            throw std::runtime_error("not in the table: " + text);
        }
    }
    return {characters.getBuffer(), std::size_t(characters.length())};
}

/// "character syllable", parted by commas.
std::vector<Entry> readReadings(const std::string& file)
{
    std::vector<Entry> entries;
    for (const std::string& line : readLines(file)) {
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, ',');) {
            std::istringstream words(part);
            std::string character;
            Entry entry;
            words >> character >> entry.syllable;
            const std::u16string characters = charactersOf(character);
            if (characters.size() != 1 || entry.syllable.empty()) {
                throw std::runtime_error(file + ": no character and its syllable: " + part);
            }
            entry.character = characters[0];
            entries.push_back(entry);
        }
    }
    return entries;
}

/// "zhōng" -> zhong, 1. Empty for what is no syllable.
Reading parse(const icu::UnicodeString& marked)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString parts = icu::Normalizer2::getNFDInstance(status)->normalize(marked, status);
    Reading reading;
    for (int i = 0; i < parts.length(); ++i) {
        const char16_t c = parts[i];
        if (c >= u'a' && c <= u'z') {
            reading.syllable += char(c);
        } else if (c == 0x0304) {
            reading.tone = 1;
        } else if (c == 0x0301) {
            reading.tone = 2;
        } else if (c == 0x030C) {
            reading.tone = 3;
        } else if (c == 0x0300) {
            reading.tone = 4;
        } else if (c == 0x0308 && !reading.syllable.empty() && reading.syllable.back() == 'u') {
            reading.syllable.back() = 'v';
        } else if (c != 0x0302) {
            return Reading();
        }
    }
    return reading;
}

class CTables
{
public:
    explicit CTables(const std::string& folder)
        : m_surnames(readReadings(folder + "/surnames.txt")),
          m_readings(std::size_t(LastCharacter - FirstCharacter + 1))
    {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::Transliterator> hanLatin(
            icu::Transliterator::createInstance("Han-Latin", UTRANS_FORWARD, status));
        if (U_FAILURE(status)) {
            throw std::runtime_error("ICU has no Han-Latin transliterator");
        }
        for (int c = FirstCharacter; c <= LastCharacter; ++c) {
            icu::UnicodeString text = icu::UnicodeString(char16_t(c));
            hanLatin->transliterate(text);
            m_readings[std::size_t(c - FirstCharacter)] = parse(text);
        }
        for (const Entry& entry : readReadings(folder + "/readings.txt")) {
            m_readings[std::size_t(entry.character - FirstCharacter)] = toned(entry.character, entry.syllable);
        }
        readPhrases(folder + "/phrases.txt");
        readGivenNames(folder + "/givennames.txt");
        for (const Reading& reading : m_readings) {
            m_syllables[reading.syllable] = 0;
        }
        for (const auto& [characters, readings] : m_phrases) {
            for (const Reading& reading : readings) {
                m_syllables[reading.syllable] = 0;
            }
        }
        for (const Entry& surname : m_surnames) {
            m_syllables[surname.syllable] = 0;
        }
        std::uint16_t index = 0;
        for (auto& [syllable, number] : m_syllables) {
            number = index++;
        }
        if (m_syllables.size() > 512 || !m_syllables.count(std::string())) {
            throw std::runtime_error("more syllables than the table has room for");
        }
    }

    void write(std::ostream& out)
    {
        std::vector<std::uint16_t> codes;
        for (std::size_t i = 0; i < m_readings.size(); ++i) {
            codes.push_back(code(m_readings[i]));
        }
        const auto mark = [&codes](char16_t character, std::uint16_t bit) {
            codes[std::size_t(character - FirstCharacter)] |= bit;
        };
        for (const auto& [characters, readings] : m_phrases) {
            mark(characters[0], PhraseBit);
        }
        for (const Entry& surname : m_surnames) {
            mark(surname.character, SurnameBit);
        }
        for (const char16_t character : m_givenNames) {
            mark(character, GivenNameBit | PartOfGivenNameBit);
        }
        for (const char16_t character : m_partsOfGivenNames) {
            mark(character, PartOfGivenNameBit);
        }

        out << "#include \"PinyinTable.h\"\n\nnamespace WQ::pinyin {\n\nconst char* const Syllables[] = {\n";
        for (const auto& [syllable, number] : m_syllables) {
            out << '"' << syllable << "\",";
        }
        out << "\n};\nconst std::uint16_t Readings[] = {\n";
        writeNumbers(out, codes);
        std::vector<std::uint16_t> texts, readings, offsets, firstPhrases;
        for (const auto& [characters, phraseReadings] : m_phrases) {
            firstPhrases.resize(std::size_t(characters[0] - FirstCharacter + 1), std::uint16_t(offsets.size()));
            offsets.push_back(std::uint16_t(texts.size()));
            texts.insert(texts.end(), characters.begin(), characters.end());
            for (const Reading& reading : phraseReadings) {
                readings.push_back(code(reading));
            }
        }
        firstPhrases.resize(m_readings.size() + 1, std::uint16_t(offsets.size()));
        offsets.push_back(std::uint16_t(texts.size()));
        out << "};\nconst std::uint16_t PhraseTexts[] = {\n";
        writeNumbers(out, texts);
        out << "};\nconst std::uint16_t PhraseReadings[] = {\n";
        writeNumbers(out, readings);
        out << "};\nconst std::uint16_t PhraseOffsets[] = {\n";
        writeNumbers(out, offsets);
        out << "};\nconst std::uint16_t FirstPhrases[] = {\n";
        writeNumbers(out, firstPhrases);
        out << "};\nconst Surname Surnames[] = {\n";
        for (const Entry& surname : m_surnames) {
            out << '{' << int(surname.character) << ',' << code(toned(surname.character, surname.syllable)) << "},";
        }
        out << "\n};\nconst int SurnameCount = " << m_surnames.size() << ";\n\n} // namespace WQ::pinyin\n";
    }

private:
    /// "character syllable: phrases", each of which may stand in several lines.
    void readPhrases(const std::string& file)
    {
        for (const std::string& line : readLines(file)) {
            const std::size_t colon = line.find(':');
            std::istringstream head(line.substr(0, colon));
            std::string text, syllable;
            head >> text >> syllable;
            const std::u16string character = charactersOf(text);
            if (colon == std::string::npos || character.size() != 1 || syllable.empty()) {
                throw std::runtime_error(file + ": no character, syllable and phrases: " + line);
            }
            std::istringstream words(line.substr(colon + 1));
            for (std::string word; words >> word;) {
                const std::u16string phrase = charactersOf(word);
                if (phrase.find(character[0]) == std::u16string::npos) {
                    throw std::runtime_error(file + ": " + word + " stands in the line of " + text);
                }
                const auto [known, isNew] = m_phrases.try_emplace(phrase);
                for (std::size_t i = 0; i < phrase.size(); ++i) {
                    if (isNew) {
                        known->second.push_back(m_readings[std::size_t(phrase[i] - FirstCharacter)]);
                    }
                    if (phrase[i] == character[0]) {
                        known->second[i] = toned(character[0], syllable);
                    }
                }
            }
        }
    }

    void readGivenNames(const std::string& file)
    {
        bool alone = true;
        for (const std::string& line : readLines(file)) {
            alone = alone && !line.empty();
            (alone ? m_givenNames : m_partsOfGivenNames) += charactersOf(line);
        }
    }

    Reading toned(char16_t character, const std::string& syllable) const
    {
        const Reading& usual = m_readings[std::size_t(character - FirstCharacter)];
        return usual.syllable == syllable ? usual : Reading{syllable, NoTone};
    }

    std::uint16_t code(const Reading& reading) const
    {
        return std::uint16_t(m_syllables.at(reading.syllable) << 3 | reading.tone);
    }

    static void writeNumbers(std::ostream& out, const std::vector<std::uint16_t>& numbers)
    {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            out << numbers[i] << (i % 20 == 19 ? ",\n" : ",");
        }
        out << '\n';
    }

    std::map<std::u16string, std::vector<Reading>> m_phrases;
    std::vector<Entry> m_surnames;
    std::u16string m_givenNames; ///< also alone
    std::u16string m_partsOfGivenNames;
    std::vector<Reading> m_readings;
    std::map<std::string, std::uint16_t> m_syllables;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: " << argv[0] << " <folder> <output>\n";
        return 2;
    }
    try {
        CTables tables(argv[1]);
        std::ofstream out(argv[2]);
        tables.write(out);
        out.flush();
        if (!out) {
            throw std::runtime_error(std::string("cannot write ") + argv[2]);
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    u_cleanup();
    return 0;
}
