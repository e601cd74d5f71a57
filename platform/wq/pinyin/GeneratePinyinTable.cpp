// Writes the tables of Pinyin.cpp at build time: the usual reading of every character from ICU, corrected by
// readings.txt, plus phrases.txt and surnames.txt.
//     generator <folder of the text files> <output file>

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

constexpr char16_t First = 0x3400;
constexpr char16_t Last = 0x9FFF;
constexpr std::uint16_t PhraseBit = 0x8000;
constexpr std::uint16_t SurnameBit = 0x4000;
constexpr int NoTone = 5;

struct Reading {
    std::string syllable;
    int tone = NoTone;
};

struct Entry {
    std::u16string characters;
    std::vector<std::string> syllables;
};

std::vector<Entry> readEntries(const std::string& file)
{
    std::ifstream in(file);
    if (!in)
        throw std::runtime_error("cannot read " + file);
    std::vector<Entry> entries;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream parts(line);
        for (std::string part; std::getline(parts, part, ',');) {
            std::istringstream words(part);
            std::string text;
            words >> text;
            const icu::UnicodeString characters = icu::UnicodeString::fromUTF8(text);
            Entry entry{std::u16string(characters.getBuffer(), std::size_t(characters.length())), {}};
            for (std::string word; words >> word;)
                entry.syllables.push_back(word);
            if (entry.characters.empty() || entry.characters.size() != entry.syllables.size())
                throw std::runtime_error(file + ": not one syllable per character: " + part);
            for (const char16_t c : entry.characters) {
                if (c < First || c > Last)
                    throw std::runtime_error(file + ": not in the table: " + part);
            }
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
        if (c >= u'a' && c <= u'z')
            reading.syllable += char(c);
        else if (c == 0x0304)
            reading.tone = 1;
        else if (c == 0x0301)
            reading.tone = 2;
        else if (c == 0x030C)
            reading.tone = 3;
        else if (c == 0x0300)
            reading.tone = 4;
        else if (c == 0x0308 && !reading.syllable.empty() && reading.syllable.back() == 'u')
            reading.syllable.back() = 'v';
        else if (c != 0x0302)
            return Reading();
    }
    return reading;
}

class CTables
{
public:
    explicit CTables(const std::string& folder)
        : m_phrases(readEntries(folder + "/phrases.txt")), m_surnames(readEntries(folder + "/surnames.txt")),
          m_readings(std::size_t(Last - First + 1))
    {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<icu::Transliterator> hanLatin(
            icu::Transliterator::createInstance("Han-Latin", UTRANS_FORWARD, status));
        if (U_FAILURE(status))
            throw std::runtime_error("ICU has no Han-Latin transliterator");
        for (int c = First; c <= Last; ++c) {
            icu::UnicodeString text = icu::UnicodeString(char16_t(c));
            hanLatin->transliterate(text);
            m_readings[std::size_t(c - First)] = parse(text);
        }
        for (const Entry& entry : readEntries(folder + "/readings.txt"))
            m_readings[std::size_t(entry.characters[0] - First)] = toned(entry.characters[0], entry.syllables[0]);
        for (const Reading& reading : m_readings)
            m_syllables[reading.syllable] = 0;
        for (const std::vector<Entry>& entries : {m_phrases, m_surnames}) {
            for (const Entry& entry : entries) {
                for (const std::string& syllable : entry.syllables) {
                    if (m_syllables.emplace(syllable, 0).second)
                        std::cerr << "note: a syllable that no character has by itself: " << syllable << '\n';
                }
            }
        }
        std::uint16_t index = 0;
        for (auto& [syllable, number] : m_syllables)
            number = index++;
        if (m_syllables.size() > 512 || !m_syllables.count(std::string()))
            throw std::runtime_error("more syllables than the table has room for");
    }

    void write(std::ostream& out)
    {
        std::map<std::u16string, const Entry*> phrases;
        std::vector<std::uint16_t> codes;
        for (std::size_t i = 0; i < m_readings.size(); ++i)
            codes.push_back(code(m_readings[i]));
        for (const Entry& phrase : m_phrases) {
            phrases[phrase.characters] = &phrase;
            codes[std::size_t(phrase.characters[0] - First)] |= PhraseBit;
        }
        for (const Entry& surname : m_surnames)
            codes[std::size_t(surname.characters[0] - First)] |= SurnameBit;

        out << "#include \"PinyinTable.h\"\n\nnamespace WQ::pinyin {\n\nconst char* const Syllables[] = {\n";
        for (const auto& [syllable, number] : m_syllables)
            out << '"' << syllable << "\",";
        out << "\n};\nconst std::uint16_t Readings[] = {\n";
        writeNumbers(out, codes);
        std::vector<std::uint16_t> texts, readings, offsets;
        for (const auto& [characters, phrase] : phrases) {
            offsets.push_back(std::uint16_t(texts.size()));
            for (std::size_t i = 0; i < characters.size(); ++i) {
                texts.push_back(characters[i]);
                readings.push_back(code(toned(characters[i], phrase->syllables[i])));
            }
        }
        offsets.push_back(std::uint16_t(texts.size()));
        out << "};\nconst std::uint16_t PhraseTexts[] = {\n";
        writeNumbers(out, texts);
        out << "};\nconst std::uint16_t PhraseReadings[] = {\n";
        writeNumbers(out, readings);
        out << "};\nconst std::uint16_t PhraseOffsets[] = {\n";
        writeNumbers(out, offsets);
        out << "};\nconst int PhraseCount = " << phrases.size() << ";\nconst Surname Surnames[] = {\n";
        for (const Entry& surname : m_surnames)
            out << '{' << int(surname.characters[0]) << ',' << code(toned(surname.characters[0], surname.syllables[0]))
                << "},";
        out << "\n};\nconst int SurnameCount = " << m_surnames.size() << ";\n\n} // namespace WQ::pinyin\n";
    }

private:
    Reading toned(char16_t character, const std::string& syllable) const
    {
        const Reading& usual = m_readings[std::size_t(character - First)];
        return usual.syllable == syllable ? usual : Reading{syllable, NoTone};
    }

    std::uint16_t code(const Reading& reading) const
    {
        return std::uint16_t(m_syllables.at(reading.syllable) << 3 | reading.tone);
    }

    static void writeNumbers(std::ostream& out, const std::vector<std::uint16_t>& numbers)
    {
        for (std::size_t i = 0; i < numbers.size(); ++i)
            out << numbers[i] << (i % 20 == 19 ? ",\n" : ",");
        out << '\n';
    }

    std::vector<Entry> m_phrases;
    std::vector<Entry> m_surnames;
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
        if (!out)
            throw std::runtime_error(std::string("cannot write ") + argv[2]);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    u_cleanup();
    return 0;
}
