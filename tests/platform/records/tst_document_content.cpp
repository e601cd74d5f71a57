// SPDX-License-Identifier: Apache-2.0
#include "RecordSamples.h"
#include "RefusedDocuments.h"
#include "support/BsonMacros.h"
#include "support/TestProgram.h"
#include "support/records/DocumentBytes.h"

#include <nvservice/Codec.h>
#include <nvservice/Utf8.h>

#include <rapidcheck.h>

using namespace nvservice;
using namespace refusals;
using utils::EErrorCode;

namespace
{

/// What is no UTF-8, each for another reason.
const char* const brokenTexts[] = {"\xFF",
                                   "\x80",
                                   "\xC3",
                                   "\xE4\xB8",
                                   "\xC0\x80",         // the zero, overlong
                                   "\xC0\xAF",         // a slash, overlong
                                   "\xE0\x80\xAF",     // the same in three bytes
                                   "\xF0\x80\x80\xAF", // and in four
                                   "\xED\xA0\x80",     // the first half of a surrogate pair
                                   "\xED\xBF\xBF",     // the second one
                                   "\xF4\x90\x80\x80", // beyond the last character
                                   "\xF8\x88\x80\x80\x80",
                                   "12345678\xFF",
                                   "甲\xE7\x94"};

using Change = void (*)(bson::BSONObjBuilder&, const bson::BSONElement&);

void appendTwice(bson::BSONObjBuilder& builder, const bson::BSONElement& element)
{
    builder.append(element);
    builder.append(element);
}

void appendWithBrokenName(bson::BSONObjBuilder& builder, const bson::BSONElement& element)
{
    builder.appendAs(element, std::string(element.fieldName()) + '\xFF');
}

void appendWithBrokenText(bson::BSONObjBuilder& builder, const bson::BSONElement& element)
{
    if (element.type() == bson::String) {
        builder.append(element.fieldName(), std::string(element.str()) + "\xED\xA0\x80");
    } else {
        builder.append(element.fieldName(), "\xC0\xAF");
    }
}

/// Copies a document and changes the element at position `left`, counted through all levels.
void copyChanged(bson::BSONObjBuilder& builder, const bson::BSONObj& document, int& left, Change change)
{
    for (bson::BSONObjIterator it(document); it.more();) {
        const bson::BSONElement element = it.next();
        if (left-- == 0) {
            change(builder, element);
        } else if (element.isABSONObj()) {
            bson::BSONObjBuilder nested(element.type() == bson::Array ? builder.subarrayStart(element.fieldName())
                                                                      : builder.subobjStart(element.fieldName()));
            copyChanged(nested, element.embeddedObject(), left, change);
        } else {
            builder.append(element);
        }
    }
}

/// Every document that comes from changing one element, at any level.
std::vector<bson::BSONObj> everyChange(const bson::BSONObj& document, Change change)
{
    std::vector<bson::BSONObj> changed;
    for (int position = 0;; ++position) {
        bson::BSONObjBuilder builder;
        int left = position;
        copyChanged(builder, document, left, change);
        if (left >= 0) {
            return changed;
        }
        changed.push_back(builder.obj());
    }
}

utils::NVError check(const bson::BSONObj& document)
{
    return checkDocument(document.objdata(), static_cast<std::size_t>(document.objsize()));
}

bson::BSONObj twice(const char* name)
{
    return BSON(name << 1 << "between" << true << name << 2);
}

template <typename Fill>
bson::BSONObj built(Fill fill)
{
    bson::BSONObjBuilder builder;
    fill(builder);
    return builder.obj();
}

bson::BSONObj ofType(bson::BSONType type, const std::string& value)
{
    return built([&](bson::BSONObjBuilder& builder) { builder.appendValue("x", type, value); });
}

/// An array whose elements have these names.
bson::BSONObj arrayNamed(const std::vector<std::string>& names)
{
    return built([&names](bson::BSONObjBuilder& builder) {
        bson::BSONObjBuilder array(builder.subarrayStart("later"));
        for (const std::string& name : names) {
            array.append(name, 1);
        }
    });
}

} // namespace

/// Names and texts of documents from outside: each name once, everything UTF-8.
class DocumentContentTest : public QObject
{
    Q_OBJECT

private slots:
    void namesThatOccurTwiceAreRefusedByName_data()
    {
        addColumns();
        const char* const type = "nvservice::CAccountGroup";
        row("type", BSON("_type" << type << "groupId" << 1 << "_type" << type), "_type");
        row("tag",
            group(BSON("_tag" << "A"
                              << "_tag"
                              << "A")),
            "_tag");
        row("revision", group(BSON("_rev" << 1 << "groupId" << 1 << "_rev" << 2)), "_rev");
        row("field", group(twice("groupId")), "groupId");
        row("unknown field", group(twice("later")), "later");
        row("empty name", group(twice("")), "");
        row("tag of a nested record",
            group(BSON("accounts" << BSON_ARRAY(BSON("accountId" << "1") << BSON("_tag" << "A"
                                                                                        << "_tag"
                                                                                        << "B")))),
            "accounts.1._tag");
        row("in a document of an unknown field", group(BSON("later" << BSON("inner" << twice("x")))), "later.inner.x");
        row("in a list of an unknown field", group(BSON("later" << BSON_ARRAY(1 << twice("x")))), "later.1.x");
        row("element of a list", group(arrayNamed({"0", "0"})), "later.0");
        row("elements of a list out of order", group(arrayNamed({"1", "0"})), "later.1");
        row("gap in a list", group(arrayNamed({"0", "2"})), "later.2");
        row("number of an element with leading zero", group(arrayNamed({"00"})), "later.00");
        row("element of a list without a number", group(arrayNamed({"0", ""})), "later.");
        row("among many names", group(built([](bson::BSONObjBuilder& builder) {
                for (int i = 0; i < 1000; ++i) {
                    builder.append("n" + std::to_string(i), i);
                }
                builder.append("n500", 1);
            })),
            "n500");
    }
    void namesThatOccurTwiceAreRefusedByName() { verifyRow(); }

    void oneNameAtSeveralLevelsIsNotTwice()
    {
        const bson::BSONObj document =
            group(BSON("x" << BSON("x" << BSON("x" << 1)) << "y" << BSON_ARRAY(BSON("x" << 1) << BSON("x" << 2))));
        QVERIFY2(check(document).isSuccess(), check(document).errorMsg().c_str());
    }

    void manyDifferentNamesPass()
    {
        const bson::BSONObj document = built([](bson::BSONObjBuilder& builder) {
            for (int i = 0; i < 100000; ++i) {
                builder.append("n" + std::to_string(i), i);
            }
            bson::BSONObjBuilder array(builder.subarrayStart("array"));
            for (int i = 0; i < 100000; ++i) {
                array.append(std::to_string(i), i);
            }
        });
        QVERIFY2(check(document).isSuccess(), check(document).errorMsg().c_str());
    }

    void everyElementOfEveryRecordIsRefusedTwice_data() { samples::addKinds(); }
    void everyElementOfEveryRecordIsRefusedTwice()
    {
        QVERIFY(rc::check([] {
            const bson::BSONObj document = encodeRecord(*samples::kindOfRow().makeRandom());
            RC_ASSERT(check(document).isSuccess());
            for (const bson::BSONObj& changed : everyChange(document, &appendTwice)) {
                RC_ASSERT(check(changed).code() == EErrorCode::Malformed);
            }
        }));
    }

    void everyNameAndTextOfEveryRecordHasToBeUtf8_data() { samples::addKinds(); }
    void everyNameAndTextOfEveryRecordHasToBeUtf8()
    {
        QVERIFY(rc::check([] {
            const bson::BSONObj document = encodeRecord(*samples::kindOfRow().makeRandom());
            for (const bson::BSONObj& changed : everyChange(document, &appendWithBrokenName)) {
                RC_ASSERT(check(changed).code() == EErrorCode::Malformed);
            }
            for (const bson::BSONObj& changed : everyChange(document, &appendWithBrokenText)) {
                RC_ASSERT(check(changed).code() == EErrorCode::Malformed);
            }
        }));
    }

    void whatIsNotUtf8IsRefusedInNamesAndInEveryKindOfText()
    {
        for (const std::string broken : brokenTexts) {
            QVERIFY(!isUtf8(broken));
            const bson::BSONObj documents[] = {
                built([&](bson::BSONObjBuilder& builder) { builder.append(broken, 1); }),
                built([&](bson::BSONObjBuilder& builder) { builder.append("x", broken); }),
                ofType(bson::Code, support::textBytes(broken)),
                ofType(bson::Symbol, support::textBytes(broken)),
                ofType(bson::RegEx, broken + '\0' + "i" + '\0'),
                ofType(bson::RegEx, std::string("a") + '\0' + broken + '\0'),
                ofType(bson::DBRef, support::textBytes(broken) + "0123456789ab"),
                BSON("x" << BSON_ARRAY(1 << BSON("y" << broken))),
                BSON("x" << BSON_ARRAY(1 << BSON(broken << 1))),
            };
            for (const bson::BSONObj& document : documents) {
                QCOMPARE(check(document).code(), EErrorCode::Malformed);
                QVERIFY(isUtf8(check(document).errorMsg()));
            }
        }
    }

    void bytesThatAreNoTextMayBeAnything()
    {
        bson::BSONObjBuilder builder;
        builder.appendBinData("binary", {"\xFF\xC0\x80", 3});
        builder.append("text with a zero", std::string("a\0b", 3));
        QVERIFY(check(builder.obj()).isSuccess());
    }
};

TEST_WITHOUT_WIDGETS(DocumentContentTest)
#include "tst_document_content.moc"
