// SPDX-License-Identifier: Apache-2.0
#include "support/TestProgram.h"
#include "tradelimit/CTradeLimitBook.h"
#include "tradelimit/TradeLimitChecks.h"

#include <rapidcheck.h>

using namespace QAV;
using nvservice::CTradeLimitEntry;
using nvservice::EZVRCDirection;
using nvservice::EZVRCListKind;
using nvservice::EZvTraderType;

/// The entries of a list and what can be done to them.
class TradeLimitBookTest : public QObject
{
    Q_OBJECT

    static CTradeLimitEntry makeEntry(const std::string& code, EZVRCListKind listKind = EZVRCListKind::Black)
    {
        CTradeLimitEntry entry;
        entry.securityCode = code;
        entry.listKind = listKind;
        return entry;
    }

    static QStringList shown(const CTradeLimitBook& book)
    {
        QStringList lines;
        for (const CTradeLimitRowPtr& row : book.rows()) {
            QStringList cells;
            for (int column = 0; column < TradeLimitSearchColumn; ++column) {
                cells << row->getDisplayQString(column);
            }
            lines << cells.join(QLatin1Char('|'));
        }
        return lines;
    }

    static std::vector<int> someIds(const CTradeLimitBook& book)
    {
        std::vector<int> ids;
        for (const CTradeLimitRowPtr& row : book.rows()) {
            if (*rc::gen::arbitrary<bool>()) {
                ids.push_back(row->id());
            }
        }
        return ids;
    }

    static std::vector<CTradeLimitEntry> someEntries()
    {
        std::vector<CTradeLimitEntry> entries;
        for (int count = *rc::gen::inRange(0, 5); count > 0; --count) {
            entries.push_back(makeEntry(std::to_string(*rc::gen::inRange(0, 30))));
        }
        return entries;
    }

private slots:
    void anyRunOfChangesIsUndoneAndRedoneStepByStep()
    {
        QVERIFY(rc::check("every state comes back", [] {
            CTradeLimitBook book(EZvTraderType::Stock);
            book.load(someEntries());
            std::vector<QStringList> states{shown(book)};
            for (int step = 0; step < 12; ++step) {
                switch (*rc::gen::inRange(0, 3)) {
                case 0:
                    book.append(someEntries(), "append");
                    break;
                case 1:
                    book.remove(someIds(book), "remove");
                    break;
                default:
                    book.change(
                        someIds(book), [](CTradeLimitEntry& entry) { entry.listKind = EZVRCListKind::White; },
                        "change");
                    break;
                }
                if (book.undoStack().index() == int(states.size())) {
                    states.push_back(shown(book));
                }
            }
            RC_ASSERT(book.undoStack().count() == int(states.size()) - 1);
            for (std::size_t state = states.size() - 1; state > 0; --state) {
                RC_ASSERT(shown(book) == states[state]);
                book.undoStack().undo();
            }
            RC_ASSERT(shown(book) == states.front());
            for (std::size_t state = 1; state < states.size(); ++state) {
                book.undoStack().redo();
                RC_ASSERT(shown(book) == states[state]);
            }
        }));
    }

    void aSecurityIsFoundWhateverWasDoneBefore()
    {
        QVERIFY(rc::check("find is a linear search", [] {
            CTradeLimitBook book(EZvTraderType::Stock);
            book.load(someEntries());
            for (int step = 0; step < 8; ++step) {
                if (*rc::gen::arbitrary<bool>()) {
                    book.append(someEntries(), "append");
                } else {
                    book.remove(someIds(book), "remove");
                }
                if (*rc::gen::arbitrary<bool>()) {
                    book.undoStack().undo();
                }
                for (int code = 0; code < 30; ++code) {
                    const auto entries = book.entries();
                    const bool present =
                        std::any_of(entries.begin(), entries.end(), [&](const CTradeLimitEntry& entry) {
                            return entry.securityCode == std::to_string(code);
                        });
                    const CTradeLimitEntry* const found = book.find(std::to_string(code));
                    RC_ASSERT((found != nullptr) == present);
                    if (found) {
                        RC_ASSERT(found->securityCode == std::to_string(code));
                    }
                }
            }
        }));
    }

    void rowsKeepTheirOrderWhenARemovalInTheMiddleIsUndone()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        book.load({makeEntry("1"), makeEntry("2"), makeEntry("3"), makeEntry("4")});
        const QStringList before = shown(book);
        book.remove({book.rows()[1]->id(), book.rows()[2]->id()}, "删除");
        QCOMPARE(book.rows().size(), std::size_t(2));
        book.undoStack().undo();
        QCOMPARE(shown(book), before);
    }

    void aChangeThatChangesNothingIsNoStep()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        book.load({makeEntry("1")});
        book.append({}, "添加");
        book.remove({}, "删除");
        book.remove({77}, "删除");
        book.change(
            {book.rows()[0]->id(), 77}, [](CTradeLimitEntry& entry) { entry.listKind = EZVRCListKind::Black; }, "修改");
        QCOMPARE(book.undoStack().count(), 0);
    }

    void loadingForgetsWhatCouldBeUndone()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        book.append({makeEntry("1")}, "添加");
        book.load({makeEntry("2")});
        QVERIFY(!book.undoStack().canUndo());
        QCOMPARE(shown(book), QStringList("2||黑名单|双向"));
    }

    void aSecurityOnTheOtherListIsRefusedWithItsName()
    {
        CTradeLimitBook book(EZvTraderType::Future);
        book.load({makeEntry("rb2501", EZVRCListKind::White)});
        QCOMPARE(entryProblem(book, makeEntry("RB2501", EZVRCListKind::Black)),
                 QString("证券rb2501已在白名单中，同一证券不能同时在黑名单和白名单中"));
        QCOMPARE(entryProblem(book, makeEntry("rb2501", EZVRCListKind::White)), QString("证券rb2501已在白名单中"));
        QCOMPARE(entryProblem(book, makeEntry("rb2505", EZVRCListKind::Black)), QString());
    }

    void aCodeIsCheckedBeforeItIsTaken_data()
    {
        const support::DataRows<QString, QString> row("code", "problem");
        row("stock", "000001", "");
        row("option", "m2509-C-2900", "");
        row("interbank", "190210.IB", "");
        row("empty", "", "请输入证券代码");
        row("long", QString(10000, '6'), "证券代码不能超过32个字符");
        row("chinese", "浦发银行", "“浦发银行”不是证券代码，代码只能由字母、数字和 . - _ & 组成");
        row("full width", "６", "“６”不是证券代码，代码只能由字母、数字和 . - _ & 组成");
    }
    void aCodeIsCheckedBeforeItIsTaken()
    {
        QFETCH(QString, code);
        QFETCH(QString, problem);
        QCOMPARE(securityCodeProblem(code), problem);
    }

    void listenersLearnWhatChanged()
    {
        CTradeLimitBook book(EZvTraderType::Stock);
        std::vector<std::pair<int, std::size_t>> changes;
        book.setListener(
            [&](const CTradeLimitBook::Change& change) { changes.emplace_back(change.kind, change.rows.size()); });
        book.load({makeEntry("1")});
        book.append({makeEntry("2"), makeEntry("3")}, "添加");
        book.change(
            {book.rows()[2]->id()}, [](CTradeLimitEntry& entry) { entry.direction = EZVRCDirection::Buy; }, "修改");
        book.remove({book.rows()[0]->id()}, "删除");
        book.undoStack().undo();
        using Change = CTradeLimitBook::Change;
        const std::vector<std::pair<int, std::size_t>> expected{{Change::Rearranged, 0},
                                                                {Change::Appended, 2},
                                                                {Change::Replaced, 1},
                                                                {Change::Rearranged, 0},
                                                                {Change::Rearranged, 0}};
        QCOMPARE(changes, expected);
    }
};

TEST_WITHOUT_WIDGETS(TradeLimitBookTest)
#include "tst_trade_limit_book.moc"
