// SPDX-License-Identifier: Apache-2.0
#include "service/engine/GroupRules.h"
#include "service/engine/MasterDataRules.h"
#include "service/engine/Refusal.h"
#include "service/engine/TextRules.h"
#include "support/TestProgram.h"

#include <unicode/uchar.h>

#include <random>

namespace
{

constexpr uint LastCharacter = 0x10ffff;

struct Range {
    uint first;
    uint last;
};

/// Characters that nobody sees although they count as letters, marks, signs or not yet as anything.
constexpr Range Hidden[] = {{0x34f, 0x34f},   {0x115f, 0x1160},   {0x17b4, 0x17b5},  {0x180b, 0x180f}, {0x2065, 0x2065},
                            {0x2800, 0x2800}, {0x3164, 0x3164},   {0xfe00, 0xfe0f},  {0xffa0, 0xffa0}, {0xfff0, 0xfff8},
                            {0xfffc, 0xfffc}, {0x1d159, 0x1d159}, {0xe0000, 0xe0fff}};

enum class EClass { Hidden, Blank, Seen };

EClass classOf(uint character)
{
    const auto holds = [character](const Range& range) { return range.first <= character && character <= range.last; };
    if (std::any_of(std::begin(Hidden), std::end(Hidden), holds)) {
        return EClass::Hidden;
    }
    switch (u_charType(static_cast<UChar32>(character))) {
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
        return EClass::Hidden;
    case U_SPACE_SEPARATOR:
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_COMBINING_SPACING_MARK:
        return EClass::Blank;
    default:
        return (character & 0xfffe) == 0xfffe || (character >= 0xfdd0 && character <= 0xfdef) ? EClass::Hidden
                                                                                              : EClass::Seen;
    }
}

/// The libraries know different versions of Unicode; what only one of them knows isn't judged.
bool isKnownToAll(uint character)
{
    const bool isAssigned = u_charType(static_cast<UChar32>(character)) != U_UNASSIGNED;
    return isAssigned == (QChar::category(character) != QChar::Other_NotAssigned);
}

QString textOf(const std::vector<uint>& characters)
{
    return QString::fromUcs4(characters.data(), static_cast<int>(characters.size()));
}

bool isValidName(const QString& name)
{
    try {
        service::requireValidName(name.toStdString());
        return true;
    } catch (const service::Refusal&) {
        return false;
    }
}

/// How both rules for names judge; they have to agree.
bool isAccepted(const QString& text)
{
    const bool isGood = service::textProblem(text, "名称").empty();
    if (isGood != isValidName(text)) {
        qFatal("the rules differ for %s", text.toUtf8().toPercentEncoding().constData());
    }
    return isGood;
}

} // namespace

class TextRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void everyCharacterAloneIsANameExactlyWhenItIsSeen()
    {
        int seen = 0;
        for (uint character = 1; character <= LastCharacter; ++character) {
            if (QChar::isSurrogate(character) || !isKnownToAll(character)) {
                continue;
            }
            const bool isSeen = classOf(character) == EClass::Seen;
            if (isAccepted(textOf({character})) != isSeen) {
                QFAIL(qPrintable("U+" + QString::number(character, 16)));
            }
            seen += isSeen ? 1 : 0;
        }
        QVERIFY(seen > 100000);
    }

    void hiddenCharactersAreRefusedAnywhere()
    {
        for (uint character = 1; character <= LastCharacter; ++character) {
            if (QChar::isSurrogate(character) || !isKnownToAll(character)) {
                continue;
            }
            const bool isHidden = classOf(character) == EClass::Hidden;
            if (service::hasInvisibleCharacters(textOf({0x7532, character, 0x7ec4})) != isHidden) {
                QFAIL(qPrintable("U+" + QString::number(character, 16)));
            }
        }
    }

    void anyMixtureIsANameExactlyWhenSomethingIsSeenAndNothingHidden()
    {
        std::vector<uint> ofClass[3];
        for (uint character = 1; character <= LastCharacter; ++character) {
            if (!QChar::isSurrogate(character) && isKnownToAll(character)) {
                ofClass[static_cast<int>(classOf(character))].push_back(character);
            }
        }
        std::mt19937 random(16);
        int accepted = 0;
        for (int round = 0; round < 20000; ++round) {
            // Mostly of one class, so that names of blanks alone are among them.
            const unsigned usual = random() % 3;
            std::vector<uint> characters(1 + random() % 64);
            bool isSeen = false;
            bool isHidden = false;
            for (uint& character : characters) {
                const auto& from = ofClass[random() % 16 == 0 ? random() % 3 : usual];
                character = from[random() % from.size()];
                isSeen = isSeen || classOf(character) == EClass::Seen;
                isHidden = isHidden || classOf(character) == EClass::Hidden;
            }
            QCOMPARE(isAccepted(textOf(characters)), isSeen && !isHidden);
            accepted += isSeen && !isHidden ? 1 : 0;
        }
        QVERIFY(accepted > 1000 && accepted < 19000);
    }

    void refusalSaysWhatIsAllowed_data()
    {
        const support::DataRows<QString, QString> row("text", "problem");
        row("nothing", {}, "不能为空");
        row("blanks", QString(QChar(0x3000)), "不能为空");
        row("filler", QString(QChar(0x3164)), "不能包含控制字符或不可见字符，只能使用看得见的文字、数字、符号和空格");
        row("mark", QString(QChar(0x301)), "至少要有一个看得见的文字、数字或符号");
        row("good", "甲 组", {});
    }
    void refusalSaysWhatIsAllowed()
    {
        QFETCH(QString, text);
        QFETCH(QString, problem);
        QCOMPARE(QString::fromStdString(service::visibleTextProblem(text)), problem);
    }
};

TEST_WITHOUT_WIDGETS(TextRulesTest)
#include "tst_text_rules.moc"
